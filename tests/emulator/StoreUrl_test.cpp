#include "emulator/store/StoreUrl.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "emulator/store/MemoryStore.h"
#include "emulator/store/SqliteStore.h"
#include "emulator/store/StoreError.h"
#include "tests/emulator/Environment.h"
#include "tests/support/RunInChild.h"
#include "tests/support/TemporaryFolder.h"

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

const std::string forms =
    "Set OVMEM_STORE to sqlite:PATH or memory:. Options of sqlite:PATH follow "
    "a '?', with '&' between them: synchronous=NORMAL or FULL, access=OWNER "
    "or GROUP.";

std::string refusal(const std::function<void()>& work) {
    try {
        work();
    } catch (const StoreError& error) {
        return error.what();
    }
    return "no refusal";
}

std::string refusalOf(const std::string& url) {
    return refusal([&url] { parseStoreUrl(url); });
}

}  // namespace

TEST(StoreUrl, MemoryHasNoOptions) {
    EXPECT_EQ(parseStoreUrl("memory:"), std::nullopt);
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
    EXPECT_EQ(refusalOf("postgresql://host/events"),
              "The store URL 'postgresql://host/events' names a PostgreSQL "
              "store, which is not built in. " +
                  forms);
    EXPECT_EQ(refusalOf("postgres://host/events"),
              "The store URL 'postgres://host/events' names a PostgreSQL "
              "store, which is not built in. " +
                  forms);
    EXPECT_EQ(
        refusalOf("/var/lib/events.db"),
        "The store URL '/var/lib/events.db' is of no known kind. " + forms);
    EXPECT_EQ(refusalOf(""), "The store URL '' is of no known kind. " + forms);
    EXPECT_EQ(refusalOf("memory:x"),
              "The store URL 'memory:x' is of no known kind. " + forms);
    EXPECT_EQ(refusalOf("sqlite:"),
              "The store URL 'sqlite:' names no file. " + forms);
    EXPECT_EQ(
        refusalOf("sqlite:?synchronous=FULL"),
        "The store URL 'sqlite:?synchronous=FULL' names no file. " + forms);
    EXPECT_EQ(refusalOf("sqlite:/var/lib/"),
              "The store URL 'sqlite:/var/lib/' names no file. " + forms);
    EXPECT_EQ(refusalOf("sqlite:/e.db?synchronous=OFF"),
              "The store URL 'sqlite:/e.db?synchronous=OFF' has an unknown "
              "option. " +
                  forms);
    EXPECT_EQ(refusalOf("sqlite:/e.db?"),
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
    EXPECT_EQ(refusalOf("sqlite:/e.db?access=GROUP&"),
              "The store URL 'sqlite:/e.db?access=GROUP&' has an unknown "
              "option. " +
                  forms);
}

TEST(StoreUrl, APathThatOnlyAShellOrABrowserUnderstandsIsRefused) {
    for (const std::string path : {"~", "~/events.db"}) {
        EXPECT_EQ(refusalOf("sqlite:" + path),
                  "The store URL 'sqlite:" + path +
                      "' begins with '~', which only a shell replaces; write "
                      "the whole path. " +
                      forms);
    }
    EXPECT_EQ(parseStoreUrl("sqlite:/a~/~b")->path, "/a~/~b");
    EXPECT_EQ(refusalOf("sqlite:/a%20b.db"),
              "The store URL 'sqlite:/a%20b.db' holds a '%' with two digits, "
              "which is not decoded; write the path as it is. " +
                  forms);
    EXPECT_EQ(parseStoreUrl("sqlite:/100%/a%2")->path, "/100%/a%2");
    EXPECT_EQ(refusalOf("sqlite::memory:"),
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
    EXPECT_EQ(refusal([] { storeUrlOfEnvironment(); }),
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
        EXPECT_EQ(refusalOf("sqlite:events.db"),
                  "The store URL 'sqlite:events.db' needs a working directory, "
                  "and there is none. " +
                      forms);
        std::filesystem::current_path("/");
    });
}
