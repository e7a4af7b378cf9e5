#include "OvMemCppBinding/client/Utf8ConversionException.h"

#include <type_traits>

#include <gtest/gtest.h>

#include "tests/support/Thrown.h"

// What it shares with its family stands in Exceptions_test.cpp.

namespace Orvane::Net::OvModelEventManager::Client {

TEST(Utf8ConversionException, IsAnOvMEMExceptionAndNoneOfItsLeaves) {
    using Class = Utf8ConversionException;
    EXPECT_TRUE((std::is_base_of_v<OvMEMException, Class>));
    EXPECT_FALSE((std::is_base_of_v<OvMEMRuntimeException, Class>));
    EXPECT_FALSE((std::is_base_of_v<OvMEMConnectionException, Class>));
    EXPECT_FALSE((std::is_base_of_v<OvMEMProtocolException, Class>));
    EXPECT_FALSE((std::is_base_of_v<OvMEMUnrecognisedException, Class>));
}

TEST(Utf8ConversionException, IsCaughtAsAnOvMEMException) {
    try {
        throw Utf8ConversionException("Error opening converter X\n");
    } catch (const OvMEMException& exception) {
        EXPECT_EQ(exception.getType(), 0);
        EXPECT_EQ(exception.getMessage(), "Error opening converter X\n");
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Client
