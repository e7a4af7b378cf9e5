#include "tests/support/Thrown.h"

#include <new>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/util/DomException.h"

namespace OvMemTest {

using namespace Orvane::Net::OvModelEventManager::Client;
using Orvane::Net::OvModelEventManager::Util::DomException;

TEST(Thrown, TellsTheExactTypeAndWhatItBears) {
    EXPECT_EQ(thrownBy([] {}), nothingThrown);
    EXPECT_EQ(thrownBy([] { throw Exception(3, "e"); }),
              (Thrown{"Exception", 3, "e"}));
    EXPECT_EQ(thrownBy([] { throw OvMEMRuntimeException("r"); }),
              (Thrown{"OvMEMRuntimeException", 0, "r"}));
    EXPECT_EQ(thrownBy([] { throw new OvMEMProtocolException(-2, "p"); }),
              (Thrown{"OvMEMProtocolException*", -2, "p"}));
    EXPECT_EQ(thrownBy([] { throw DomException("d\n"); }),
              (Thrown{"DomException", 0, "d\n"}));
    EXPECT_EQ(thrownBy([] { throw std::logic_error("l"); }),
              (Thrown{"logic_error", 0, "l"}));
    EXPECT_EQ(thrownBy([] { throw std::bad_alloc(); }),
              (Thrown{"bad_alloc", 0, "std::bad_alloc"}));
    EXPECT_EQ(thrownBy([] { throw 1; }), (Thrown{"int", 0, ""}));
}

TEST(Thrown, IsDifferentInEveryPart) {
    const Thrown one{"A", 1, "x"};
    EXPECT_NE(one, (Thrown{"B", 1, "x"}));
    EXPECT_NE(one, (Thrown{"A", 2, "x"}));
    EXPECT_NE(one, (Thrown{"A", 1, "y"}));
}

TEST(Thrown, IsShownInOneLine) {
    std::ostringstream text;
    text << Thrown{"A*", -1, "x\n"};
    EXPECT_EQ(text.str(), "A*(-1, \"x\\n\")");
}

}  // namespace OvMemTest
