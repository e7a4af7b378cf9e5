#include "emulator/store/ClientListLimit.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

using Clients = std::vector<std::string>;

bool isReadable(const Clients& clients) {
    try {
        requireReadable(clients);
        return true;
    } catch (const ClientListTooLong& tooLong) {
        EXPECT_STREQ(tooLong.what(),
                     "The list of the server's clients would become too long "
                     "to be read.");
        return false;
    }
}

}  // namespace

TEST(ClientListLimit, AnEmptyListIsReadable) {
    EXPECT_TRUE(isReadable({}));
}

TEST(ClientListLimit, AClientCosts400BytesAndItsIdentity) {
    EXPECT_TRUE(isReadable(Clients(150000, "")));
    EXPECT_FALSE(isReadable(Clients(150001, "")));
    EXPECT_TRUE(isReadable(Clients(1000, std::string(59600, 'x'))));
    EXPECT_FALSE(isReadable(Clients(1000, std::string(59601, 'x'))));
}

// "&amp;" is four bytes longer than '&', "&lt;" three bytes longer than '<'.
TEST(ClientListLimit, AnEscapedByteCosts44More) {
    EXPECT_TRUE(isReadable({std::string(59999600 / 177, '&')}));
    EXPECT_FALSE(isReadable({std::string(59999600 / 177 + 1, '&')}));
    EXPECT_TRUE(isReadable({std::string(59999600 / 133, '<')}));
    EXPECT_FALSE(isReadable({std::string(59999600 / 133 + 1, '<')}));
}
