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
        return {1, "", "ovmem: usage: " + unknownText(name)};
    }

    // A name of ovmem's own: the file may have been there.
    static Outcome gone(const std::string& name) {
        return {9, "", "ovmem: input/output: " + unknownText(name)};
    }

    static std::string unknownText(const std::string& name) {
        return "No saved events are named '" + name +
               "'.\n"
               "ovmem: 'ovmem rescue list' names those there are.\n";
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

TEST_F(Rescue, ThePiecesOfATextArePutBackInTheirOrder) {
    Program::Arguments arguments = {"rescue", "put-back", "--quiet", SECOND};
    std::string all = "second;";
    for (const std::string piece : {"1", "10", "11", "2"}) {
        write(place + "/" + THIRD + "-" + piece + "of11", piece + ";");
        arguments.push_back(THIRD + "-" + piece + "of11");
    }
    for (int i = 1; i <= 11; ++i) {
        const std::string piece = std::to_string(i);
        if (i > 2 && i < 10) {
            write(place + "/" + THIRD + "-0" + piece + "of11", piece + ";");
            arguments.push_back(THIRD + "-0" + piece + "of11");
        }
        all += piece + ";";
    }
    arguments.push_back(FIRST);
    script(VALVE + VALVE);
    EXPECT_EQ(as("pump").run(arguments), (Outcome{0, "valve\n", ""}));
    EXPECT_NE(trace().find("OvMem_SendNoAck(\"" + all + "first;\")"),
              std::string::npos)
        << trace();
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
}

TEST_F(Rescue, ATextOfWhichPiecesAreMissingIsNotPutBack) {
    const std::string piece = THIRD + "-02of12";
    write(place + "/" + piece, "2;");
    EXPECT_EQ(
        as("pump").run({"rescue", "put-back", FIRST, piece}),
        (Outcome{1, "",
                 "ovmem: usage: Pieces are missing: " + THIRD + "-01of12, " +
                     THIRD + "-03of12, " + THIRD + "-04of12, " + THIRD +
                     "-05of12, " + THIRD +
                     "-06of12 and 6 more.\n"
                     "ovmem: Nothing was sent. Name all pieces of the text; "
                     "'ovmem rescue list' names those there are. If some are "
                     "lost, write the others with 'ovmem rescue show'.\n"}));
    write(place + "/" + THIRD + "-2of12", "2;");
    EXPECT_EQ(
        as("pump").run({"rescue", "put-back", piece, THIRD + "-2of12"}),
        (Outcome{1, "",
                 "ovmem: usage: Two of the files are the piece " + THIRD +
                     "-2of12.\n"
                     "ovmem: Nothing was sent. Name each piece once.\n"}));
    EXPECT_EQ(trace(), "");
    EXPECT_EQ(savedFiles().size(), 4u);
}

TEST_F(Rescue, AFileThatIsNamedTwiceIsNotPutBack) {
    EXPECT_EQ(
        as("pump").run({"rescue", "put-back", FIRST, place + "/./" + FIRST}),
        (Outcome{1, "",
                 "ovmem: usage: " + FIRST +
                     " is named twice.\n"
                     "ovmem: Nothing was sent. Name each file once.\n"}));
    EXPECT_EQ(trace(), "");
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, AFileThatCouldNotBeRemovedIsNotSent) {
    EXPECT_EQ(
        withFaults(as("pump"), "faccessat - 1 fail EIO")
            .run({"rescue", "put-back", FIRST}),
        (Outcome{9, "",
                 "ovmem: input/output: Cannot remove files from " + place +
                     ": Input/output error.\n"
                     "ovmem: Nothing was sent: the events of a file that stays "
                     "may be put again. Allow writing to the folder. Or write "
                     "the events with 'ovmem rescue show' and put them with "
                     "'ovmem put'.\n"}));
    EXPECT_EQ(trace(), "");
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(Rescue, MoreFilesThanMayBeOpenAreNotPutBack) {
    Program program = as("pump");
    program.after("ulimit -n 17");
    EXPECT_EQ(program.run({"rescue", "put-back", FIRST, SECOND}),
              (Outcome{1, "",
                       "ovmem: usage: So many files (2) cannot be put back at "
                       "once; ovmem may open 17.\n"
                       "ovmem: Nothing was sent. Name fewer files, or raise "
                       "the limit with 'ulimit -n'.\n"}));
    EXPECT_EQ(program.run({"rescue", "show", "--quiet", FIRST, SECOND}),
              (Outcome{0, "first;second;", ""}));
    EXPECT_EQ(savedFiles().size(), 2u);
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
    goOn();
    EXPECT_EQ(running.waitForEnd().exitCode, 0);
    EXPECT_EQ(savedFiles(), (std::vector{place + "/" + SECOND}));
    // Whoever comes later still ends in the same way.
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST}), gone(FIRST));
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
