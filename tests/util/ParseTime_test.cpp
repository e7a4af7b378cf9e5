#include "OvMemCppBinding/util/ParseTime.h"

#include <chrono>

#include <gtest/gtest.h>

#include "tests/support/Thrown.h"

namespace {

using Orvane::Net::OvModelEventManager::Util::ParseTime;
using OvMemTest::nothingThrown;
using OvMemTest::Thrown;
using OvMemTest::thrownBy;
using std::chrono::milliseconds;

constexpr int often = 1000;

Thrown longer(const std::string& time) {
    return {"DomException", 0,
            "XmlPlatformGuard: the XML library may take no more than " + time +
                " ms of processor time for a document"};
}

class ParseTimeTest : public testing::Test {
protected:
    ~ParseTimeTest() override { ParseTime::liftLimit(); }
};

void checkOften(ParseTime& time) {
    for (int i = 0; i < often; ++i) {
        time.check();
    }
}

void checkOnceOften(ParseTime& time) {
    for (int i = 0; i < often; ++i) {
        time.checkOnce();
    }
}

}  // namespace

TEST_F(ParseTimeTest, HasNoLimitAtFirst) {
    EXPECT_FALSE(ParseTime::isLimited());
    ParseTime time;
    EXPECT_EQ(thrownBy([&time] { checkOften(time); }), nothingThrown);
}

TEST_F(ParseTimeTest, WithinTheLimitNothingIsThrown) {
    ParseTime::setLimit(std::chrono::hours(1));
    EXPECT_TRUE(ParseTime::isLimited());
    ParseTime time;
    EXPECT_EQ(thrownBy([&time] { checkOften(time); }), nothingThrown);
}

TEST_F(ParseTimeTest, BeyondTheLimitEveryCheckThrows) {
    ParseTime::setLimit(milliseconds(0));
    ParseTime time;
    EXPECT_EQ(thrownBy([&time] { checkOften(time); }), longer("0"));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(thrownBy([&time] { time.check(); }), longer("0"));
    }
}

TEST_F(ParseTimeTest, BeyondTheLimitCheckOnceThrowsOnce) {
    ParseTime::setLimit(milliseconds(0));
    ParseTime time;
    EXPECT_EQ(thrownBy([&time] { checkOnceOften(time); }), longer("0"));
    EXPECT_EQ(thrownBy([&time] { checkOnceOften(time); }), nothingThrown);
    EXPECT_EQ(thrownBy([&time] { time.check(); }), longer("0"));
}

TEST_F(ParseTimeTest, CountsFromTheConstruction) {
    ParseTime::setLimit(milliseconds(20));
    ParseTime first;
    EXPECT_EQ(thrownBy([&first] {
                  for (;;) {
                      first.check();
                  }
              }),
              longer("20"));
    // By now the thread has taken more than the limit.
    ParseTime second;
    EXPECT_EQ(thrownBy([&second] { checkOften(second); }), nothingThrown);
}

TEST_F(ParseTimeTest, ALimitThatIsLiftedIsNone) {
    ParseTime::setLimit(milliseconds(0));
    ParseTime::liftLimit();
    EXPECT_FALSE(ParseTime::isLimited());
    ParseTime time;
    EXPECT_EQ(thrownBy([&time] { checkOften(time); }), nothingThrown);
}
