#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/FaultyCliTest.h"
#include "tests/cli/Terminal.h"

using OvMemTest::exchange;
using OvMemTest::failingExchange;
using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::readFile;
namespace fs = std::filesystem;

namespace {

const std::string FIRST = "events-not-delivered-20240501T120000.000001Z-17";
const std::string SECOND = "events-not-delivered-20240501T120000.000002Z-4";
const std::string THIRD = "events-not-delivered-20240502T120000.000000Z-9";

// A reply by which another client receives the events.
const std::string VALVE =
    exchange("<r><sharedClients>valve</sharedClients></r>");

const std::string WITHOUT_RECEIVER =
    "Register the client that is to have the events ('ovmem register'), then "
    "put them back, or write them with 'ovmem rescue show'. If it is not the "
    "server you meant, 'ovmem unregister' takes 'pump' away from it.\n";

// The commands for saved events.
class Rescue : public OvMemTest::FaultyCliTest {
protected:
    Rescue() {
        fs::create_directories(place);
        write(place + "/" + SECOND, "second;");
        write(place + "/" + FIRST, "first;");
    }

    // As of noon on the first of May.
    void write(const std::string& path, const std::string& events) const {
        const fs::path written = path;
        folder.write(written.lexically_relative(folder / "").string(), events);
        const timespec noon[2] = {{1714564800, 0}, {1714564800, 0}};
        EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), noon, 0), 0);
    }

    std::string line(const std::string& name, const std::string& bytes,
                     const std::string& where) const {
        return name + "\t" + bytes + "\t2024-05-01T12:00:00Z\t" + where + "/" +
               name + "\n";
    }

    static Outcome unknown(const std::string& name) {
        return {1, "",
                "ovmem: usage: No saved events are named '" + name +
                    "'.\n"
                    "ovmem: 'ovmem rescue list' names those there are.\n"};
    }
};

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
    EXPECT_EQ(ovmem.run({"rescue", "show", THIRD}), unknown(THIRD));
    EXPECT_EQ(ovmem.run({"rescue", "show", THIRD + "-2of2"}),
              unknown(THIRD + "-2of2"));
}

TEST_F(Rescue, ListEscapesThePathsOnATerminal) {
    const std::string odd = folder.file("x\x1B[2J");
    fs::create_directories(odd + "/ovmem");
    write(odd + "/ovmem/" + FIRST, "");
    ovmem.set("XDG_STATE_HOME", odd).unset("HOME");
    EXPECT_EQ(ovmem.run({"rescue", "list", "--quiet"}).output,
              line(FIRST, "0", odd + "/ovmem"));
    OvMemTest::Terminal terminal;
    EXPECT_EQ(
        ovmem.outputTo(terminal.file()).run({"rescue", "list", "--quiet"}),
        (Outcome{0, "", ""}));
    EXPECT_EQ(terminal.take(),
              line(FIRST, "0", folder.file("x\\x1b[2J") + "/ovmem"));
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

TEST_F(Rescue, PutBackSendsTheEventsAsOneTextAndRemovesTheFiles) {
    script(VALVE + VALVE);
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST, SECOND}),
              (Outcome{0, "valve\n",
                       "ovmem: Put back 13 bytes and removed 2 files; 1 other "
                       "client shares the events.\n"}));
    EXPECT_NE(trace().find("OvMem_SendNoAck(\"first;second;\")"),
              std::string::npos);
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
}

TEST_F(Rescue, PutBackWithJsonWritesOneObject) {
    script(VALVE + VALVE);
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST, "--json"}),
              (Outcome{0,
                       "{\"command\":\"rescue put-back\",\"bytes\":6,"
                       "\"sharedClients\":[\"valve\"]}\n",
                       ""}));
    EXPECT_EQ(savedFiles(), (std::vector{place + "/" + SECOND}));
}

TEST_F(Rescue, EventsThatNobodyWouldReceiveAreNotSent) {
    script(exchange("<r/>"));
    EXPECT_EQ(
        as("pump").run({"rescue", "put-back", FIRST}),
        (Outcome{11, "",
                 "ovmem: no receiver: Nobody would receive the events: 'pump' "
                 "is the only client of 'plant'.\n"
                 "ovmem: Nothing was sent, and the files stay. " +
                     WITHOUT_RECEIVER}));
    EXPECT_EQ(trace().find("first;"), std::string::npos);
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, AFileStaysWhenTheReceiversGoJustBeforeThePut) {
    script(VALVE + exchange("<r/>"));
    EXPECT_EQ(
        as("pump").run({"rescue", "put-back", FIRST}),
        (Outcome{11, "",
                 "ovmem: no receiver: Nobody has received the events: 'pump' "
                 "is the only client of 'plant'.\n"
                 "ovmem: The clients went just before; the files stay. " +
                     WITHOUT_RECEIVER}));
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, AFileStaysWhenTheIdentityCannotBeRegistered) {
    script(failingExchange(-3001, "Gone."));
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST}),
              (Outcome{2, "",
                       "ovmem: OvMEMConnectionException (0): Gone.\n"
                       "ovmem: Remove the cause, then try again.\n"}));
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, AFileThatTheServiceDidNotAcceptStays) {
    script(VALVE + failingExchange(-3001, "Gone."));
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST}),
              (Outcome{2, "",
                       "ovmem: OvMEMConnectionException (0): Gone.\n"
                       "ovmem: Unless the text says otherwise, the events may "
                       "have arrived. If you put them again, they may arrive "
                       "twice.\n"}));
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, AFileWhosePutIsInterruptedStays) {
    script(VALVE + VALVE);
    auto running = withFaults(as("pump"), "receive - 5 hang -")
                       .start({"rescue", "put-back", FIRST});
    waitForHang(running);
    running.signal(SIGTERM);
    EXPECT_EQ(running.waitForEnd(), (Outcome{-SIGTERM, "", ""}));
    EXPECT_EQ(readFile(place + "/" + FIRST), "first;");
}

TEST_F(Rescue, OnlyOneAtATimePutsAFileBack) {
    script(VALVE + VALVE);
    auto running = withFaults(as("pump"), "receive - 5 hang -")
                       .start({"rescue", "put-back", FIRST});
    waitForHang(running);
    const Outcome refusal{9, "",
                          "ovmem: input/output: Cannot put back " + FIRST +
                              ": that is being done already, or has just "
                              "been.\n"
                              "ovmem: Nothing was sent. See 'ovmem rescue "
                              "list'.\n"};
    script("");
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST}), refusal);
    EXPECT_EQ(as("pump").run({"rescue", "put-back", SECOND, SECOND}).exitCode,
              9);
    goOn();
    EXPECT_EQ(running.waitForEnd().exitCode, 0);
    EXPECT_EQ(savedFiles(), (std::vector{place + "/" + SECOND}));
}

TEST_F(Rescue, AFileThatWasPutBackJustNowIsNotPutAgain) {
    // A second name does not make it a file that is still to be put back.
    fs::create_hard_link(place + "/" + FIRST, place + "/." + FIRST);
    auto running = withFaults(as("pump"), "flock - 1 hang -")
                       .start({"rescue", "put-back", FIRST});
    waitForHang(running);
    fs::remove(place + "/" + FIRST);
    goOn();
    EXPECT_EQ(running.waitForEnd(),
              (Outcome{9, "",
                       "ovmem: input/output: Cannot put back " + FIRST +
                           ": that is being done already, or has just been.\n"
                           "ovmem: Nothing was sent. See 'ovmem rescue "
                           "list'.\n"}));
    EXPECT_EQ(trace(), "");
}

TEST_F(Rescue, AFileThatCannotBeLockedIsNotCalledTaken) {
    EXPECT_EQ(
        withFaults(as("pump"), "flock - 1 fail ENOLCK")
            .run({"rescue", "put-back", FIRST}),
        (Outcome{9, "",
                 "ovmem: input/output: Cannot lock " + place + "/" + FIRST +
                     ": No locks available.\n"
                     "ovmem: Nothing was sent. Write the events with "
                     "'ovmem rescue show', put them with 'ovmem put', "
                     "then remove the file.\n"}));
    EXPECT_EQ(trace(), "");
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, EveryFileThatCannotBeRemovedIsNamed) {
    write(place + "/" + THIRD, "third;");
    script(VALVE + VALVE);
    EXPECT_EQ(
        withFaults(as("pump"),
                   "unlink not-delivered 1 fail EIO;"
                   "unlink not-delivered 3 fail ENOSPC")
            .run({"rescue", "put-back", FIRST, SECOND, THIRD}),
        (Outcome{9, "",
                 "ovmem: input/output: Cannot remove " + place + "/" + FIRST +
                     ": Input/output error; " + place + "/" + THIRD +
                     ": No space left on device.\n"
                     "ovmem: The events are put. Remove the files, or "
                     "they may be put once more.\n"}));
    EXPECT_EQ(savedFiles(),
              (std::vector{place + "/" + FIRST, place + "/" + THIRD}));
}

TEST_F(Rescue, FilesThatAreTooLargeTogetherAreNotPutBack) {
    // They take no room on the disk.
    fs::resize_file(place + "/" + FIRST, 300 * 1024 * 1024);
    fs::resize_file(place + "/" + SECOND, 300 * 1024 * 1024);
    EXPECT_EQ(withFaults(as("pump"), "read not-delivered 1+ fail EIO")
                  .run({"rescue", "put-back", FIRST, SECOND}),
              (Outcome{1, "",
                       "ovmem: usage: The events are longer than 536870912 "
                       "bytes, the most that one put carries.\n"
                       "ovmem: Nothing was sent. Put back fewer files at once; "
                       "one that is too large alone can be written with 'ovmem "
                       "rescue show' and put in several parts.\n"}));
    EXPECT_EQ(trace(), "");
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, AFileThatCannotBeRemovedIsReported) {
    script(VALVE + VALVE);
    EXPECT_EQ(
        withFaults(as("pump"), "unlink not-delivered 1 fail EIO")
            .run({"rescue", "put-back", FIRST}),
        (Outcome{9, "",
                 "ovmem: input/output: Cannot remove " + place + "/" + FIRST +
                     ": Input/output error.\n"
                     "ovmem: The events are put. Remove the file, or "
                     "they may be put once more.\n"}));
}

TEST_F(Rescue, EventsWithANulAreNotPutBack) {
    write(place + "/" + FIRST, std::string("ab\0c", 4));
    EXPECT_EQ(as("pump").run({"rescue", "put-back", SECOND, FIRST}),
              (Outcome{1, "",
                       "ovmem: usage: The byte at offset 2 of " + FIRST +
                           " is NUL; the transport carries texts and would "
                           "drop what follows it.\n"
                           "ovmem: Nothing was sent. 'ovmem rescue show' "
                           "writes the events as they are.\n"}));
    EXPECT_EQ(trace(), "");
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, WhatCannotBeShownStays) {
    EXPECT_EQ(ovmem.outputTo("/dev/full").run({"rescue", "show", FIRST}),
              (Outcome{9, "",
                       "ovmem: input/output: Cannot write to standard output: "
                       "No space left on device.\n"
                       "ovmem: Give standard output a place to go.\n"}));
    EXPECT_EQ(savedFiles().size(), 2u);
}
