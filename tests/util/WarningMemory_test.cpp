#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "tests/util/XmlPlatform.h"

namespace {

// Of all that was asked for, by this program and the XML library.
std::uint64_t bytes = 0;

void* allocate(std::size_t size) {
    bytes += size;
    if (void* block = std::malloc(std::max<std::size_t>(size, 1)))
        return block;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;

// A document that draws so many warnings: each declaration but the first.
std::string warningsOf(std::size_t count) {
    std::string document = "<!DOCTYPE r [<!ATTLIST r k CDATA ''";
    for (std::size_t i = 0; i < count; ++i)
        document += " k CDATA ''";
    return document + ">]><r/>";
}

std::uint64_t bytesFor(std::size_t warnings) {
    const std::string document = warningsOf(warnings);
    SAXToNodeParser parser;
    const std::uint64_t before = bytes;
    EXPECT_EQ(parser.parseString(document)->name, "r");
    return bytes - before;
}

class WarningMemory : public OvMemTest::XmlPlatformTest {};

// The least that a warning takes is its report, so that this test cannot pass
// for want of warnings.
TEST_F(WarningMemory, TwiceAsManyWarningsTakeTwiceAsManyBytes) {
    constexpr std::size_t report =
        sizeof "Warning: parsing: From-String: line 1, char 50\n";
    bytesFor(1);
    const std::uint64_t none = bytesFor(0);
    const std::uint64_t half = bytesFor(5000) - none;
    const std::uint64_t whole = bytesFor(10000) - none;
    EXPECT_GT(half, 5000 * report);
    EXPECT_GT(whole, half + half / 2);
    EXPECT_LT(whole, 2 * half + half / 2);
    RecordProperty("bytes of a warning", std::to_string(whole / 10000));
}

}  // namespace
