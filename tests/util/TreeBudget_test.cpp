#include "OvMemCppBinding/util/TreeBudget.h"

#include <gtest/gtest.h>

#include "OvMemCppBinding/util/SAXToNodeParser.h"
#include "tests/support/Thrown.h"
#include "tests/util/XmlPlatform.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::SAXToNodeParser;
using Orvane::Net::OvModelEventManager::Util::TreeBudget;
using OvMemTest::nothingThrown;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;

Thrown deeper(const std::string& elements) {
    return {"DomException", 0,
            "XmlPlatformGuard: a document may be nested no deeper than " +
                elements + " elements"};
}

Thrown larger(const std::string& bytes) {
    return {"DomException", 0,
            "XmlPlatformGuard: the tree of a document may hold no more than " +
                bytes + " bytes"};
}

class TreeBudgetTest : public testing::Test {
protected:
    ~TreeBudgetTest() override { TreeBudget::liftLimits(); }

    TreeBudget budget;
};

class TreeBudgetOfAParser : public OvMemTest::XmlPlatformTest {
protected:
    ~TreeBudgetOfAParser() override { TreeBudget::liftLimits(); }

    static Thrown parsing(const std::string& xml) {
        return thrownBy([&xml] { SAXToNodeParser().parseString(xml); });
    }

    static void expectPrice(std::size_t bytes, const std::string& xml) {
        TreeBudget::setLimits(TreeBudget::unlimited, bytes);
        EXPECT_EQ(parsing(xml), nothingThrown) << xml;
        TreeBudget::setLimits(TreeBudget::unlimited, bytes - 1);
        EXPECT_EQ(parsing(xml), larger(std::to_string(bytes - 1))) << xml;
    }
};

}  // namespace

TEST_F(TreeBudgetTest, HasNoLimitsAtFirst) {
    EXPECT_EQ(thrownBy([this] {
                  for (int i = 0; i < 100000; ++i) {
                      budget.enter();
                  }
                  budget.spend(TreeBudget::unlimited);
              }),
              nothingThrown);
}

TEST_F(TreeBudgetTest, AnElementThatEndsMakesRoomForAnother) {
    TreeBudget::setLimits(2, 0);
    budget.enter();
    budget.enter();
    EXPECT_EQ(thrownBy([this] { budget.enter(); }), deeper("2"));
    budget.leave();
    budget.enter();
    EXPECT_EQ(thrownBy([this] { budget.enter(); }), deeper("2"));
}

TEST_F(TreeBudgetTest, AnEndWithoutABeginningEarnsNothing) {
    TreeBudget::setLimits(1, 0);
    budget.leave();
    budget.enter();
    EXPECT_EQ(thrownBy([this] { budget.enter(); }), deeper("1"));
}

TEST_F(TreeBudgetTest, TheWholeBudgetMayBeSpentAndNoMore) {
    TreeBudget::setLimits(0, 10);
    budget.spend(4);
    EXPECT_EQ(thrownBy([this] { budget.spend(7); }), larger("10"));
    budget.spend(6);
    EXPECT_EQ(thrownBy([this] { budget.spend(1); }), larger("10"));
    EXPECT_EQ(thrownBy([this] { budget.spend(TreeBudget::unlimited); }),
              larger("10"));
}

TEST_F(TreeBudgetTest, ANamespaceDeclarationCosts64Bytes) {
    TreeBudget::setLimits(0, 640);
    budget.declare(9);
    EXPECT_EQ(thrownBy([this] { budget.declare(2); }), larger("640"));
    budget.declare(1);
}

// Of the 1000 declarations in scope, eight are passed for a byte.
TEST_F(TreeBudgetTest, ToLookUpAPrefixCostsByTheDeclarationsInScope) {
    TreeBudget::setLimits(0, 64000 + 125 + 250);
    budget.lookUp(1000000);
    budget.declare(1000);
    budget.lookUp(1);
    EXPECT_EQ(thrownBy([this] { budget.lookUp(3); }), larger("64375"));
    budget.undeclare(1000);
    budget.lookUp(1000000);
    EXPECT_EQ(thrownBy([this] { budget.spend(251); }), larger("64375"));
    budget.spend(250);
}

TEST_F(TreeBudgetTest, EachBudgetIsOneDocuments) {
    TreeBudget::setLimits(1, 10);
    budget.enter();
    budget.spend(10);
    TreeBudget other;
    EXPECT_EQ(thrownBy([&other] {
                  other.enter();
                  other.spend(10);
              }),
              nothingThrown);
}

TEST_F(TreeBudgetOfAParser, DepthCountsElementsWithinEachOther) {
    TreeBudget::setLimits(3, TreeBudget::unlimited);
    EXPECT_EQ(parsing("<a><b><c/><c/></b><b><c>t</c></b></a>"), nothingThrown);
    EXPECT_EQ(parsing("<a><b/><b><c/><c><d/></c></b></a>"), deeper("3"));
}

TEST_F(TreeBudgetOfAParser, ElementsAttributesAndTextsCount) {
    const std::string text(1000, 'x');
    TreeBudget::setLimits(TreeBudget::unlimited, 1000);
    EXPECT_EQ(parsing("<a/>"), nothingThrown);
    EXPECT_EQ(parsing("<a>" + text + "</a>"), larger("1000"));
    EXPECT_EQ(parsing("<a b='" + text + "'/>"), larger("1000"));
    EXPECT_EQ(parsing("<a " + text + "=''/>"), larger("1000"));
    EXPECT_EQ(parsing("<" + text + "/>"), larger("1000"));
    EXPECT_EQ(parsing("<a xmlns='" + text + "'/>"), larger("1000"));
    EXPECT_EQ(parsing("<a><b/><b/><b/><b/><b/></a>"), larger("1000"));
    EXPECT_EQ(parsing("<a><!--" + text + "--></a>" + text.substr(1000)),
              nothingThrown);
}

TEST_F(TreeBudgetOfAParser, EveryPieceOfTextHasItsPrice) {
    TreeBudget::setLimits(TreeBudget::unlimited, 1000);
    std::string references;
    for (int i = 0; i < 20; ++i) {
        references += "&#65;";
    }
    EXPECT_EQ(parsing("<a>" + references + "</a>"), larger("1000"));
    EXPECT_EQ(parsing("<a>AAAAAAAAAAAAAAAAAAAA</a>"), nothingThrown);
}

TEST_F(TreeBudgetOfAParser, APartCostsItsPriceAndItsTexts) {
    expectPrice(256 + 1, "<a/>");
    expectPrice(256 + 1 + 5, "<a xmlns='urn:u'/>");
    expectPrice(256 + 1 + 5, "<p:a xmlns:p='urn:u'/>");
    expectPrice(256 + 1 + 512 + 2 + 3, "<a bc='def'/>");
    expectPrice(256 + 1 + 64 + 3, "<a>xyz</a>");
    expectPrice(2 * (256 + 1) + 2 * (64 + 1), "<a>x<b/>y</a>");
}
