#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "emulator/store/SqliteStore.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

class SqliteStoreLimits : public testing::Test {
protected:
    OvMemTest::TemporaryFolder folder;
    const SqliteOptions options{folder.file("deep/events.db"),
                                Synchronous::normal};
};

}  // namespace

TEST_F(SqliteStoreLimits, ListsOfMoreServersThanAreKeptAreRightAllTheSame) {
    std::filesystem::create_directory(folder.file("deep"));
    SqliteStore store(options);
    constexpr int servers = 300;
    for (int server = 0; server < servers; ++server) {
        store.registerClient({std::to_string(server), "pump"});
    }
    for (int server = 0; server < servers; ++server) {
        const std::string name = std::to_string(server);
        EXPECT_EQ(*store.registerClient({name, "valve"}),
                  (std::vector<std::string>{"pump", "valve"}));
        EXPECT_EQ(*store.sharedClients({name, "pump"}),
                  (std::vector<std::string>{"pump", "valve"}));
    }
}

TEST_F(SqliteStoreLimits, AStoreWhoseFolderIsGoneIsClosedInSilence) {
    std::filesystem::create_directory(folder.file("deep"));
    std::optional<SqliteStore> store(std::in_place, options);
    store->registerClient({"plant", "pump"});
    std::filesystem::remove_all(folder.file("deep"));
    EXPECT_NO_THROW(store.reset());
    EXPECT_FALSE(std::filesystem::exists(folder.file("deep")));
}
