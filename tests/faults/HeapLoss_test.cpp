#include "tests/faults/HeapLoss.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include "tests/faults/FailingHeap.h"
#include "tests/support/RunInChild.h"

// That the sweep would notice: memory is lost on purpose.

namespace OvMemTest {

namespace {

using Losers = std::map<std::string, std::size_t>;

// What is held after `lossy` has run the second time: the first fills caches.
Losers losersOf(const std::function<void()>& lossy, std::uint64_t failAt = 0) {
    lossy();
    const auto count = [&] {
        {
            const FailingHeap::Scope scope({failAt, false});
            lossy();
        }
        return FailingHeap::held();
    };
    FailingHeap::watch(count());
    Losers losers;
    for (const std::uint64_t request : count()) {
        ++losers[whoLost(FailingHeap::stackOf(request))];
    }
    return losers;
}

void makeReader() {
    try {
        delete xercesc::XMLReaderFactory::createXMLReader();
    } catch (const xercesc::OutOfMemoryException&) {
    }
}

}  // namespace

TEST(HeapLoss, NothingIsHeldWhenNothingIsLost) {
    runInChild([] {
        xercesc::XMLPlatformUtils::Initialize();
        EXPECT_EQ(losersOf(makeReader), Losers());
    });
}

TEST(HeapLoss, ABlockOfTheProgramItselfIsTheProgramsFault) {
    runInChild([] {
        const Losers losers = losersOf([] {
            static std::unique_ptr<std::string> kept;
            static_cast<void>(kept.release());
            kept = std::make_unique<std::string>(100, 'x');
        });
        EXPECT_EQ(losers, (Losers{{"", 2}}));
    });
}

TEST(HeapLoss, AReaderThatWasCreatedIsTheProgramsFault) {
    runInChild([] {
        xercesc::XMLPlatformUtils::Initialize();
        [[maybe_unused]] static xercesc::SAX2XMLReader* kept;
        const Losers losers = losersOf(
            [] { kept = xercesc::XMLReaderFactory::createXMLReader(); });
        EXPECT_EQ(losers.at(""), 1U);
    });
}

TEST(HeapLoss, ATextThatWasHandedOverIsTheProgramsFault) {
    runInChild([] {
        xercesc::XMLPlatformUtils::Initialize();
        [[maybe_unused]] static char* kept;
        const XMLCh text[] = {'x', 0};
        const Losers losers =
            losersOf([&text] { kept = xercesc::XMLString::transcode(text); });
        EXPECT_EQ(losers, (Losers{{"", 1}}));
    });
}

TEST(HeapLoss, WhatAReaderTookThatWasNotCreatedIsTheXmlLibrarysFault) {
    runInChild([] {
        xercesc::XMLPlatformUtils::Initialize();
        const Losers losers = losersOf(makeReader, 30);
        EXPECT_EQ(losers.size(), 1U);
        EXPECT_GT(losers.at("xercesc_3_2::XMLReaderFactory::createXMLReader"),
                  10U);
    });
}

}  // namespace OvMemTest
