#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "OvMemCppBinding/schemas/SharedClientIDs.h"
#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "OvMemCppBinding/util/XmlStream.h"
#include "tests/schemas/IdsOf.h"
#include "tests/util/XmlPlatform.h"

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;
using Orvane::Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;
using OvMemTest::Ids;
using OvMemTest::idsOf;

struct Document {
    std::string file;
    Ids ids;
};

std::string contentOf(const std::string& file) {
    std::ifstream stream(OVMEM_TEST_DATA "/sharedClients/" + file + ".xml",
                         std::ios::binary);
    EXPECT_TRUE(stream) << file;
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

class SharedClientIDsRoundTrip : public OvMemTest::XmlPlatformTest,
                                 public testing::WithParamInterface<Document> {
};

TEST_P(SharedClientIDsRoundTrip, IsWrittenAsItWasRead) {
    const std::string content = contentOf(GetParam().file);
    SAXToNodeParser parser;
    const XMLNode& root = *parser.parseString(content);
    SharedClientIDs object;
    object.parse(root);
    EXPECT_EQ(idsOf(object), GetParam().ids);
    XmlStream stream;
    object.outputXML(stream, root.name);
    EXPECT_EQ(stream.str(), content);
}

INSTANTIATE_TEST_SUITE_P(
    Documents, SharedClientIDsRoundTrip,
    testing::Values(Document{"none", {}}, Document{"one", {"client-1"}},
                    Document{"order", {"b", "a", "", "b"}},
                    Document{"escaped",
                             {"<\"50%\" & 'x'>", "&amp;", "a\tb\nc"}},
                    Document{"blanks", {" id ", "  "}},
                    Document{"unicode",
                             {"Gr\xC3\xBC\xC3\x9F"
                              "e",
                              "\xE2\x82\xAC", "\xF0\x9F\x9A\x80"}}),
    [](const auto& test) { return test.param.file; });

class SharedClientIDsReply : public OvMemTest::XmlPlatformTest {
protected:
    static Ids parsed(const std::string& xml) {
        SAXToNodeParser parser;
        SharedClientIDs object;
        object.parse(*parser.parseString(xml));
        return idsOf(object);
    }
};

TEST_F(SharedClientIDsReply, MayBindTheSchemaToAnyPrefix) {
    EXPECT_EQ(parsed("<E><sharedClients>a</sharedClients></E>"), Ids{"a"});
    EXPECT_EQ(parsed("<E xmlns='urn:d'><sharedClients>a</sharedClients></E>"),
              Ids{"a"});
    EXPECT_EQ(parsed("<q:E xmlns:q='urn:q' xmlns:r='urn:r'>"
                     "<r:sharedClients>a</r:sharedClients>"
                     "<q:sharedClients>b</q:sharedClients></q:E>"),
              (Ids{"a", "b"}));
}

TEST_F(SharedClientIDsReply, MayBePrettyPrinted) {
    EXPECT_EQ(parsed("<?xml version=\"1.0\"?>\n<E>\n"
                     "  <sharedClients>a</sharedClients>\n"
                     "  <sharedClients/>\n"
                     "  <sharedClients> <!-- c --><![CDATA[<b>]]>\n"
                     "</sharedClients>\n</E>\n"),
              (Ids{"a", "", " <b>\n"}));
}

}  // namespace
