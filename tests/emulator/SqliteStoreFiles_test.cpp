#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "emulator/store/SqliteStore.h"
#include "tests/emulator/Clients.h"
#include "tests/emulator/StoppedHolder.h"
#include "tests/emulator/StoreRefusal.h"
#include "tests/emulator/SystemCalls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using namespace std::chrono_literals;
using OvMemTest::ChildProcess;
using OvMemTest::pump;
using OvMemTest::storeRefusal;
using OvMemTest::SystemCall;
using OvMemTest::SystemCallWatcher;
using OvMemTest::valve;
using testing::ElementsAre;

// Rights, names and identity of the files of a store.

namespace {

namespace fs = std::filesystem;

unsigned rightsOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

// Another process that puts an empty log in the place of the present one each
// time this thread is about to open the store: the first `times`.
class ChangingLog : public SystemCallWatcher {
public:
    ChangingLog(std::string database, int howOften)
        : path(std::move(database)), times(howOften) {}

    Verdict before(const SystemCall& call) override {
        if (call.kind == SystemCall::Kind::open && call.path == path &&
            times > 0) {
            --times;
            ++opened;
            std::ofstream(path + "-other").close();
            fs::rename(path + "-other", path + "-wal");
        }
        return {};
    }

    // There is one before the store is opened, too.
    void after(const SystemCall& call, long) override {
        if (call.kind == SystemCall::Kind::remove &&
            call.path == path + "-wal") {
            std::ofstream(call.path).close();
        }
    }

    int openings() const { return opened; }

private:
    const std::string path;
    int times;
    int opened = 0;
};

class SqliteStoreFiles : public testing::Test {
protected:
    SqliteStoreFiles() : before(::umask(0)) {}
    ~SqliteStoreFiles() override { ::umask(before); }

    static void registerBoth(SqliteStore& store) {
        store.registerClient(pump);
        store.registerClient(valve);
    }

    std::vector<unsigned> rights() const {
        std::vector<unsigned> all;
        for (const char* end : {"", "-wal", "-shm", ".gate"}) {
            all.push_back(rightsOf(options.path + end));
        }
        return all;
    }

    // What valve gets from the store that bears the name now.
    std::string pending() const {
        return SqliteStore(options).getEvents(valve).value().text;
    }

    // The store is opened again by the next write.
    void loseGate() const { fs::remove(options.path + ".gate"); }

    OvMemTest::TemporaryFolder folder;
    SqliteOptions options{folder.file("a/b/events.db")};

private:
    const mode_t before;
};

}  // namespace

TEST_F(SqliteStoreFiles, OnlyItsOwnerMayUseAStoreWhateverTheUmask) {
    for (const mode_t mask : {0U, 022U, 0777U}) {
        ::umask(mask);
        SqliteStore store(options);
        store.registerClient(pump);
        EXPECT_THAT(rights(), ElementsAre(0600, 0600, 0600, 0600));
        EXPECT_EQ(rightsOf(folder.file("a")), 0700U);
        EXPECT_EQ(rightsOf(folder.file("a/b")), 0700U);
        ::umask(0);
        fs::remove_all(folder.file("a"));
    }
}

TEST_F(SqliteStoreFiles, AGroupMayUseAStoreIfTheUrlSaysSo) {
    ::umask(077);
    options.access = Access::group;
    SqliteStore store(options);
    store.registerClient(pump);
    EXPECT_THAT(rights(), ElementsAre(0660, 0660, 0660, 0660));
    EXPECT_EQ(rightsOf(folder.file("a/b")), 02770U);
}

TEST_F(SqliteStoreFiles, AGateThatIsMadeAgainHasTheRightsOfTheOtherFiles) {
    for (const Access access : {Access::owner, Access::group}) {
        const unsigned expected = access == Access::group ? 0660 : 0600;
        options.path = folder.file(access == Access::group ? "g.db" : "o.db");
        options.access = access;
        ::umask(0777);
        {
            SqliteStore store(options);
            registerBoth(store);
            loseGate();
            store.putEvents(pump, "one;");
            EXPECT_EQ(rightsOf(options.path + ".gate"), expected);
            loseGate();
        }
        EXPECT_EQ(rightsOf(options.path + ".gate"), expected)
            << "made when the store was closed";
        ::umask(0);
        loseGate();
        SqliteStore(options).putEvents(pump, "two;");
        EXPECT_EQ(rightsOf(options.path + ".gate"), expected);
        EXPECT_EQ(pending(), "one;two;");
    }
}

TEST_F(SqliteStoreFiles, AGateThatIsThereKeepsItsRights) {
    { SqliteStore(options).registerClient(pump); }
    ::chmod((options.path + ".gate").c_str(), 0640);
    { SqliteStore(options).registerClient(valve); }
    EXPECT_EQ(rightsOf(options.path + ".gate"), 0640U);
}

TEST_F(SqliteStoreFiles, TwoUsersOfAGroupShareAStore) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can be two users";
    }
    constexpr gid_t group = 54321;
    fs::create_directory(folder.file("a"));
    ::chmod(fs::path(folder.file("a")).parent_path().c_str(), 0755);
    ASSERT_EQ(::chown(folder.file("a").c_str(), 0, group), 0);
    ASSERT_EQ(::chmod(folder.file("a").c_str(), 02770), 0);
    options.access = Access::group;
    for (const uid_t user : {50001U, 50002U, 50001U}) {
        ChildProcess child([&] {
            ::umask(077);
            if (::setgid(group) != 0 || ::setuid(user) != 0) {
                return 1;
            }
            SqliteStore store(options);
            registerBoth(store);
            store.putEvents(pump, std::to_string(user) + ";");
            return 0;
        });
        ASSERT_TRUE(child.awaitEnd(30s));
        EXPECT_EQ(child.exitStatus(), 0) << child.errors();
    }
    EXPECT_EQ(pending(), "50001;50002;50001;");
}

TEST_F(SqliteStoreFiles, AStoreIsMadeByTheFirstRegistrationAndByNothingElse) {
    {
        SqliteStore store(options);
        store.open();
        EXPECT_EQ(store.sharedClients(pump), nullptr);
        EXPECT_EQ(store.unregisterClient(pump), nullptr);
        EXPECT_EQ(store.putEvents(pump, "x"), nullptr);
        EXPECT_EQ(store.getEvents(pump), std::nullopt);
        store.consume(pump, 1);
    }
    EXPECT_FALSE(fs::exists(folder.file("a")));
    SqliteStore(options).registerClient(pump);
    EXPECT_TRUE(fs::exists(options.path));
}

TEST_F(SqliteStoreFiles, AFileInPlaceOfAFolderIsReportedBeforeAnythingIsMade) {
    folder.write("a", "not a folder");
    const std::string text =
        "The folder '" + folder.file("a/b") +
        "' of the event store cannot be made (Not a directory). Make it "
        "yourself, or set OVMEM_STORE to another place.";
    SqliteStore store(options);
    EXPECT_EQ(storeRefusal([&] { store.open(); }), text);
    EXPECT_EQ(storeRefusal([&] { store.registerClient(pump); }), text);
}

TEST_F(SqliteStoreFiles, ALinkInPlaceOfAFileIsRefused) {
    { SqliteStore(options).registerClient(pump); }
    for (const char* end : {"", ".gate", "-wal", "-shm"}) {
        const std::string path = options.path + end;
        fs::path elsewhere = folder.file("elsewhere");
        if (fs::exists(path)) {
            fs::rename(path, elsewhere);
        }
        fs::create_symlink(elsewhere, path);
        EXPECT_EQ(storeRefusal([&] { SqliteStore(options).open(); }),
                  "The file '" + path +
                      "' of the event store is a symbolic link. Set "
                      "OVMEM_STORE to the file itself, or to another one.");
        fs::remove(path);
        if (fs::exists(elsewhere)) {
            fs::rename(elsewhere, path);
        }
    }
    SqliteStore(options).open();
}

TEST_F(SqliteStoreFiles, AFolderMayBeReachedThroughALink) {
    fs::create_directory(folder.file("real"));
    fs::create_directory_symlink(folder.file("real"), folder.file("a"));
    SqliteStore store(options);
    registerBoth(store);
    store.putEvents(pump, "x");
    EXPECT_EQ(pending(), "x");
}

TEST_F(SqliteStoreFiles, AStoreWithASecondNameIsRefused) {
    { SqliteStore(options).registerClient(pump); }
    fs::create_hard_link(options.path, folder.file("second"));
    EXPECT_EQ(storeRefusal([&] { SqliteStore(options).open(); }),
              "The file '" + options.path +
                  "' of the event store has several names. Set OVMEM_STORE to "
                  "the file itself, or to another one.");
}

TEST_F(SqliteStoreFiles, AStoreThatHasVanishedIsNotTakenForANewOne) {
    { SqliteStore(options).registerClient(pump); }
    fs::remove(options.path);
    const std::string text =
        "The event store '" + options.path + "' has vanished, and its gate '" +
        options.path +
        ".gate' is still there. Put the store back, or remove the gate to "
        "begin with an empty one.";
    SqliteStore store(options);
    EXPECT_EQ(storeRefusal([&] { store.open(); }), text);
    EXPECT_EQ(storeRefusal([&] { store.registerClient(pump); }), text);
    fs::remove(options.path + ".gate");
    EXPECT_THAT(*store.registerClient(valve), ElementsAre("valve"));
}

TEST_F(SqliteStoreFiles, AStoreThatWasEmptiedIsNotTakenForANewOne) {
    { SqliteStore(options).registerClient(pump); }
    fs::resize_file(options.path, 0);
    EXPECT_EQ(storeRefusal([&] { SqliteStore(options).open(); }),
              "The event store '" + options.path +
                  "' has been emptied, and its gate '" + options.path +
                  ".gate' is still there. Put the store back, or remove the "
                  "gate to begin with an empty one.");
}

TEST_F(SqliteStoreFiles, AnotherStoreOfTheSameNameIsNoticedByTheNextPut) {
    SqliteStore store(options);
    registerBoth(store);
    store.putEvents(pump, "old;");
    SqliteOptions other = options;
    other.path = folder.file("other.db");
    {
        SqliteStore prepared(other);
        registerBoth(prepared);
    }
    for (const char* end : {"-wal", "-shm"}) {
        fs::remove(options.path + end);
    }
    fs::rename(other.path + ".gate", options.path + ".gate");
    fs::rename(other.path, options.path);
    ASSERT_NE(store.putEvents(pump, "new;"), nullptr);
    EXPECT_EQ(pending(), "new;");
}

TEST_F(SqliteStoreFiles, AStoreThatVanishesUnderAProcessTakesNoMorePuts) {
    SqliteStore store(options);
    registerBoth(store);
    fs::rename(options.path, folder.file("moved.db"));
    EXPECT_THAT(storeRefusal([&] { store.putEvents(pump, "x"); }),
                testing::StartsWith("The event store '" + options.path +
                                    "' has vanished"));
}

TEST_F(SqliteStoreFiles, WhatIsInALogThatLostItsNameIsNotLost) {
    SqliteStore store(options);
    registerBoth(store);
    store.putEvents(pump, "before;");
    fs::remove(options.path + "-wal");
    store.putEvents(pump, "after;");
    EXPECT_EQ(pending(), "before;after;");
}

TEST_F(SqliteStoreFiles, ALogThatIsReplacedByAnotherOneLosesNothing) {
    SqliteStore store(options);
    registerBoth(store);
    store.putEvents(pump, "before;");
    fs::rename(folder.write("other", "not a log"), options.path + "-wal");
    EXPECT_EQ(store.getEvents(valve)->text, "before;");
    store.putEvents(pump, "after;");
    EXPECT_EQ(pending(), "before;after;");
}

TEST_F(SqliteStoreFiles, WhoeverOpensAStoreWithoutTheLogOfOthersIsRefused) {
    SqliteStore store(options);
    registerBoth(store);
    store.putEvents(pump, "before;");
    fs::remove(options.path + "-wal");
    EXPECT_EQ(storeRefusal([&] { SqliteStore(options).open(); }),
              "The log '" + options.path +
                  "-wal' of the event store was removed or replaced while "
                  "another process uses it. Let that process make its next "
                  "call, or end it, then repeat the call.");
    store.putEvents(pump, "after;");
    EXPECT_EQ(pending(), "before;after;");
}

TEST_F(SqliteStoreFiles, AnIndexOrAGateThatLostItsNameLosesNothing) {
    SqliteStore store(options);
    registerBoth(store);
    for (const char* end : {"-shm", ".gate"}) {
        store.putEvents(pump, "before;");
        fs::remove(options.path + end);
        store.putEvents(pump, "after;");
    }
    EXPECT_EQ(pending(), "before;after;before;after;");
}

TEST_F(SqliteStoreFiles, APutOpensAStoreUntilItsLogIsTheSameAfterwards) {
    if (!SystemCallWatcher::seesCalls()) {
        GTEST_SKIP() << "The thread sanitizer has the calls of the system.";
    }
    registerBoth(*std::make_unique<SqliteStore>(options));
    SqliteStore store(options);
    store.registerClient(pump);  // writes nothing
    loseGate();
    ChangingLog log(options.path, 3);
    store.putEvents(pump, "arrives;");
    EXPECT_EQ(log.openings(), 3);
    EXPECT_EQ(store.getEvents(valve)->text, "arrives;");
}

TEST_F(SqliteStoreFiles, APutIsRefusedIfTheLogIsNeverTheSameAfterOpening) {
    if (!SystemCallWatcher::seesCalls()) {
        GTEST_SKIP() << "The thread sanitizer has the calls of the system.";
    }
    registerBoth(*std::make_unique<SqliteStore>(options));
    SqliteStore store(options);
    store.registerClient(pump);  // writes nothing
    loseGate();
    const ChangingLog log(options.path, INT_MAX);
    EXPECT_EQ(storeRefusal([&] { store.putEvents(pump, "refused;"); }),
              "The files of the event store '" + options.path +
                  "' are being replaced. Repeat the call when that is over.");
    EXPECT_EQ(log.openings(), 20);
}

TEST_F(SqliteStoreFiles, TheGateStaysOpenBetweenTwoPuts) {
    SqliteStore store(options);
    registerBoth(store);
    int open = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        open += fs::read_symlink(entry, gone) == options.path + ".gate" ? 1 : 0;
    }
    EXPECT_EQ(open, 1);
}

TEST_F(SqliteStoreFiles, APutPassesTheGateThatHasTheNameNow) {
    options.busyTimeoutMilliseconds = 100;
    SqliteStore store(options);
    registerBoth(store);
    const std::string gate = options.path + ".gate";
    fs::rename(gate, folder.file("moved"));
    {
        const OvMemTest::StoppedHolder holder(gate);
        EXPECT_EQ(storeRefusal([&] { store.putEvents(pump, "held up;"); }),
                  holder.timeoutText());
    }
    store.putEvents(pump, "through;");
    EXPECT_EQ(pending(), "through;");
}

TEST_F(SqliteStoreFiles, APlaceThatCannotBeMadeIsNamedWithTheReason) {
    const auto refusalOf = [this](const std::string& path) {
        options.path = path;
        return storeRefusal(
            [this] { SqliteStore(options).registerClient(pump); });
    };
    const std::string advice =
        "Make it yourself, or set OVMEM_STORE to another place.";
    const std::string file = folder.write("file", "");
    EXPECT_EQ(refusalOf(file + "/events.db"),
              "The folder '" + file +
                  "' of the event store cannot be made (Not a directory). " +
                  advice);
    const std::string reason =
        ::geteuid() == 0 ? "No such file or directory" : "Permission denied";
    EXPECT_EQ(refusalOf("/proc/ovmem/events.db"),
              "The folder '/proc/ovmem' of the event store cannot be made (" +
                  reason + "). " + advice);
    const std::string longName = folder.file(std::string(252, 'e'));
    EXPECT_EQ(refusalOf(longName),
              "The file '" + longName +
                  ".gate' of the event store cannot be made (File name too "
                  "long). " +
                  advice);
}
