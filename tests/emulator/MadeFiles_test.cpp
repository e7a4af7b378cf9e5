#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "emulator/store/SqliteStore.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/StoreRefusal.h"
#include "tests/emulator/SystemCalls.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::pump;
using OvMemTest::storeRefusal;
using OvMemTest::SystemCall;
using OvMemTest::SystemCallWatcher;
using testing::ElementsAre;

// Which files a store makes, and when it makes none.

namespace {

namespace fs = std::filesystem;

// Only a part of what is written to one file gets there.
class ShortWrites : public SystemCallWatcher {
public:
    explicit ShortWrites(std::string file) : path(std::move(file)) {}

    Verdict before(const SystemCall& call) override {
        const bool cut =
            call.kind == SystemCall::Kind::write && call.path == path;
        return cut ? Verdict{0, call.count / 2} : Verdict{};
    }

private:
    const std::string path;
};

class MadeFiles : public testing::Test {
protected:
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : fs::directory_iterator(folder / "")) {
            all.push_back(entry.path().filename().string());
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("events.db")};
};

}  // namespace

TEST_F(MadeFiles, NothingIsMadeBesideADatabaseOfAnotherProgram) {
    for (const char* mode : {"DELETE", "WAL"}) {
        {
            SQLite::Database other(
                options.path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
            other.exec(std::string("PRAGMA journal_mode = ") + mode);
            other.exec("CREATE TABLE stock (item)");
        }
        ASSERT_THAT(names(), ElementsAre("events.db"));
        const std::string text =
            "The file '" + options.path +
            "' is a database of another program. Set OVMEM_STORE to a file of "
            "its own.";
        SqliteStore store(options);
        EXPECT_EQ(storeRefusal([&] { store.open(); }), text);
        EXPECT_THAT(names(), ElementsAre("events.db")) << mode;
        EXPECT_EQ(storeRefusal([&] { store.registerClient(pump); }), text);
        EXPECT_THAT(names(), ElementsAre("events.db")) << mode;
        fs::remove(options.path);
    }
}

TEST_F(MadeFiles, AnEmptyFileIsNoStoreUntilAClientIsRegistered) {
    folder.write("events.db", "");
    options.access = Access::group;
    SqliteStore store(options);
    store.open();
    EXPECT_EQ(store.putEvents(pump, "x"), nullptr);
    EXPECT_EQ(fs::file_size(options.path), 0U);
    EXPECT_THAT(names(), ElementsAre("events.db"));
    EXPECT_THAT(*store.registerClient(pump), ElementsAre("pump"));
    struct stat gate {};
    ASSERT_EQ(::stat((options.path + ".gate").c_str(), &gate), 0);
    EXPECT_EQ(gate.st_mode & 07777U, 0660U);
}

TEST_F(MadeFiles, AGateWithoutRoomForItsTextIsReportedAsAFullDisk) {
    if (!SystemCallWatcher::seesCalls()) {
        GTEST_SKIP() << "The thread sanitizer has the calls of the system.";
    }
    const ShortWrites writes(options.path + ".gate");
    EXPECT_EQ(
        storeRefusal([this] { SqliteStore(options).registerClient(pump); }),
        "The gate '" + options.path +
            ".gate' of the event store cannot be made (No space left on "
            "device). Free space on its disk, then repeat the call.");
}
