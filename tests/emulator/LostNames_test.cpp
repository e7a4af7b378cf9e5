#include <chrono>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "emulator/store/SqliteStore.h"
#include "tests/emulator/Clients.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::pump;
using OvMemTest::valve;

// What becomes of a put when files of the store lose their names: while it is
// being opened or closed, and together with its folder.

namespace {

namespace fs = std::filesystem;

class LostNames : public testing::Test {
protected:
    LostNames() {
        fs::create_directory(folder.file("store"));
        makeStore(options);
    }

    static void makeStore(const SqliteOptions& where) {
        SqliteStore store(where);
        store.registerClient(pump);
        store.registerClient(valve);
    }

    // What valve gets from the files that have the names now.
    std::string pending() const {
        return SqliteStore(options).getEvents(valve).value().text;
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("store/events.db")};
};

}  // namespace

TEST_F(LostNames, APutGoesIntoTheFolderThatHasTheNameNow) {
    const std::string named = folder.file("store");
    const std::string moved = folder.file("moved");
    SqliteStore store(options);
    store.putEvents(pump, "one;");
    // As if the files had been made a minute ago.
    fs::last_write_time(
        named, fs::file_time_type::clock::now() - std::chrono::minutes(1));
    store.putEvents(pump, "two;");
    fs::rename(named, moved);
    fs::copy(moved, named, fs::copy_options::recursive);
    fs::last_write_time(named, fs::last_write_time(moved));
    store.putEvents(pump, "three;");
    EXPECT_EQ(pending(), "one;two;three;");
}
