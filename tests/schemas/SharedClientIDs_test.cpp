#include "OvMemCppBinding/schemas/SharedClientIDs.h"

#include <memory>
#include <new>
#include <type_traits>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/DomException.h"
#include "OvMemCppBinding/util/XMLNode.h"
#include "OvMemCppBinding/util/XmlStream.h"
#include "tests/schemas/IdsOf.h"
#include "tests/support/Thrown.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::BaseObject;
using Orvane::Net::OvModelEventManager::Util::XMLNode;
using Orvane::Net::OvModelEventManager::Util::XmlStream;
using Orvane::Schemas::OvModelEventManager::_2009_06::Base::SharedClientIDs;
using OvMemTest::Ids;
using OvMemTest::idsOf;
using OvMemTest::nothingThrown;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;

static_assert(std::is_base_of_v<BaseObject, SharedClientIDs>);
static_assert(std::has_virtual_destructor_v<SharedClientIDs>);

const std::string schema =
    "http://www.orvane.com/Schemas/OvModelEventManager/_2009_06/base";

const Ids longIds{"an identifier that needs memory of its own", "", "b", "b"};

SharedClientIDs holding(const Ids& ids) {
    SharedClientIDs object;
    object.setSharedClients(ids);
    return object;
}

std::set<std::string> namespacesOf(const SharedClientIDs& object) {
    std::set<std::string> namespaces;
    object.getNamespaces(namespaces);
    return namespaces;
}

std::string written(const SharedClientIDs& object, const std::string& name) {
    XmlStream stream;
    object.outputXML(stream, name);
    return stream.str();
}

void addChild(XMLNode& parent, const std::string& name,
              const std::string& text) {
    auto child = std::make_unique<XMLNode>();
    child->name = name;
    child->text = text;
    child->parent = &parent;
    parent.children.push_back(child.release());
}

TEST(SharedClientIDs, BeginsEmptyWithCountZero) {
    SharedClientIDs object;
    EXPECT_EQ(idsOf(object), Ids());
    EXPECT_EQ(object.askRefCount(), 0);
    EXPECT_EQ(namespacesOf(object), std::set<std::string>{schema});
}

TEST(SharedClientIDs, AddsItsNamespaceToThoseAlreadyThere) {
    std::set<std::string> namespaces{"urn:other"};
    SharedClientIDs().getNamespaces(namespaces);
    EXPECT_EQ(namespaces, (std::set<std::string>{schema, "urn:other"}));
}

TEST(SharedClientIDs, KeepsOrderDuplicatesAndEmptyIdentifiers) {
    SharedClientIDs object;
    for (const char* id : {"b", "", "a", "b", ""})
        object.addSharedClientID(id);
    EXPECT_EQ(idsOf(object), (Ids{"b", "", "a", "b", ""}));
}

TEST(SharedClientIDs, SettingAddsToTheList) {
    SharedClientIDs object;
    object.addSharedClientID("a");
    object.setSharedClients({"x"});
    EXPECT_EQ(idsOf(object), (Ids{"a", "x"}));
    object.setSharedClients({});
    object.setSharedClients({"y", "x"});
    EXPECT_EQ(idsOf(object), (Ids{"a", "x", "y", "x"}));
}

TEST(SharedClientIDs, GettingAppendsToWhatIsThere) {
    SharedClientIDs object = holding({"a", "b"});
    Ids out{"before"};
    object.getSharedClients(out);
    object.getSharedClients(out);
    EXPECT_EQ(out, (Ids{"before", "a", "b", "a", "b"}));
    EXPECT_EQ(idsOf(object), (Ids{"a", "b"}));
}

TEST(SharedClientIDs, ACopyHasTheListAndTheCount) {
    SharedClientIDs object = holding(longIds);
    object.ref();
    object.ref();
    SharedClientIDs copy(object);
    object.addSharedClientID("later");
    EXPECT_EQ(idsOf(copy), longIds);
    EXPECT_EQ(copy.askRefCount(), 2);
    EXPECT_EQ(namespacesOf(copy), std::set<std::string>{schema});
}

TEST(SharedClientIDs, AMoveLeavesAnEmptyListButNamespaceAndCount) {
    SharedClientIDs object = holding(longIds);
    object.ref();
    SharedClientIDs moved(std::move(object));
    EXPECT_EQ(idsOf(moved), longIds);
    EXPECT_EQ(moved.askRefCount(), 1);
    EXPECT_EQ(namespacesOf(moved), std::set<std::string>{schema});
    EXPECT_EQ(idsOf(object), Ids());
    EXPECT_EQ(object.askRefCount(), 1);
    EXPECT_EQ(namespacesOf(object), std::set<std::string>{schema});
}

TEST(SharedClientIDs, AnAssignmentReplacesListAndCount) {
    SharedClientIDs object = holding(longIds);
    object.ref();
    SharedClientIDs assigned = holding({"old"});
    SharedClientIDs& result = (assigned = object);
    EXPECT_EQ(&result, &assigned);
    EXPECT_EQ(idsOf(assigned), longIds);
    EXPECT_EQ(assigned.askRefCount(), 1);
    EXPECT_EQ(idsOf(object), longIds);
}

TEST(SharedClientIDs, AMoveAssignmentTakesTheListOver) {
    SharedClientIDs object = holding(longIds);
    object.ref();
    object.ref();
    SharedClientIDs assigned = holding({"old"});
    SharedClientIDs& result = (assigned = std::move(object));
    EXPECT_EQ(&result, &assigned);
    EXPECT_EQ(idsOf(assigned), longIds);
    EXPECT_EQ(assigned.askRefCount(), 2);
    EXPECT_EQ(idsOf(object), Ids());
    EXPECT_EQ(object.askRefCount(), 2);
    EXPECT_EQ(namespacesOf(object), std::set<std::string>{schema});
}

TEST(SharedClientIDs, AssignedToItselfItStaysAsItIs) {
    SharedClientIDs object = holding(longIds);
    object.ref();
    SharedClientIDs& itself = object;
    object = itself;
    EXPECT_EQ(idsOf(object), longIds);
    EXPECT_EQ(object.askRefCount(), 1);
    object = std::move(itself);
    EXPECT_EQ(idsOf(object), longIds);
    EXPECT_EQ(object.askRefCount(), 1);
    EXPECT_EQ(namespacesOf(object), std::set<std::string>{schema});
}

TEST(SharedClientIDs, ACloneHasTheListAndCountZero) {
    SharedClientIDs object = holding(longIds);
    object.ref();
    auto* clone = dynamic_cast<SharedClientIDs*>(object.clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->askRefCount(), 0);
    EXPECT_EQ(idsOf(*clone), longIds);
    clone->ref();
    clone->unref();
    EXPECT_EQ(idsOf(object), longIds);
}

TEST(SharedClientIDs, AReallyCloneKeepsTheCount) {
    SharedClientIDs object = holding(longIds);
    object.ref();
    const std::unique_ptr<SharedClientIDs> clone(object.reallyClone());
    EXPECT_EQ(clone->askRefCount(), 1);
    EXPECT_EQ(idsOf(*clone), longIds);
}

TEST(SharedClientIDs, WritesItselfAsOneElement) {
    EXPECT_EQ(written(holding({"x1", "y&z"}), "E"),
              "\n<ns0:E xmlns:ns0=\"" + schema +
                  "\"><ns0:sharedClients>x1</ns0:sharedClients>"
                  "<ns0:sharedClients>y&amp;z</ns0:sharedClients></ns0:E>");
}

TEST(SharedClientIDs, WritesAnEmptyListAsStartAndEndTag) {
    EXPECT_EQ(written(SharedClientIDs(), "E"),
              "\n<ns0:E xmlns:ns0=\"" + schema + "\"></ns0:E>");
}

TEST(SharedClientIDs, WritesIdentifiersEscapedAndOtherwiseAsTheyAre) {
    EXPECT_EQ(written(holding({"", " \t\n\r", "<\"%'>", "\xC3\xA9"}), "E"),
              "\n<ns0:E xmlns:ns0=\"" + schema +
                  "\"><ns0:sharedClients></ns0:sharedClients>"
                  "<ns0:sharedClients> &#9;&#10;\r</ns0:sharedClients>"
                  "<ns0:sharedClients>&lt;&quot;&#x25;&apos;&gt;"
                  "</ns0:sharedClients>"
                  "<ns0:sharedClients>\xC3\xA9</ns0:sharedClients></ns0:E>");
}

TEST(SharedClientIDs, TakesTheNameOfTheElementAsItStands) {
    EXPECT_EQ(written(holding({"a"}), "x:E"),
              "\n<x:E xmlns:ns0=\"" + schema +
                  "\"><ns0:sharedClients>a</ns0:sharedClients></x:E>");
}

TEST(SharedClientIDs, UsesThePrefixTheStreamKnows) {
    XmlStream stream;
    stream.addNamespace("urn:other");
    stream.addNamespace(schema);
    stream << stream.startElement("urn:other", "root")
           << stream.closeStartTag(false);
    holding({"a"}).outputXML(stream, "E");
    holding({"b"}).outputXML(stream, "F");
    EXPECT_EQ(stream.str(),
              "\n<ns0:root xmlns:ns1=\"" + schema +
                  "\" xmlns:ns0=\"urn:other\">"
                  "\n<ns1:E><ns1:sharedClients>a</ns1:sharedClients></ns1:E>"
                  "\n<ns1:F><ns1:sharedClients>b</ns1:sharedClients></ns1:F>");
}

TEST(SharedClientIDs, WritesABareColonWhereTheSchemaWasNotDeclared) {
    XmlStream stream;
    stream << stream.startElement("urn:other", "root")
           << stream.closeStartTag(false);
    holding({"a", "b"}).outputXML(stream, "E");
    EXPECT_EQ(stream.str(), R"(
<root>
<E><:sharedClients>a</:sharedClients><:sharedClients>b</:sharedClients></E>)");
}

TEST(SharedClientIDs, RefusesAStreamThatTakesNoMoreText) {
    for (const std::ios_base::iostate state :
         {std::ios_base::badbit, std::ios_base::failbit,
          std::ios_base::eofbit}) {
        XmlStream stream;
        stream << "text";
        stream.setstate(state);
        EXPECT_THROW(holding({}).outputXML(stream, "E"), std::bad_alloc);
        EXPECT_EQ(stream.str(), "text");
    }
}

TEST(SharedClientIDs, WritingLeavesTheListAlone) {
    SharedClientIDs object = holding(longIds);
    EXPECT_EQ(written(object, "E"), written(object, "E"));
    EXPECT_EQ(idsOf(object), longIds);
}

TEST(SharedClientIDs, ParsesTheTextOfEachChildUntrimmed) {
    XMLNode node;
    addChild(node, "sharedClients", " id ");
    addChild(node, "sharedClients", "");
    addChild(node, "sharedClients", "&lt;");
    SharedClientIDs object;
    object.parse(node);
    EXPECT_EQ(idsOf(object), (Ids{" id ", "", "&lt;"}));
}

TEST(SharedClientIDs, LooksAtNothingButNamesAndTextsOfTheChildren) {
    XMLNode node;
    node.name = "anything";
    node.namespaceURI = "urn:any";
    node.text = "text";
    addChild(node, "sharedClients", "a");
    node.children[0]->namespaceURI = "urn:other";
    node.children[0]->setAttribute("k", "v");
    addChild(*node.children[0], "grandchild", "g");
    SharedClientIDs object;
    object.parse(node);
    EXPECT_EQ(idsOf(object), Ids{"a"});
    EXPECT_EQ(namespacesOf(object), std::set<std::string>{schema});
}

TEST(SharedClientIDs, ANodeWithoutChildrenAddsNothing) {
    SharedClientIDs object = holding({"a"});
    object.parse(XMLNode());
    EXPECT_EQ(idsOf(object), Ids{"a"});
}

TEST(SharedClientIDs, ParsingTwiceAccumulates) {
    XMLNode first;
    addChild(first, "sharedClients", "a");
    XMLNode second;
    addChild(second, "sharedClients", "b");
    addChild(second, "sharedClients", "a");
    SharedClientIDs object;
    object.parse(first);
    object.parse(second);
    EXPECT_EQ(idsOf(object), (Ids{"a", "b", "a"}));
}

TEST(SharedClientIDs, AnUnexpectedChildEndsTheParsingBehindTheGoodOnes) {
    XMLNode node;
    addChild(node, "sharedClients", "a");
    addChild(node, "other", "b");
    addChild(node, "sharedClients", "c");
    SharedClientIDs object = holding({"before"});
    EXPECT_EQ(thrownBy([&] { object.parse(node); }),
              (Thrown{"DomException", 0, "Unexpected node name: other"}));
    EXPECT_EQ(idsOf(object), (Ids{"before", "a"}));
}

TEST(SharedClientIDs, ComparesTheWholeNameOfAChildExactly) {
    for (const char* name :
         {"", "sharedclients", "SharedClients", "sharedClient",
          "sharedClients ", "sharedClientsX", "ns0:sharedClients"}) {
        XMLNode node;
        addChild(node, name, "a");
        SharedClientIDs object;
        EXPECT_EQ(thrownBy([&] { object.parse(node); }),
                  (Thrown{"DomException", 0,
                          std::string("Unexpected node name: ") + name}));
        EXPECT_EQ(idsOf(object), Ids());
    }
}

TEST(SharedClientIDs, StepsOverAChildThatIsNull) {
    XMLNode node;
    node.children.push_back(nullptr);
    addChild(node, "sharedClients", "a");
    SharedClientIDs object;
    EXPECT_EQ(thrownBy([&] { object.parse(node); }), nothingThrown);
    EXPECT_EQ(idsOf(object), Ids{"a"});
}

}  // namespace
