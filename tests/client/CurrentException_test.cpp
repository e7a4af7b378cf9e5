#include "OvMemCppBinding/client/CurrentException.h"

#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/client/Utf8ConversionException.h"
#include "OvMemCppBinding/util/DomException.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/support/RunInChild.h"

using namespace Orvane::Net::OvModelEventManager::Client;
using Orvane::Net::OvModelEventManager::Util::DomException;
using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;
using OvMemTest::runInChild;

namespace {

const std::string none = "No exception is being handled.";
const std::string registerFirst =
    "What to do: call registerClient with a server identity that is not empty "
    "first.";
const std::string wrongReply =
    "What to do: check that it is a Model Event Manager that answers; the "
    "request itself was carried out.";
const std::string grantMore =
    "What to do: check that it is a Model Event Manager that answers; if it "
    "is, grant the XmlPlatformGuard more memory.";
const std::string lookAtPlatform =
    "What to do: try again; if it persists, the platform needs attention.";
const std::string lookAtProgram =
    "What to do: look at the program that threw it.";
const std::string pointerToNotRegistered =
    "OvMEMProtocolException* (-2): Not registered\n" + registerFirst;
const std::string processMemory = "What to do: give the process more memory.";

std::string descriptionOf(const std::function<void()>& code) {
    try {
        code();
    } catch (...) {
        return describeCurrentException();
    }
    return "nothing was thrown";
}

template <class Object>
std::string describing(const Object& object) {
    return descriptionOf([&object] { throw object; });
}

std::string parsing(const std::string& xml) {
    return descriptionOf([&xml] { SAXToNodeParser().parseString(xml); });
}

// Thrown, and destroyed, while the platform runs; described without it.
class WithoutPlatform {
public:
    WithoutPlatform() : manager(xercesc::XMLPlatformUtils::fgMemoryManager) {
        xercesc::XMLPlatformUtils::fgMemoryManager = nullptr;
    }
    ~WithoutPlatform() { xercesc::XMLPlatformUtils::fgMemoryManager = manager; }
    WithoutPlatform(const WithoutPlatform&) = delete;
    WithoutPlatform& operator=(const WithoutPlatform&) = delete;

private:
    xercesc::MemoryManager* const manager;
};

}  // namespace

TEST(CurrentException, EachClientClassIsNamedWithItsCodeTextAndAdvice) {
    EXPECT_EQ(describing(OvMEMConnectionException("Connection refused")),
              "OvMEMConnectionException (0): Connection refused\n"
              "What to do: check that the service can be reached, then try "
              "again.");
    EXPECT_EQ(describing(OvMEMProtocolException("Not so")),
              "OvMEMProtocolException (0): Not so\n"
              "What to do: fix what was asked for; the same request will "
              "fail again.");
    EXPECT_EQ(describing(OvMEMRuntimeException()),
              "OvMEMRuntimeException (0): \n" + lookAtPlatform);
    EXPECT_EQ(describing(OvMEMUnrecognisedException("-42")),
              "OvMEMUnrecognisedException (0): -42\n"
              "What to do: report the text; it is the transport's own.");
    EXPECT_EQ(describing(OvMEMException(7, "own")),
              "OvMEMException (7): own\n" + lookAtProgram);
    EXPECT_EQ(describing(Utf8ConversionException("no converter\n")),
              "OvMEMException (0): no converter\n" + lookAtProgram);
    EXPECT_EQ(describing(Exception("Gone")),
              "Exception (0): Gone\n"
              "What to do: the connection has forgotten its identity; the "
              "service may still know it.");
}

TEST(CurrentException, ABrokenTransportIsNoFaultOfTheRequest) {
    EXPECT_EQ(
        describing(
            OvMEMProtocolException("Reply chunk exceeds the receive buffer.")),
        "OvMEMProtocolException (0): Reply chunk exceeds the receive buffer.\n"
        "What to do: stop the process; the transport has written past its "
        "buffer.");
}

TEST(CurrentException, TheTypeCodeDecidesOnTheAdvice) {
    EXPECT_EQ(
        describing(OvMEMConnectionException(-1, "OvMEM Connection failed")),
        "OvMEMConnectionException (-1): OvMEM Connection failed\n"
        "What to do: check that the service can be reached; another operation "
        "tells the cause.");
    EXPECT_EQ(describing(OvMEMProtocolException(-2, "Not registered")),
              "OvMEMProtocolException (-2): Not registered\n" + registerFirst);
}

TEST(CurrentException, TheTextKeepsItsLinesButNotItsEnd) {
    EXPECT_EQ(describing(DomException("one\ntwo\n\n")),
              "DomException: one\ntwo\n" + wrongReply);
}

TEST(CurrentException, APointerIsDescribedAndLeftToItsCatcher) {
    auto* const thrown = new OvMEMProtocolException(-2, "Not registered");
    try {
        try {
            throw thrown;
        } catch (...) {
            EXPECT_EQ(describeCurrentException(), pointerToNotRegistered);
            EXPECT_EQ(describeCurrentException(), pointerToNotRegistered);
            throw;
        }
    } catch (OvMEMProtocolException* pointer) {
        EXPECT_EQ(describeCurrentException(), pointerToNotRegistered);
        EXPECT_EQ(pointer, thrown);
        EXPECT_EQ(pointer->getMessage(), "Not registered");
        delete pointer;
    }
}

// The address sanitizer would see a deletion, the thread sanitizer a change.
TEST(CurrentException, TwoThreadsMayDescribeTheSameOneAtOnce) {
    const std::unique_ptr<OvMEMProtocolException> owner(
        new OvMEMProtocolException(-2, "Not registered"));
    std::exception_ptr kept;
    try {
        throw owner.get();
    } catch (...) {
        kept = std::current_exception();
    }
    const auto describeOften = [&kept] {
        for (int time = 0; time < 1000; ++time) {
            ASSERT_EQ(descriptionOf([&kept] { std::rethrow_exception(kept); }),
                      pointerToNotRegistered);
        }
    };
    std::thread other(describeOften);
    describeOften();
    other.join();
    EXPECT_EQ(owner->getMessage(), "Not registered");
}

TEST(CurrentException, APointerToNothingIsTheProgramsFault) {
    OvMEMProtocolException* const nothing = nullptr;
    EXPECT_EQ(describing(nothing),
              "OvMEMProtocolException*: null\n" + lookAtProgram);
}

TEST(CurrentException, APointerOfAnotherClassIsLeftAlone) {
    const auto owner = std::make_unique<OvMEMException>(3, "kept");
    EXPECT_EQ(describing(owner.get()),
              "unknown: an exception of a class that the library does not "
              "know\n" +
                  lookAtProgram);
    EXPECT_EQ(owner->getMessage(), "kept");
}

TEST(CurrentException, WhatIsThrownByValueMayBeDescribedAgain) {
    try {
        throw OvMEMRuntimeException("Broken");
    } catch (...) {
        const std::string first = describeCurrentException();
        EXPECT_EQ(first,
                  "OvMEMRuntimeException (0): Broken\n" + lookAtPlatform);
        EXPECT_EQ(describeCurrentException(), first);
    }
}

TEST(CurrentException, OutsideAHandlerThereIsNothingToDescribe) {
    EXPECT_EQ(describeCurrentException(), none);
    EXPECT_EQ(describing(42), describing('c'));
    EXPECT_EQ(describeCurrentException(), none);
}

TEST(CurrentException, OfNestedHandlersTheInnermostCounts) {
    try {
        throw OvMEMRuntimeException("outer");
    } catch (...) {
        EXPECT_EQ(describing(OvMEMRuntimeException("inner")),
                  "OvMEMRuntimeException (0): inner\n" + lookAtPlatform);
        EXPECT_EQ(describeCurrentException(),
                  "OvMEMRuntimeException (0): outer\n" + lookAtPlatform);
    }
}

TEST(CurrentException, AnExceptionThatCarriesAnotherIsDescribedItself) {
    const auto code = [] {
        try {
            throw std::runtime_error("cause");
        } catch (...) {
            std::throw_with_nested(std::runtime_error("effect"));
        }
    };
    EXPECT_EQ(descriptionOf(code), "std::exception: effect\n" + lookAtProgram);
}

TEST(CurrentException, DomExceptionsOfRepliesBlameTheReply) {
    runInChild([] {
        const OvMEMConnection platform;
        EXPECT_EQ(parsing("<r>"),
                  "DomException: Fatal Error: parsing: From-String: line 1, "
                  "char 4\nMessage: input ended before all started tags were "
                  "ended; last tag started is 'r'\n" +
                      wrongReply);
    });
}

TEST(CurrentException, AnEndedPlatformIsNotTheReplysFault) {
    runInChild([] {
        EXPECT_EQ(parsing("<r/>"),
                  "DomException: XML parser platform is not initialised\n"
                  "What to do: hold an XmlPlatformGuard, or one connection, "
                  "for the life of the process; if one is held, its start "
                  "failed: begin a new process.");
    });
}

TEST(CurrentException, TheLimitsOfTheGuardHaveAnAdviceOfTheirOwn) {
    runInChild([] {
        const XmlPlatformGuard guard(1000000);
        EXPECT_EQ(parsing("<" + std::string(1000000, 'r') + "/>"),
                  "DomException: XmlPlatformGuard: the XML library may hold no "
                  "more than 1000000 bytes\n" +
                      grantMore);
        std::string many;
        for (int i = 0; i < 10000; ++i) {
            many += "<c/>";
        }
        EXPECT_EQ(parsing("<r>" + many + "</r>"),
                  "DomException: XmlPlatformGuard: the tree of a document may "
                  "hold no more than 1000000 bytes\n" +
                      grantMore);
        std::string deep;
        for (int i = 0; i <= 1000; ++i) {
            deep += "<c>";
        }
        EXPECT_EQ(parsing(deep),
                  "DomException: XmlPlatformGuard: a document may be nested no "
                  "deeper than 1000 elements\n" +
                      wrongReply);
        EXPECT_EQ(descriptionOf([] {
                      xercesc::XMLPlatformUtils::panic(
                          xercesc::PanicHandler::Panic_NoTransService);
                  }),
                  "DomException: XmlPlatformGuard: the XML library cannot go "
                  "on: Could not load a transcoding service\n"
                  "What to do: end the process; its XML library is in doubt.");
    });
}

TEST(CurrentException, AGuardThatIsRefusedBlamesTheProgram) {
    runInChild([] {
        EXPECT_EQ(descriptionOf([] { const XmlPlatformGuard guard("/none"); }),
                  "DomException: XmlPlatformGuard: '/none' is not a folder\n"
                  "What to do: name a folder that exists.");
        const OvMEMConnection connection;
        EXPECT_EQ(descriptionOf([] { const XmlPlatformGuard guard; }),
                  "DomException: XmlPlatformGuard: the XML parser platform "
                  "runs already\n"
                  "What to do: construct the one XmlPlatformGuard of the "
                  "process before its first connection.");
    });
}

TEST(CurrentException, TheXmlLibrarysOwnAreNamed) {
    runInChild([] {
        const OvMEMConnection platform;
        EXPECT_EQ(describing(xercesc::OutOfMemoryException()),
                  "xercesc::OutOfMemoryException: the XML library has no "
                  "memory left\n" +
                      processMemory);
        EXPECT_EQ(describing(xercesc::SAXException("spoilt")),
                  "xercesc::SAXException: spoilt\n" + lookAtPlatform);
        EXPECT_EQ(describing(xercesc::RuntimeException(
                      __FILE__, __LINE__,
                      xercesc::XMLExcepts::Str_ZeroSizedTargetBuf)),
                  "xercesc::XMLException: target buffer cannot have zero max "
                  "size\n" +
                      lookAtPlatform);
    });
}

TEST(CurrentException, WhatIsNotAsciiIsAQuestionMark) {
    runInChild([] {
        const OvMEMConnection platform;
        EXPECT_EQ(describing(xercesc::SAXException(u"caf\u00E9, 5 \u20AC")),
                  "xercesc::SAXException: caf?, 5 ?\n" + lookAtPlatform);
    });
}

TEST(CurrentException, TheXmlLibrarysTextsCanBeReadAfterItsPlatform) {
    runInChild([] {
        const OvMEMConnection platform;
        const XMLCh text[] = {'a', 0x7F, 0x80, 0x20AC, 'z', 0};
        try {
            throw xercesc::SAXException(text);
        } catch (...) {
            const WithoutPlatform without;
            EXPECT_EQ(describeCurrentException(),
                      "xercesc::SAXException: a\x7F??z\n" + lookAtPlatform);
        }
    });
}

TEST(CurrentException, AnExceptionOfTheXmlLibraryMayHaveNoText) {
    runInChild([] {
        const OvMEMConnection platform;
        const XMLCh* const noText = nullptr;
        try {
            throw xercesc::SAXException(noText);
        } catch (...) {
            EXPECT_EQ(describeCurrentException(),
                      "xercesc::SAXException: \n" + lookAtPlatform);
            const WithoutPlatform without;
            EXPECT_EQ(describeCurrentException(),
                      "xercesc::SAXException: \n" + lookAtPlatform);
        }
    });
}

TEST(CurrentException, TheStandardLibrarysOwnAreNamed) {
    EXPECT_EQ(describing(std::bad_alloc()),
              "std::bad_alloc: std::bad_alloc\n" + processMemory);
    EXPECT_EQ(describing(std::out_of_range("index")),
              "std::exception: index\n" + lookAtProgram);
}

TEST(CurrentException, WhatNobodyKnowsIsUnknown) {
    EXPECT_EQ(describing(42),
              "unknown: an exception of a class that the library does not "
              "know\n" +
                  lookAtProgram);
}
