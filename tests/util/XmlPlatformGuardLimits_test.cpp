#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/OvMEMConnection.h"
#include "OvMemCppBinding/util/LimitedMemory.h"
#include "OvMemCppBinding/util/ParseTime.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "OvMemCppBinding/util/TreeBudget.h"
#include "OvMemCppBinding/util/XmlPlatformGuard.h"
#include "tests/support/RunInChild.h"
#include "tests/support/Thrown.h"
#include "tests/util/GuardedParsing.h"

namespace {

using Orvane::Net::OvModelEventManager::Client::OvMEMConnection;
using Orvane::Net::OvModelEventManager::Util::LimitedMemory;
using Orvane::Net::OvModelEventManager::Util::ParseTime;
using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;
using Orvane::Net::OvModelEventManager::Util::TreeBudget;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;
using OvMemTest::domException;
using OvMemTest::nothingThrown;
using OvMemTest::parsing;
using OvMemTest::runInChild;
using OvMemTest::Thrown;

// Names that are all the same to the XML library's hash.
std::string collidingElements(int count) {
    std::string xml = "<r>";
    for (int number = 0; number < count; ++number) {
        xml += '<';
        for (int bit = 0; bit < 16; ++bit) {
            xml += number >> bit & 1 ? "ax" : "bR";
        }
        xml += "/>";
    }
    return xml + "</r>";
}

}  // namespace

TEST(XmlPlatformGuard, LimitsTheMemoryOfTheXmlLibrary) {
    runInChild([] {
        const XmlPlatformGuard guard(1000000);
        const std::size_t before = LimitedMemory::instance().held();
        const Thrown tooMuch =
            domException("the XML library may hold no more than 1000000 bytes");
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
        for (int time = 0; time < 3; ++time) {
            EXPECT_EQ(parsing("<" + std::string(1000000, 'r') + "/>"), tooMuch);
            EXPECT_EQ(LimitedMemory::instance().held(), before);
        }
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
    });
}

TEST(XmlPlatformGuard, WhereverTheLimitIsMetADocumentEndsAndNothingIsLost) {
    runInChild([] {
        const XmlPlatformGuard guard;
        parsing("<r/>");
        const std::size_t before = LimitedMemory::instance().held();
        const std::string element =
            "<p:r xmlns:p='urn:p' a='&lt;'><![CDATA[x]]><!-- c --><?p i?>"
            "&#xE9;</p:r>";
        const std::string good = "<?xml version='1.0'?>" + element;
        const std::string bad = "<?xml encoding='UTF-16BE'?>" + element;
        std::size_t limit = 0;
        for (bool enough = false; !enough; limit += 256) {
            LimitedMemory::instance().limitGrowth(limit);
            const Thrown thrown = parsing(good);
            enough = thrown == nothingThrown;
            ASSERT_TRUE(enough ||
                        thrown ==
                            domException("the XML library may hold no "
                                         "more than " +
                                         std::to_string(limit) + " bytes"))
                << thrown;
            ASSERT_EQ(parsing(bad).type, "DomException") << limit;
            ASSERT_EQ(LimitedMemory::instance().held(), before) << limit;
        }
        EXPECT_GT(limit, 100000U);
    });
}

// The XML library loses the name if the value does not fit: 7 MB.
TEST(XmlPlatformGuard, AfterThirtyRepliesBeyondTheLimitANormalOneWorks) {
    runInChild([] {
        const XmlPlatformGuard guard;
        const std::string tooLong = "<r " + std::string(3690987, 'n') + "='" +
                                    std::string(167772, 'v') + "'/>";
        parsing("<r/>");
        const std::size_t before = LimitedMemory::instance().held();
        for (int time = 0; time < 30; ++time) {
            EXPECT_EQ(parsing(tooLong),
                      domException("the XML library may hold no more than "
                                   "16777216 bytes"));
        }
        EXPECT_EQ(LimitedMemory::instance().held(), before);
        EXPECT_EQ(parsing("<r/>"), nothingThrown);
    });
}

TEST(XmlPlatformGuard, AParserUsedTwiceGivesBackBothReaders) {
    runInChild([] {
        const XmlPlatformGuard guard;
        parsing("<r/>");
        const std::size_t before = LimitedMemory::instance().held();
        {
            SAXToNodeParser parser;
            parser.parseString("<r/>");
            parser.parseString("<s/>");
            EXPECT_EQ(parser.getRootNode()->name, "s");
        }
        EXPECT_EQ(LimitedMemory::instance().held(), before);
    });
}

TEST(XmlPlatformGuard, LimitsTheTreeByAsMuch) {
    runInChild([] {
        const XmlPlatformGuard guard(1000000);
        const auto list = [](int count) {
            std::string xml = "<r>";
            for (int i = 0; i < count; ++i) {
                xml += "<c>" + std::string(1000, 'x') + "</c>";
            }
            return xml + "</r>";
        };
        EXPECT_EQ(parsing(list(1000)),
                  domException("the tree of a document may hold no more than "
                               "1000000 bytes"));
        EXPECT_EQ(parsing(list(700)), nothingThrown);
    });
}

// As much as 1000 declarations of 64 bytes each, and 125 for each element that
// is looked up among them.
TEST(XmlPlatformGuard, ChargesTheTreeForNamespaceDeclarationsInScope) {
    runInChild([] {
        const XmlPlatformGuard guard;
        TreeBudget::setLimits(TreeBudget::unlimited, 1000000);
        std::string declarations;
        for (int i = 0; i < 1000; ++i) {
            declarations += " xmlns:p" + std::to_string(i) + "='u'";
        }
        const auto repeated = [](const std::string& text, int times) {
            std::string all;
            for (int i = 0; i < times; ++i) {
                all += text;
            }
            return all;
        };
        const Thrown tooLarge = domException(
            "the tree of a document may hold no more than "
            "1000000 bytes");
        // Bytes for each: 256 + 1 + 125.
        const std::string root = "<r" + declarations + ">";
        EXPECT_EQ(parsing(root + repeated("<a/>", 2448) + "</r>"),
                  nothingThrown);
        EXPECT_EQ(parsing(root + repeated("<a/>", 2450) + "</r>"), tooLarge);
        EXPECT_EQ(parsing(root + repeated("<a></a>", 2450) + "</r>"), tooLarge);
        EXPECT_EQ(parsing("<r>" + repeated("<a/>", 3800) + "</r>"),
                  nothingThrown);
        // Out of scope they are passed no more.
        for (const std::string end : {"/>", "></b>"}) {
            EXPECT_EQ(parsing("<r><b" + declarations + end +
                              repeated("<a/>", 3600) + "</r>"),
                      nothingThrown);
        }
        // A prefix of an attribute is looked up as well, twice at worst; the
        // element itself once. 256 + 1 + 512 + 1 + 3 * 125.
        const std::string attributed = "<a p999:a=''/>";
        EXPECT_EQ(parsing(root + repeated(attributed, 815) + "</r>"),
                  nothingThrown);
        EXPECT_EQ(parsing(root + repeated(attributed, 818) + "</r>"), tooLarge);
        // A default namespace is a declaration, too: 64 + 1 for the URI.
        EXPECT_EQ(parsing("<r>" + repeated("<a xmlns='u'/>", 3090) + "</r>"),
                  nothingThrown);
        EXPECT_EQ(parsing("<r>" + repeated("<a xmlns='u'/>", 3110) + "</r>"),
                  tooLarge);
    });
}

TEST(XmlPlatformGuard, LimitsTheDepthUntilItsEnd) {
    runInChild([] {
        std::optional<XmlPlatformGuard> guard(std::in_place);
        const OvMEMConnection connection;
        std::string deep;
        for (int i = 0; i < 1001; ++i) {
            deep = "<r>" + deep + "</r>";
        }
        EXPECT_EQ(parsing(deep),
                  domException("a document may be nested no deeper than 1000 "
                               "elements"));
        EXPECT_EQ(parsing(deep.substr(3, deep.size() - 7)), nothingThrown);
        guard.reset();
        EXPECT_EQ(parsing(deep), nothingThrown);
    });
}

TEST(XmlPlatformGuard, ItsDefaultLimitIs16MiB) {
    runInChild([] {
        const XmlPlatformGuard guard;
        EXPECT_EQ(parsing("<r>" + std::string(17000000, 'x') + "</r>"),
                  domException("the tree of a document may hold no more than "
                               "16777216 bytes"));
    });
}

TEST(XmlPlatformGuard, AFolderComesWithTheSameLimits) {
    runInChild([] {
        const XmlPlatformGuard guard("/");
        EXPECT_EQ(parsing("<r>" + std::string(17000000, 'x') + "</r>"),
                  domException("the tree of a document may hold no more than "
                               "16777216 bytes"));
    });
}

TEST(XmlPlatformGuard, LimitsTheProcessorTimeOfADocumentUntilItsEnd) {
    runInChild([] {
        std::optional<XmlPlatformGuard> guard(std::in_place);
        const OvMEMConnection connection;
        EXPECT_EQ(parsing(collidingElements(30000)),
                  domException("the XML library may take no more than 750 ms "
                               "of processor time for a document"));
        EXPECT_EQ(parsing(collidingElements(1000)), nothingThrown);
        guard.reset();
        EXPECT_FALSE(ParseTime::isLimited());
    });
}

TEST(XmlPlatformGuard, WithTwiceTheMemoryComesTwiceTheTime) {
    runInChild([] {
        const XmlPlatformGuard guard(32u * 1024u * 1024u);
        EXPECT_EQ(parsing(collidingElements(40000)),
                  domException("the XML library may take no more than 1500 ms "
                               "of processor time for a document"));
    });
}

TEST(XmlPlatformGuard, AnyAmountOfMemoryLeavesATimeThatCanBeCounted) {
    runInChild([] {
        const XmlPlatformGuard guard(std::numeric_limits<std::size_t>::max());
        EXPECT_EQ(parsing(collidingElements(1000)), nothingThrown);
    });
}
