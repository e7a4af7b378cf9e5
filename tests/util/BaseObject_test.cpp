#include "OvMemCppBinding/util/BaseObject.h"

#include <memory>
#include <new>
#include <type_traits>

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/XmlStream.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::BaseObject;
using Orvane::Net::OvModelEventManager::Util::XmlStream;

static_assert(std::is_abstract_v<BaseObject>);
static_assert(!std::is_destructible_v<BaseObject>, "unref is the way");

// The smallest schema object. It tells when it is destroyed and counts how
// often it is asked for its namespaces.
class Leaf : public BaseObject {
public:
    Leaf() = default;
    explicit Leaf(const char* uri) : BaseObject(uri) {}
    Leaf(const Leaf&) = default;
    Leaf& operator=(const Leaf&) = default;
    ~Leaf() override {
        if (destroyed != nullptr)
            ++*destroyed;
    }

    Leaf* reallyClone() override { return new Leaf(*this); }

    void getNamespaces(std::set<std::string>& namespaces) const override {
        ++asked;
        namespaces.insert(namespaceURI);
        namespaces.insert("urn:other");
    }

    const std::string& uri() const { return namespaceURI; }

    bool open(XmlStream& stream, const std::string& name,
              const char* caller = "Leaf::open") const {
        return outputXMLBase(stream, name, caller);
    }

    int* destroyed = nullptr;
    mutable int asked = 0;
};

// The private forms of ref and unref.
template <auto addRef, auto removeRef>
struct PrivateForms {
    friend void addRefOf(BaseObject& object) { (object.*addRef)(); }
    friend void removeRefOf(BaseObject& object) { (object.*removeRef)(); }
};
void addRefOf(BaseObject& object);
void removeRefOf(BaseObject& object);
template struct PrivateForms<&BaseObject::addRef, &BaseObject::removeRef>;

TEST(BaseObject, BeginsWithCountZero) {
    const Leaf leaf;
    EXPECT_EQ(leaf.askRefCount(), 0);
    EXPECT_EQ(leaf.uri(), "");
}

TEST(BaseObject, CopiesTheNamespaceItIsGiven) {
    char uri[] = "urn:u";
    const Leaf leaf(uri);
    uri[0] = 'X';
    EXPECT_EQ(leaf.uri(), "urn:u");
    EXPECT_EQ(leaf.askRefCount(), 0);
}

TEST(BaseObject, TakesANullNamespaceForTheEmptyText) {
    EXPECT_EQ(Leaf(nullptr).uri(), "");
}

TEST(BaseObject, CountsItsHolders) {
    auto* leaf = new Leaf;
    int destroyed = 0;
    leaf->destroyed = &destroyed;
    leaf->ref();
    leaf->ref();
    leaf->ref();
    EXPECT_EQ(leaf->askRefCount(), 3);
    leaf->unref();
    EXPECT_EQ(leaf->askRefCount(), 2);
    leaf->unref();
    EXPECT_EQ(leaf->askRefCount(), 1);
    EXPECT_EQ(destroyed, 0);
    leaf->unref();
    EXPECT_EQ(destroyed, 1);
}

TEST(BaseObject, TheLastHolderDeletesItThroughItsVirtualDestructor) {
    int destroyed = 0;
    auto* leaf = new Leaf("urn:u");
    leaf->destroyed = &destroyed;
    BaseObject* object = leaf;
    object->ref();
    object->unref();
    EXPECT_EQ(destroyed, 1);
}

TEST(BaseObject, ItsPrivateFormsCountLikeThePublicOnes) {
    int destroyed = 0;
    auto* leaf = new Leaf;
    leaf->destroyed = &destroyed;
    addRefOf(*leaf);
    leaf->ref();
    EXPECT_EQ(leaf->askRefCount(), 2);
    leaf->unref();
    EXPECT_EQ(destroyed, 0);
    removeRefOf(*leaf);
    EXPECT_EQ(destroyed, 1);
}

TEST(BaseObject, SurvivesAnUnrefWithoutARef) {
    int destroyed = 0;
    auto leaf = std::make_unique<Leaf>();
    leaf->destroyed = &destroyed;
    leaf->unref();
    EXPECT_EQ(leaf->askRefCount(), -1);
    leaf->unref();
    EXPECT_EQ(leaf->askRefCount(), -2);
    EXPECT_EQ(destroyed, 0);
}

TEST(BaseObject, ARefUpToZeroDeletesNothing) {
    int destroyed = 0;
    auto leaf = std::make_unique<Leaf>();
    leaf->destroyed = &destroyed;
    leaf->unref();
    leaf->ref();
    EXPECT_EQ(leaf->askRefCount(), 0);
    EXPECT_EQ(destroyed, 0);
}

TEST(BaseObject, ACopyTakesTheCountAlong) {
    Leaf leaf("urn:u");
    leaf.ref();
    leaf.ref();
    leaf.ref();
    const Leaf copy(leaf);
    EXPECT_EQ(copy.askRefCount(), 3);
    EXPECT_EQ(copy.uri(), "urn:u");
    EXPECT_EQ(leaf.askRefCount(), 3);
}

TEST(BaseObject, AnAssignmentTakesTheCountAlong) {
    Leaf leaf("urn:u");
    leaf.ref();
    leaf.ref();
    Leaf assigned("urn:v");
    assigned.ref();
    Leaf& result = (assigned = leaf);
    EXPECT_EQ(&result, &assigned);
    EXPECT_EQ(assigned.askRefCount(), 2);
    EXPECT_EQ(assigned.uri(), "urn:u");
    EXPECT_EQ(leaf.askRefCount(), 2);
}

TEST(BaseObject, AssigningItToItselfChangesNothing) {
    Leaf leaf("urn:a-namespace-that-needs-memory-of-its-own");
    leaf.ref();
    const Leaf& itself = leaf;
    leaf = itself;
    EXPECT_EQ(leaf.uri(), "urn:a-namespace-that-needs-memory-of-its-own");
    EXPECT_EQ(leaf.askRefCount(), 1);
}

TEST(BaseObject, ACloneBeginsWithCountZero) {
    Leaf leaf("urn:u");
    leaf.ref();
    leaf.ref();
    leaf.ref();
    const std::unique_ptr<Leaf> clone(dynamic_cast<Leaf*>(leaf.clone()));
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone.get(), &leaf);
    EXPECT_EQ(clone->askRefCount(), 0);
    EXPECT_EQ(clone->uri(), "urn:u");
    EXPECT_EQ(leaf.askRefCount(), 3);
}

TEST(BaseObject, AReallyCloneKeepsTheCount) {
    Leaf leaf("urn:u");
    leaf.ref();
    leaf.ref();
    const std::unique_ptr<Leaf> clone(leaf.reallyClone());
    EXPECT_EQ(clone->askRefCount(), 2);
}

TEST(BaseObject, AnOwnedCloneGoesWithItsOwner) {
    int destroyed = 0;
    Leaf leaf("urn:u");
    auto* clone = static_cast<Leaf*>(leaf.clone());
    clone->destroyed = &destroyed;
    clone->ref();
    clone->unref();
    EXPECT_EQ(destroyed, 1);
}

TEST(BaseObject, OpensTheFirstElementWithAllItsNamespaces) {
    const Leaf leaf("urn:u");
    XmlStream stream;
    EXPECT_TRUE(leaf.open(stream, "E"));
    EXPECT_EQ(stream.str(), R"(
<ns1:E xmlns:ns0="urn:other" xmlns:ns1="urn:u")");
    EXPECT_FALSE(stream.isFirstElement());
    EXPECT_EQ(leaf.asked, 1);
}

TEST(BaseObject, OnlyTheFirstOfTwoDeclaresTheNamespaces) {
    const Leaf first("urn:u");
    const Leaf second("urn:v");
    XmlStream stream;
    EXPECT_TRUE(first.open(stream, "A"));
    stream << ">";
    EXPECT_FALSE(second.open(stream, "B"));
    stream << ">";
    EXPECT_FALSE(first.open(stream, "C"));
    EXPECT_EQ(stream.str(), R"(
<ns1:A xmlns:ns0="urn:other" xmlns:ns1="urn:u">
<B>
<ns1:C)");
    EXPECT_EQ(second.asked, 0);
    EXPECT_EQ(first.asked, 1);
}

TEST(BaseObject, KeepsThePrefixesTheStreamKnowsAlready) {
    const Leaf leaf("urn:u");
    XmlStream stream;
    stream.addNamespace("urn:z");
    stream.addNamespace("urn:u");
    EXPECT_TRUE(leaf.open(stream, "E"));
    EXPECT_EQ(stream.str(),
              "\n<ns1:E xmlns:ns2=\"urn:other\" xmlns:ns1=\"urn:u\""
              " xmlns:ns0=\"urn:z\"");
}

TEST(BaseObject, WritesBehindWhatTheStreamHolds) {
    const Leaf leaf("urn:u");
    XmlStream stream;
    stream << "text";
    EXPECT_TRUE(leaf.open(stream, "E"));
    EXPECT_EQ(stream.str(), R"(text
<ns1:E xmlns:ns0="urn:other" xmlns:ns1="urn:u")");
}

// A stream that was read to its end takes no more text either.
TEST(BaseObject, RefusesAStreamThatTakesNoMoreText) {
    const Leaf leaf("urn:u");
    for (const std::ios_base::iostate state :
         {std::ios_base::badbit, std::ios_base::failbit,
          std::ios_base::eofbit}) {
        XmlStream stream;
        stream << "text";
        stream.setstate(state);
        EXPECT_THROW(leaf.open(stream, "E"), std::bad_alloc);
        EXPECT_EQ(stream.str(), "text");
    }
}

TEST(BaseObject, DoesNotUseTheNameOfTheCaller) {
    const Leaf leaf("urn:u");
    XmlStream stream;
    EXPECT_TRUE(leaf.open(stream, "E", nullptr));
    EXPECT_EQ(stream.str(), R"(
<ns1:E xmlns:ns0="urn:other" xmlns:ns1="urn:u")");
}

}  // namespace
