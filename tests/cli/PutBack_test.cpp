#include <csignal>
#include <filesystem>

#include "tests/cli/RescueTest.h"

using OvMemTest::exchange;
using OvMemTest::failingExchange;
using OvMemTest::FIRST;
using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::readFile;
using OvMemTest::SECOND;
using OvMemTest::THIRD;
using OvMemTest::VALVE;
namespace fs = std::filesystem;

namespace {

using PutBack = OvMemTest::RescueTest;

const std::string WITHOUT_RECEIVER =
    "Register the client that is to have the events ('ovmem register'), then "
    "put them back, or write them with 'ovmem rescue show'. If it is not the "
    "server you meant, 'ovmem unregister' takes 'pump' away from it.\n";

}  // namespace

TEST_F(PutBack, PutBackSendsTheEventsAsOneTextAndRemovesTheFiles) {
    script(VALVE + VALVE);
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST, SECOND}),
              (Outcome{0, "valve\n",
                       "ovmem: Put back 13 bytes and removed 2 files; 1 other "
                       "client shares the events.\n"}));
    EXPECT_NE(trace().find("OvMem_SendNoAck(\"first;second;\")"),
              std::string::npos);
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
}

TEST_F(PutBack, PutBackWithJsonWritesOneObject) {
    script(VALVE + VALVE);
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST, "--json"}),
              (Outcome{0,
                       "{\"command\":\"rescue put-back\",\"bytes\":6,"
                       "\"sharedClients\":[\"valve\"]}\n",
                       ""}));
    EXPECT_EQ(savedFiles(), (std::vector{place + "/" + SECOND}));
}

TEST_F(PutBack, ThePiecesOfATextArePutBackInTheirOrder) {
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

TEST_F(PutBack, ATextOfWhichPiecesAreMissingIsNotPutBack) {
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

TEST_F(PutBack, AFileThatIsNamedTwiceIsNotPutBack) {
    EXPECT_EQ(
        as("pump").run({"rescue", "put-back", FIRST, place + "/./" + FIRST}),
        (Outcome{1, "",
                 "ovmem: usage: " + FIRST +
                     " is named twice.\n"
                     "ovmem: Nothing was sent. Name each file once.\n"}));
    EXPECT_EQ(trace(), "");
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(PutBack, AFileThatCouldNotBeRemovedIsNotSent) {
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

TEST_F(PutBack, MoreFilesThanMayBeOpenAreNotPutBack) {
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

TEST_F(PutBack, EventsThatNobodyWouldReceiveAreNotSent) {
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

TEST_F(PutBack, AFileStaysWhenTheReceiversGoJustBeforeThePut) {
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

TEST_F(PutBack, AFileStaysWhenTheIdentityCannotBeRegistered) {
    script(failingExchange(-3001, "Gone."));
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST}),
              (Outcome{2, "",
                       "ovmem: OvMEMConnectionException (0): Gone.\n"
                       "ovmem: Remove the cause, then try again.\n"}));
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(PutBack, AFileThatTheServiceDidNotAcceptStays) {
    script(VALVE + failingExchange(-3001, "Gone."));
    EXPECT_EQ(as("pump").run({"rescue", "put-back", FIRST}),
              (Outcome{2, "",
                       "ovmem: OvMEMConnectionException (0): Gone.\n"
                       "ovmem: Unless the text says otherwise, the events may "
                       "have arrived. If you run the same command again, they "
                       "arrive twice only where the service does not store a "
                       "repeated put once.\n"}));
    EXPECT_EQ(savedFiles().size(), 2u);
}

TEST_F(PutBack, AFileWhosePutIsInterruptedStays) {
    script(VALVE + VALVE);
    auto running = withFaults(as("pump"), "receive - 5 hang -")
                       .start({"rescue", "put-back", FIRST});
    waitForHang(running);
    running.signal(SIGTERM);
    EXPECT_EQ(running.waitForEnd(), (Outcome{-SIGTERM, "", ""}));
    EXPECT_EQ(readFile(place + "/" + FIRST), "first;");
}

TEST_F(PutBack, OnlyOneAtATimePutsAFileBack) {
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

TEST_F(PutBack, AFileThatWasPutBackJustNowIsNotPutAgain) {
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

TEST_F(PutBack, AFileThatCannotBeLockedIsNotCalledTaken) {
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

TEST_F(PutBack, EveryFileThatCannotBeRemovedIsNamed) {
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

TEST_F(PutBack, FilesThatAreTooLargeTogetherAreNotPutBack) {
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

TEST_F(PutBack, AFileThatCannotBeRemovedIsReported) {
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

TEST_F(PutBack, EventsWithANulAreNotPutBack) {
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
