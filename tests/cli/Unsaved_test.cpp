#include <filesystem>
#include <fstream>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/FaultyCliTest.h"

using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::readFile;
namespace fs = std::filesystem;

namespace {

// A get that can neither deliver its events nor save them where it would.
class Unsaved : public OvMemTest::FaultyCliTest {
protected:
    Program failingGetter(const std::string& faults) const {
        return getterOf("the events", faults).outputTo("/dev/full");
    }

    static Outcome failure(const std::string& advice) {
        return {9, "",
                "ovmem: input/output: Cannot write the events to standard "
                "output: No space left on device; it has taken 0 of 10 "
                "bytes.\n" +
                    advice};
    }

    // They are among the temporary files instead, and nowhere else.
    void expectSecondPlace(const Program& getter) const {
        const Outcome outcome = getter.run({"get"});
        const auto files = filesIn(folder.file("temporary"));
        ASSERT_EQ(files.size(), 1u) << outcome;
        EXPECT_EQ(readFile(files[0]), "the events");
        EXPECT_EQ(outcome, failure(saved("the events", files[0])));
        EXPECT_EQ(savedFiles(), std::vector<std::string>());
        fs::remove(files[0]);
    }

    const std::string lost =
        "ovmem: The service has handed them out and will not do so again. They "
        "could not be saved in a file either and are lost.\n";

    static std::string damaged(const std::string& bytes,
                               const std::string& path) {
        return "ovmem: The service has handed them out and will not do so "
               "again. They could not be saved either: the first " +
               bytes +
               " of 10 bytes, perhaps damaged, are in this file: " + path +
               "\n";
    }
};

}  // namespace

TEST_F(Unsaved, WhatFailsInOnePlaceIsDoneInTheNext) {
    for (const std::string call : {"open", "write", "fsync", "close"}) {
        for (const std::string error : {"EIO", "ENOSPC", "EDQUOT"}) {
            expectSecondPlace(
                failingGetter(call + " state/ovmem/ 1+ fail " + error));
        }
    }
    expectSecondPlace(
        failingGetter("rename state/ovmem/ 1 fail EIO;"
                      "link state/ovmem/ 1 fail EIO"));
    expectSecondPlace(failingGetter("open state/ovmem 2 fail EIO"));
}

TEST_F(Unsaved, AFileThatWasCutIsNotCalledSaved) {
    expectSecondPlace(
        failingGetter("write state/ovmem/ 1 short 4;"
                      "write state/ovmem/ 2 fail ENOSPC"));
    expectSecondPlace(
        failingGetter("write state/ovmem/ 1 short 4;"
                      "write state/ovmem/ 2 short 0"));
}

TEST_F(Unsaved, ShortAndInterruptedWritesSaveEverything) {
    const Outcome outcome = failingGetter(
                                "write state/ovmem/ 2 fail EINTR;"
                                "write state/ovmem/ 1+ short 3")
                                .run({"get"});
    EXPECT_EQ(outcome, failure(saved("the events", savedFile("the events"))));
}

TEST_F(Unsaved, AFileSystemThatKnowsOnlyLinksSavesEverything) {
    const Outcome outcome =
        failingGetter("rename - 1 fail EINVAL").run({"get"});
    EXPECT_EQ(outcome, failure(saved("the events", savedFile("the events"))));
}

TEST_F(Unsaved, AHiddenNameThatStaysDoesNotMakeASecondCopy) {
    const Outcome outcome = failingGetter(
                                "rename - 1 fail EINVAL;"
                                "unlink state/ovmem/ 1 fail EIO")
                                .run({"get"});
    EXPECT_EQ(filesIn(folder.file("temporary")), std::vector<std::string>());
    const auto files = savedFiles();
    ASSERT_EQ(files.size(), 2u);  // two names of one file, the hidden one first
    EXPECT_TRUE(fs::equivalent(files[0], files[1]));
    EXPECT_EQ(readFile(files[1]), "the events");
    EXPECT_EQ(outcome, failure(saved("the events", files[1])));
}

TEST_F(Unsaved, AFileThatHasTheNameAlreadyIsNotReplaced) {
    for (const std::string faults :
         {"fsync - 1 hang -", "fsync - 1 hang -;rename - 1 fail EINVAL"}) {
        auto running = failingGetter(faults).start({"get"});
        waitForHang(running);
        const fs::path hidden = savedFiles().at(0);
        const std::string name = hidden.filename().string().substr(1);
        const std::string other = place + "/" + name;
        std::ofstream(other) << "of somebody else";
        goOn();
        const Outcome outcome = running.waitForEnd();
        const auto elsewhere = filesIn(folder.file("temporary"));
        ASSERT_EQ(elsewhere.size(), 1u) << outcome;
        EXPECT_EQ(outcome, failure(saved("the events", elsewhere.at(0))));
        EXPECT_EQ(readFile(other), "of somebody else");
        EXPECT_EQ(savedFiles(), std::vector{other});
        fs::remove(other);
        fs::remove(folder / "go");
        fs::remove(folder / "reached");
        fs::remove(elsewhere.at(0));
    }
}

TEST_F(Unsaved, WithoutAnyPlaceTheEventsAreLostAndItSaysSo) {
    EXPECT_EQ(
        failingGetter("open events-not-delivered 1+ fail ENOSPC").run({"get"}),
        failure(lost));
    EXPECT_EQ(
        failingGetter("write events-not-delivered 1+ fail ENOSPC").run({"get"}),
        failure(lost));
    EXPECT_EQ(filesIn(folder.file("temporary")), std::vector<std::string>());
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
}

TEST_F(Unsaved, TheLongestPartIsKeptWhereNoPlaceTakesEverything) {
    const Outcome outcome = failingGetter(
                                "write state/ovmem/ 1 short 3;"
                                "write temporary/ 1 short 7;"
                                "write not-delivered 1+ fail ENOSPC")
                                .run({"get"});
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
    const auto files = filesIn(folder.file("temporary"));
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(readFile(files[0]), "the eve");
    EXPECT_EQ(outcome, failure(damaged("7", files[0])));
    script("");
    EXPECT_EQ(ovmem.run({"rescue", "list"}),
              (Outcome{0, "", "ovmem: No events are saved.\n"}));
}

TEST_F(Unsaved, WithoutACertainDiskTheBytesAreKeptButNotCalledSaved) {
    const Outcome outcome = failingGetter("fsync - 1+ fail EIO").run({"get"});
    const std::string file = savedFile("the events");
    EXPECT_EQ(outcome, failure(damaged("10", file)));
    EXPECT_EQ(filesIn(folder.file("temporary")), std::vector<std::string>());
}

TEST_F(Unsaved, TheFolderIsTheOwnersAlone) {
    EXPECT_EQ(failingGetter("").run({"get"}).exitCode, 9);
    EXPECT_EQ(fs::status(place).permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(savedFile("the events")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Unsaved, TheStateFolderComesBeforeTheHomeFolder) {
    Program getter = failingGetter("");
    getter.set("XDG_STATE_HOME", folder.file("state"));
    EXPECT_EQ(getter.run({"get"}).exitCode, 9);
    EXPECT_EQ(filesIn(folder.file("state/ovmem")).size(), 1u);
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
}

TEST_F(Unsaved, WhatIsSavedIsTheOwnersWhateverTheUmask) {
    Program getter = failingGetter("");
    getter.after("umask 777");
    EXPECT_EQ(getter.run({"get"}).exitCode, 9);
    for (const char* made : {"home/.local", "home/.local/state"}) {
        EXPECT_EQ(fs::status(folder / made).permissions(),
                  fs::perms::owner_all);
    }
    EXPECT_EQ(fs::status(place).permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(savedFile("the events")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Unsaved, APathThatAShellWouldSplitIsInQuotes) {
    Program getter = failingGetter("");
    getter.set("XDG_STATE_HOME", folder.file("my\nstate"));
    const Outcome outcome = getter.run({"get"});
    const auto files = filesIn(folder.file("my\nstate/ovmem"));
    ASSERT_EQ(files.size(), 1u);
    const std::string name = fs::path(files[0]).filename();
    // The backslash is doubled as in every message.
    EXPECT_EQ(outcome,
              failure(saved("the events", "$'" + folder.file("my\\\\x0astate") +
                                              "/ovmem/" + name + "'")));
}

TEST_F(Unsaved, AStateFolderThatIsNoneLeavesTheHomeFolder) {
    Program getter = failingGetter("");
    getter.set("XDG_STATE_HOME", "/dev/null");
    const Outcome outcome = getter.run({"get"});
    EXPECT_EQ(outcome, failure(saved("the events", savedFile("the events"))));
}

TEST_F(Unsaved, AFolderThatOthersMayWriteToIsNotUsed) {
    fs::create_directories(place);
    fs::permissions(place, fs::perms::all);
    expectSecondPlace(failingGetter(""));
    fs::permissions(place, fs::perms::all | fs::perms::sticky_bit);
    const Outcome outcome = failingGetter("").run({"get"});
    EXPECT_EQ(outcome, failure(saved("the events", savedFile("the events"))));
}

TEST_F(Unsaved, AFolderOfAnotherUserIsNotUsedEither) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "Only root can give a folder away.";
    }
    const fs::path foreign = folder / "foreign";
    fs::create_directory(foreign);
    EXPECT_EQ(chown(foreign.c_str(), 4711, 4711), 0);
    fs::create_directories(fs::path(place).parent_path());
    fs::create_directory_symlink(foreign, place);
    expectSecondPlace(failingGetter(""));
    fs::remove(place);
    fs::create_directory(place);
    EXPECT_EQ(chown(place.c_str(), 4711, 4711), 0);
    expectSecondPlace(failingGetter(""));
}

TEST_F(Unsaved, WhenNoChosenFolderTakesThemAUsualOneDoes) {
    const std::string chosen = "open temporary/ 1+ fail EIO";
    for (const std::string usual : {"/tmp", "/var/tmp"}) {
        Program getter = failingGetter(
            usual == "/tmp" ? chosen : chosen + ";open /tmp/.ev 1 fail EIO");
        getter.unset("HOME");
        const Outcome outcome = getter.run({"get"});
        const std::size_t begin = outcome.errors.find(usual + "/events-not-");
        ASSERT_NE(begin, std::string::npos) << outcome;
        std::string file = outcome.errors.substr(begin);
        file.pop_back();
        EXPECT_EQ(readFile(file), "the events");
        EXPECT_EQ(outcome, failure(saved("the events", file)));
        fs::remove(file);
    }
}

TEST_F(Unsaved, WithoutFoldersTheCurrentOneTakesThem) {
    fs::create_directory(folder / "here");
    fs::permissions(folder / "here", fs::perms::owner_all);
    Program getter = failingGetter("open temporary/ 1+ fail EIO");
    getter.unset("HOME").set("XDG_STATE_HOME", "");
    getter.after("cd '" + folder.file("here") + "'");
    const Outcome outcome = getter.run({"get"});
    const auto files = filesIn(folder.file("here"));
    ASSERT_EQ(files.size(), 1u) << outcome;
    EXPECT_EQ(outcome, failure(saved("the events", files[0])));
}
