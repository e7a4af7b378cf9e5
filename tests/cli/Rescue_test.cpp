#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/RescueTest.h"
#include "tests/cli/Terminal.h"

using OvMemTest::FIRST;
using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::SECOND;
using OvMemTest::THIRD;
using OvMemTest::VALVE;
namespace fs = std::filesystem;

namespace {

using Rescue = OvMemTest::RescueTest;

}  // namespace

TEST_F(Rescue, ListWritesTheFilesOfAllPlacesInTheOrderOfTheirTimes) {
    const std::string temporary = folder.file("temporary");
    const std::string here = folder.file("here");
    fs::create_directory(here);
    write(temporary + "/" + THIRD, "");
    write(here + "/" + THIRD + "-2of10", "1234567890");
    write(here + "/" + THIRD + "-10of10", "1");
    ovmem.after("cd '" + here + "'");
    EXPECT_EQ(ovmem.run({"rescue", "list"}),
              (Outcome{0,
                       line(FIRST, "6", place) + line(SECOND, "7", place) +
                           line(THIRD, "0", temporary) +
                           line(THIRD + "-2of10", "10", here) +
                           line(THIRD + "-10of10", "1", here),
                       "ovmem: Saved events: 5.\n"}));
}

TEST_F(Rescue, APlaceThatIsTwoOfThemIsListedOnce) {
    const std::string temporary = folder.file("temporary");
    write(temporary + "/" + THIRD, "");
    ovmem.set("TMPDIR", temporary + "/../temporary/");
    EXPECT_EQ(ovmem.run({"rescue", "list", "--quiet"}),
              (Outcome{0,
                       line(FIRST, "6", place) + line(SECOND, "7", place) +
                           line(THIRD, "0", temporary),
                       ""}));
}

TEST_F(Rescue, ListWithJsonWritesOneObject) {
    fs::remove(place + "/" + SECOND);
    EXPECT_EQ(ovmem.run({"rescue", "list", "--json"}),
              (Outcome{0,
                       "{\"command\":\"rescue list\",\"files\":[{\"name\":\"" +
                           FIRST +
                           "\",\"bytes\":6,\"when\":\"2024-05-01T12:00:00Z\","
                           "\"path\":\"" +
                           place + "/" + FIRST + "\"}]}\n",
                       ""}));
}

TEST_F(Rescue, OnlyRegularFilesOfTheUserWithANameOfOvmemsOwnAreListed) {
    fs::create_symlink(place + "/" + FIRST, place + "/" + THIRD);
    fs::create_directory(place + "/" + THIRD + "-1of2");
    EXPECT_EQ(mkfifo((place + "/" + THIRD + "-2of2").c_str(), 0600), 0);
    write(place + "/." + THIRD, "half");
    write(place + "/notes", "");
    if (geteuid() == 0) {
        write(place + "/" + THIRD + "-3", "of another user");
        EXPECT_EQ(chown((place + "/" + THIRD + "-3").c_str(), 4711, 4711), 0);
    }
    EXPECT_EQ(
        ovmem.run({"rescue", "list", "--quiet"}),
        (Outcome{0, line(FIRST, "6", place) + line(SECOND, "7", place), ""}));
    EXPECT_EQ(ovmem.run({"rescue", "show", THIRD}), gone(THIRD));
    EXPECT_EQ(ovmem.run({"rescue", "show", THIRD + "-2of2"}),
              gone(THIRD + "-2of2"));
}

TEST_F(Rescue, NoPathPassesForAnotherLineOrColumn) {
    const std::string odd = folder.file("a\\b\t\n\x1B[2J");
    fs::create_directories(odd + "/ovmem");
    write(odd + "/ovmem/" + FIRST, "");
    ovmem.set("XDG_STATE_HOME", odd).unset("HOME");
    const std::string expected =
        line(FIRST, "0", folder.file("a\\\\b\\x09\\x0a\\x1b[2J") + "/ovmem");
    EXPECT_EQ(ovmem.run({"rescue", "list", "--quiet"}),
              (Outcome{0, expected, ""}));
    OvMemTest::Terminal terminal;
    EXPECT_EQ(
        ovmem.outputTo(terminal.file()).run({"rescue", "list", "--quiet"}),
        (Outcome{0, "", ""}));
    EXPECT_EQ(terminal.take(), expected);
}

TEST_F(Rescue, AFolderThatCannotBeReadIsNamedAfterWhatIsListed) {
    const std::string state = folder.file("my state");
    fs::create_directory(state);
    fs::create_symlink("ovmem", state + "/ovmem");  // to itself
    ovmem.set("XDG_STATE_HOME", state);
    const std::string problem =
        "ovmem: input/output: Cannot look for saved events everywhere: '" +
        state +
        "/ovmem': Too many levels of symbolic links.\n"
        "ovmem: There may be more than are listed. Remove the cause, then try "
        "again.\n";
    EXPECT_EQ(ovmem.run({"rescue", "list"}),
              (Outcome{9, line(FIRST, "6", place) + line(SECOND, "7", place),
                       problem}));
    EXPECT_EQ(ovmem.run({"rescue", "show", "--quiet", FIRST}),
              (Outcome{0, "first;", ""}));
    EXPECT_EQ(ovmem.run({"rescue", "show", THIRD}), (Outcome{9, "", problem}));
}

TEST_F(Rescue, AFileWithAnotherNameElsewhereIsNotListed) {
    fs::create_hard_link(place + "/" + SECOND, folder.file("elsewhere"));
    EXPECT_EQ(ovmem.run({"rescue", "list", "--quiet"}),
              (Outcome{0, line(FIRST, "6", place), ""}));
    const std::string path = place + "/" + SECOND;
    EXPECT_EQ(ovmem.run({"rescue", "show", path}), gone(path));
}

TEST_F(Rescue, AFileIsFoundByItsPathWhereverItIs) {
    const std::string here = folder.file("here");
    fs::create_directory(here);
    write(here + "/" + THIRD, "third;");
    fs::create_symlink(here + "/" + THIRD, here + "/" + FIRST);
    EXPECT_EQ(ovmem.run({"rescue", "show", "--quiet", here + "/" + THIRD}),
              (Outcome{0, "third;", ""}));
    EXPECT_EQ(ovmem.run({"rescue", "show", here + "/" + FIRST}),
              gone(here + "/" + FIRST));
    ovmem.after("cd '" + here + "'");
    EXPECT_EQ(ovmem.run({"rescue", "show", "--quiet", "./" + THIRD}),
              (Outcome{0, "third;", ""}));
    ovmem.after("cd '" + place + "'");
    script(VALVE + VALVE);
    EXPECT_EQ(as("pump").run({"rescue", "put-back", "--quiet",
                              "../../../../here/" + THIRD}),
              (Outcome{0, "valve\n", ""}));
    EXPECT_FALSE(fs::exists(here + "/" + THIRD));
}

TEST_F(Rescue, ShowOfOneByteSaysByte) {
    write(place + "/" + THIRD, "3");
    EXPECT_EQ(ovmem.run({"rescue", "show", THIRD}),
              (Outcome{0, "3", "ovmem: Wrote 1 byte; nothing was removed.\n"}));
}

TEST_F(Rescue, ShowWritesTheBytesInTheOrderOfTheNamesAndRemovesNothing) {
    const std::string bytes("\0\xFF\n", 3);
    write(place + "/" + THIRD, bytes);
    EXPECT_EQ(ovmem.run({"rescue", "show", THIRD, place + "/" + FIRST}),
              (Outcome{0, bytes + "first;",
                       "ovmem: Wrote 9 bytes; nothing was removed.\n"}));
    EXPECT_EQ(ovmem.run({"rescue", "show", "--json", FIRST}),
              (Outcome{0,
                       "{\"command\":\"rescue show\",\"bytes\":6,"
                       "\"events\":\"first;\"}\n",
                       ""}));
    EXPECT_EQ(savedFiles().size(), 3u);
}

TEST_F(Rescue, ShowReadsShortAndInterruptedReadsWhole) {
    EXPECT_EQ(withFaults(ovmem,
                         "read not-delivered 2 fail EINTR;"
                         "read not-delivered 1+ short 4")
                  .run({"rescue", "show", "--quiet", FIRST}),
              (Outcome{0, "first;", ""}));
}

TEST_F(Rescue, AFileThatCannotBeReadIsNeitherShownNorPutBack) {
    const Outcome failure{9, "",
                          "ovmem: input/output: Cannot read " + place + "/" +
                              FIRST +
                              ": Input/output error.\n"
                              "ovmem: The file is as it was.\n"};
    for (const std::string call : {"open", "read"}) {
        const Program program =
            withFaults(as("pump"), call + " not-delivered 1 fail EIO");
        EXPECT_EQ(program.run({"rescue", "show", FIRST}), failure);
        EXPECT_EQ(program.run({"rescue", "put-back", FIRST}), failure);
    }
    EXPECT_EQ(trace(), "");
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, AnUnknownNameIsRefused) {
    EXPECT_EQ(ovmem.run({"rescue", "show", FIRST, "x"}), unknown("x"));
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST, "x"}), unknown("x"));
    EXPECT_EQ(ovmem.run({"rescue", "show", "/etc/passwd"}),
              unknown("/etc/passwd"));
    EXPECT_EQ(trace(), "");
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, ACommandAndNamesAreNeeded) {
    const std::string seeHelp =
        "ovmem: 'ovmem --help' lists the commands and options.\n";
    EXPECT_EQ(
        ovmem.run({"rescue"}),
        (Outcome{1, "", "ovmem: usage: A command is missing.\n" + seeHelp}));
    EXPECT_EQ(
        ovmem.run({"rescue", "fetch"}),
        (Outcome{1, "",
                 "ovmem: usage: 'fetch' is neither a command nor an option.\n" +
                     seeHelp}));
    const Outcome nameless{
        1, "",
        "ovmem: usage: The name of saved events is missing.\n"
        "ovmem: 'ovmem rescue list' names those there are.\n"};
    EXPECT_EQ(ovmem.run({"rescue", "show"}), nameless);
    EXPECT_EQ(as("pump").run({"rescue", "put-back"}), nameless);
    EXPECT_EQ(ovmem.run({"rescue", "put-back", FIRST}),
              (Outcome{1, "",
                       "ovmem: usage: rescue put-back needs --server.\n"
                       "ovmem: Give --server, or set OVMEM_SERVER.\n"}));
    EXPECT_EQ(trace(), "");
}

TEST_F(Rescue, WhatCannotBeShownStays) {
    EXPECT_EQ(ovmem.outputTo("/dev/full").run({"rescue", "show", FIRST}),
              (Outcome{9, "",
                       "ovmem: input/output: Cannot write to standard output: "
                       "No space left on device.\n"
                       "ovmem: Give standard output a place to go.\n"}));
    EXPECT_EQ(savedFiles().size(), 2u);
}
