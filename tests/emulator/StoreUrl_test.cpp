#include "emulator/store/StoreUrl.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "emulator/store/MemoryStore.h"
#include "emulator/store/SqliteStore.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/StoreRefusal.h"
#include "tests/support/RunInChild.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;
using OvMemTest::storeRefusal;

namespace {

const std::string forms =
    "Set OVMEM_STORE to sqlite:PATH or memory:. Options follow a '?', with "
    "'&' between them: portion=BYTES, dedupe=correlation, lease=SECONDS, "
    "limit-events=N, limit-bytes=N, limit-age=SECONDS; of sqlite:PATH alone: "
    "synchronous=NORMAL or FULL, access=OWNER or GROUP.";

std::string urlRefusal(const std::string& url) {
    return storeRefusal([&url] { parseStoreUrl(url); });
}

}  // namespace

TEST(StoreUrl, MemoryHasNoneOfTheOptionsOfAFile) {
    EXPECT_EQ(parseStoreUrl("memory:"), std::nullopt);
    EXPECT_EQ(parseStoreUrl("memory:?dedupe=correlation"), std::nullopt);
    EXPECT_EQ(urlRefusal("memory:?access=GROUP"),
              "The store URL 'memory:?access=GROUP' has an option that a "
              "store in memory does not have. " +
                  forms);
}

TEST(StoreUrl, TheLeaseOfAGetterIsGivenInSeconds) {
    EXPECT_EQ(parseStoreUrl("sqlite:/e.db")->lease, std::chrono::seconds(30));
    EXPECT_EQ(parseStoreUrl("sqlite:/e.db?lease=1")->lease,
              std::chrono::seconds(1));
    EXPECT_EQ(parseStoreUrl("sqlite:/e.db?lease=86400")->lease,
              std::chrono::seconds(86400));
    EXPECT_EQ(parseStoreUrl("memory:?lease=5"), std::nullopt);
    for (const std::string url :
         {"sqlite:/e.db?lease=0", "sqlite:/e.db?lease=86401",
          "sqlite:/e.db?lease=", "sqlite:/e.db?lease=-1",
          "sqlite:/e.db?lease=1s", "sqlite:/e.db?lease=99999999999",
          "memory:?lease=x"}) {
        EXPECT_EQ(urlRefusal(url),
                  "The store URL '" + url +
                      "' gives lease no whole number from 1 to 86400. " +
                      forms);
    }
}

TEST(StoreUrl, PutsAreDeduplicatedOnRequest) {
    EXPECT_FALSE(parseStoreUrl("sqlite:/e.db")->dedupe);
    EXPECT_TRUE(parseStoreUrl("sqlite:/e.db?dedupe=correlation")->dedupe);
    EXPECT_EQ(urlRefusal("sqlite:/e.db?dedupe=CORRELATION"),
              "The store URL 'sqlite:/e.db?dedupe=CORRELATION' has an unknown "
              "option. " +
                  forms);
    const Identity pump{"plant", "pump"};
    const Identity valve{"plant", "valve"};
    const auto store = openStore("memory:?dedupe=correlation");
    store->registerClient(pump);
    store->registerClient(valve);
    store->putEvents(pump, "open", "run 1");
    store->putEvents(pump, "open", "run 1");
    EXPECT_EQ(store->getEvents(valve)->text, "open");
}

TEST(StoreUrl, ASqliteUrlGivesAPathAndFullSynchronisation) {
    const auto options = parseStoreUrl("sqlite:/var/lib/events.db");
    EXPECT_EQ(options->path, "/var/lib/events.db");
    EXPECT_EQ(options->synchronous, Synchronous::full);
}

TEST(StoreUrl, SynchronisationCanBeChosen) {
    const auto normal = parseStoreUrl("sqlite:/e.db?synchronous=NORMAL");
    EXPECT_EQ(normal->path, "/e.db");
    EXPECT_EQ(normal->synchronous, Synchronous::normal);
    const auto full = parseStoreUrl("sqlite:/e.db?synchronous=FULL");
    EXPECT_EQ(full->path, "/e.db");
    EXPECT_EQ(full->synchronous, Synchronous::full);
}

TEST(StoreUrl, ARelativePathIsThatOfTheWorkingDirectory) {
    EXPECT_EQ(parseStoreUrl("sqlite:events.db")->path,
              (std::filesystem::current_path() / "events.db").string());
}

TEST(StoreUrl, AnythingElseIsRefusedWithTheFormsThatExist) {
    EXPECT_EQ(urlRefusal("postgresql://host/events"),
              "The store URL 'postgresql://host/events' names a PostgreSQL "
              "store, which is not built in. " +
                  forms);
    EXPECT_EQ(urlRefusal("postgres://host/events"),
              "The store URL 'postgres://host/events' names a PostgreSQL "
              "store, which is not built in. " +
                  forms);
    EXPECT_EQ(
        urlRefusal("/var/lib/events.db"),
        "The store URL '/var/lib/events.db' is of no known kind. " + forms);
    EXPECT_EQ(urlRefusal(""), "The store URL '' is of no known kind. " + forms);
    EXPECT_EQ(urlRefusal("memory:x"),
              "The store URL 'memory:x' is of no known kind. " + forms);
    EXPECT_EQ(urlRefusal("sqlite:"),
              "The store URL 'sqlite:' names no file. " + forms);
    EXPECT_EQ(
        urlRefusal("sqlite:?synchronous=FULL"),
        "The store URL 'sqlite:?synchronous=FULL' names no file. " + forms);
    EXPECT_EQ(urlRefusal("sqlite:/var/lib/"),
              "The store URL 'sqlite:/var/lib/' names no file. " + forms);
    EXPECT_EQ(urlRefusal("sqlite:/e.db?synchronous=OFF"),
              "The store URL 'sqlite:/e.db?synchronous=OFF' has an unknown "
              "option. " +
                  forms);
    EXPECT_EQ(urlRefusal("sqlite:/e.db?"),
              "The store URL 'sqlite:/e.db?' has an unknown option. " + forms);
}

TEST(StoreUrl, OptionsCanBeCombined) {
    const auto options =
        parseStoreUrl("sqlite:/e.db?access=GROUP&synchronous=NORMAL");
    EXPECT_EQ(options->path, "/e.db");
    EXPECT_EQ(options->access, Access::group);
    EXPECT_EQ(options->synchronous, Synchronous::normal);
    EXPECT_EQ(parseStoreUrl("sqlite:/e.db?access=OWNER")->access,
              Access::owner);
    EXPECT_EQ(urlRefusal("sqlite:/e.db?access=GROUP&"),
              "The store URL 'sqlite:/e.db?access=GROUP&' has an unknown "
              "option. " +
                  forms);
}

TEST(StoreUrl, ThePortionOfAGetCanBeChosen) {
    EXPECT_EQ(parseStoreUrl("sqlite:/e.db")->portion, 64U * 1024 * 1024);
    EXPECT_EQ(parseStoreUrl("sqlite:/e.db?portion=1")->portion, 1U);
    const auto both =
        parseStoreUrl("sqlite:/e.db?portion=8589934592&access=GROUP");
    EXPECT_EQ(both->portion, 8589934592U);
    EXPECT_EQ(both->access, Access::group);
    EXPECT_EQ(parseStoreUrl("memory:?portion=1"), std::nullopt);
}

TEST(StoreUrl, APortionThatIsNoNumberOfBytesIsRefused) {
    for (const std::string store : {"sqlite:/e.db", "memory:"}) {
        for (const std::string number :
             {"", "0", "00", "-1", "+1", " 1", "1 ", "1k", "0x10", "1.5",
              "9223372036854775808"}) {
            const std::string url = store + "?portion=" + number;
            EXPECT_EQ(urlRefusal(url),
                      "The store URL '" + url +
                          "' gives portion no whole number from 1 to "
                          "9223372036854775807. " +
                          forms);
        }
    }
    for (const std::string option : {"", "=", "Portion=1", "xportion=1"}) {
        const std::string url = "memory:?" + option;
        EXPECT_EQ(urlRefusal(url), "The store URL '" + url +
                                       "' has an unknown option. " + forms);
    }
}

TEST(StoreUrl, AnOptionThatIsGivenTwiceIsRefused) {
    EXPECT_EQ(urlRefusal("memory:?portion=1&portion=2"),
              "The store URL 'memory:?portion=1&portion=2' gives portion "
              "twice. " +
                  forms);
    EXPECT_EQ(urlRefusal("sqlite:/e.db?access=OWNER&lease=1&access=OWNER"),
              "The store URL 'sqlite:/e.db?access=OWNER&lease=1&access=OWNER' "
              "gives access twice. " +
                  forms);
}

TEST(StoreUrl, AStoreGivesThePortionOfItsUrl) {
    const OvMemTest::TemporaryFolder folder;
    for (const std::string& url :
         {"sqlite:" + folder.file("e.db") + "?portion=3",
          std::string("memory:?portion=3")}) {
        const auto store = openStore(url);
        store->registerClient({"plant", "pump"});
        store->registerClient({"plant", "valve"});
        for (const char* event : {"a", "b", "c", "d", "efghi"}) {
            store->putEvents({"plant", "pump"}, event);
        }
        std::vector<std::string> portions;
        for (;;) {
            const auto pending = store->getEvents({"plant", "valve"});
            if (pending->text.empty()) {
                break;
            }
            portions.push_back(pending->text);
            store->consume({"plant", "valve"}, pending->upto);
        }
        EXPECT_EQ(portions, (std::vector<std::string>{"abc", "d", "efghi"}))
            << url;
    }
}

TEST(StoreUrl, WithoutAWordAboutLimitsThereAreNone) {
    EXPECT_FALSE(parseStoreUrl("sqlite:/e.db")->limits.any());
}

TEST(StoreUrl, BothKindsOfStoresTakeLimits) {
    const std::string list =
        "?limit-events=1&limit-bytes=9223372036854775807&limit-age=60";
    const QueueLimits limits{1, 9223372036854775807, 60};
    const auto options = parseStoreUrl("sqlite:/e.db" + list);
    EXPECT_EQ(options->path, "/e.db");
    EXPECT_EQ(options->limits, limits);
    EXPECT_EQ(parseStoreUrl("memory:" + list), std::nullopt);
    const auto mixed =
        parseStoreUrl("sqlite:/e.db?limit-bytes=20&synchronous=NORMAL");
    EXPECT_EQ(mixed->limits, (QueueLimits{{}, 20, {}}));
    EXPECT_EQ(mixed->synchronous, Synchronous::normal);
}

TEST(StoreUrl, ALimitThatIsNoNumberIsRefused) {
    for (const std::string url : {"sqlite:/e.db?", "memory:?"}) {
        for (const std::string name :
             {"limit-events", "limit-bytes", "limit-age"}) {
            for (const std::string value :
                 {"=", "=0", "=-1", "=+1", "=1.5", "=1k", "= 1", "=many",
                  "=9223372036854775808", ""}) {
                const std::string whole = url + name + value;
                EXPECT_EQ(urlRefusal(whole), "The store URL '" + whole +
                                                 "' gives " + name +
                                                 " no whole number from 1 to "
                                                 "9223372036854775807. " +
                                                 forms);
            }
            const std::string twice = url + name + "=1&" + name + "=1";
            EXPECT_EQ(urlRefusal(twice), "The store URL '" + twice +
                                             "' gives " + name + " twice. " +
                                             forms);
        }
    }
}

TEST(StoreUrl, AnUnknownOptionOfAStoreInMemoryIsRefused) {
    for (const std::string url :
         {"memory:?", "memory:?limit-event=1", "memory:?limit-events=1&"}) {
        EXPECT_EQ(urlRefusal(url), "The store URL '" + url +
                                       "' has an unknown option. " + forms);
    }
    EXPECT_EQ(urlRefusal("memory"),
              "The store URL 'memory' is of no known kind. " + forms);
}

TEST(StoreUrl, TheLimitsOfAUrlHoldForItsStore) {
    const OvMemTest::TemporaryFolder folder;
    for (const std::string& url :
         {std::string("memory:"), "sqlite:" + folder.file("events.db")}) {
        const auto store = openStore(url + "?limit-bytes=3");
        store->registerClient({"plant", "pump"});
        store->registerClient({"plant", "valve"});
        store->putEvents({"plant", "pump"}, "abc");
        EXPECT_THROW(store->putEvents({"plant", "pump"}, "d"),
                     QueueLimitPassed);
        EXPECT_EQ(store->getEvents({"plant", "valve"})->text, "abc");
    }
}

TEST(StoreUrl, APathThatOnlyAShellOrABrowserUnderstandsIsRefused) {
    for (const std::string path : {"~", "~/events.db"}) {
        EXPECT_EQ(urlRefusal("sqlite:" + path),
                  "The store URL 'sqlite:" + path +
                      "' begins with '~', which only a shell replaces; write "
                      "the whole path. " +
                      forms);
    }
    EXPECT_EQ(parseStoreUrl("sqlite:/a~/~b")->path, "/a~/~b");
    EXPECT_EQ(urlRefusal("sqlite:/a%20b.db"),
              "The store URL 'sqlite:/a%20b.db' holds a '%' with two digits, "
              "which is not decoded; write the path as it is. " +
                  forms);
    EXPECT_EQ(parseStoreUrl("sqlite:/100%/a%2")->path, "/100%/a%2");
    EXPECT_EQ(urlRefusal("sqlite::memory:"),
              "The store URL 'sqlite::memory:' names no file; a store in "
              "memory is memory:. " +
                  forms);
}

TEST(StoreUrl, TheEnvironmentSaysWhereTheStoreIs) {
    OvMemTest::Environment environment;
    environment.set("HOME", "/users/ada");
    environment.set("XDG_STATE_HOME", "/state");
    environment.set("OVMEM_STORE", "memory:");
    EXPECT_EQ(storeUrlOfEnvironment(), "memory:");
    environment.set("OVMEM_STORE", "");
    EXPECT_EQ(storeUrlOfEnvironment(), "sqlite:/state/ovmem/events.db");
    environment.unset("OVMEM_STORE");
    EXPECT_EQ(storeUrlOfEnvironment(), "sqlite:/state/ovmem/events.db");
    environment.unset("XDG_STATE_HOME");
    EXPECT_EQ(storeUrlOfEnvironment(),
              "sqlite:/users/ada/.local/state/ovmem/events.db");
    environment.unset("HOME");
    EXPECT_EQ(storeRefusal([] { storeUrlOfEnvironment(); }),
              "No variable says where the event store is: OVMEM_STORE, "
              "XDG_STATE_HOME and HOME are not set. " +
                  forms);
}

TEST(StoreUrl, ItNamesAStoreOfItsKindAndMakesNothing) {
    const OvMemTest::TemporaryFolder folder;
    const auto memory = openStore("memory:");
    EXPECT_NE(dynamic_cast<MemoryStore*>(memory.get()), nullptr);
    const auto sqlite = openStore("sqlite:" + folder.file("a/b/events.db"));
    EXPECT_NE(dynamic_cast<SqliteStore*>(sqlite.get()), nullptr);
    sqlite->open();
    EXPECT_FALSE(std::filesystem::exists(folder.file("a")));
}

TEST(StoreUrl, ARelativePathWithoutAWorkingDirectoryIsRefused) {
    OvMemTest::runInChild([] {
        const OvMemTest::TemporaryFolder folder;
        std::filesystem::create_directory(folder.file("gone"));
        std::filesystem::current_path(folder.file("gone"));
        std::filesystem::remove(folder.file("gone"));
        EXPECT_EQ(urlRefusal("sqlite:events.db"),
                  "The store URL 'sqlite:events.db' needs a working directory, "
                  "and there is none. " +
                      forms);
        std::filesystem::current_path("/");
    });
}
