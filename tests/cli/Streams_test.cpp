#include "tests/cli/ScriptedCliTest.h"

using OvMemTest::CliTest;
using OvMemTest::exchange;
using OvMemTest::Outcome;
using OvMemTest::readFile;
namespace fs = std::filesystem;

namespace {

// Local files and streams that fail.
using Streams = OvMemTest::ScriptedCliTest;
using StoreStreams = CliTest;

Outcome failure(const std::string& text, const std::string& advice) {
    return {9, "",
            "ovmem: input/output: " + text + "\novmem: " + advice + "\n"};
}

const Outcome CLOSED_OUTPUT =
    failure("Cannot write to standard output: Bad file descriptor.",
            "Give standard output a place to go.");

const std::string SAVED =
    "ovmem: input/output: Cannot write the events to standard output: No space "
    "left on device; it has taken 0 of 10 bytes.\n"
    "ovmem: The service has handed them out and will not do so again. All of "
    "them (10 bytes) are saved in this file: ";

}  // namespace

TEST_F(Streams, AMissingFileIsReportedBeforeAnythingIsSent) {
    const std::string missing = (folder / "missing").string();
    EXPECT_EQ(
        as("pump").run({"put", folder.write("a", "a"), missing}),
        failure("Cannot read '" + missing + "': No such file or directory.",
                "Nothing was sent."));
    EXPECT_EQ(trace(), "");
}

TEST_F(Streams, AFolderInPlaceOfAFileIsReportedBeforeAnythingIsSent) {
    const std::string place = (folder / "").string();
    EXPECT_EQ(as("pump").run({"put", place}),
              failure("Cannot read '" + place + "': Is a directory.",
                      "Nothing was sent."));
    EXPECT_EQ(trace(), "");
}

TEST_F(Streams, AFileWithoutANameIsQuoted) {
    EXPECT_EQ(as("pump").run({"put", ""}),
              failure("Cannot read '': No such file or directory.",
                      "Nothing was sent."));
    EXPECT_EQ(trace(), "");
}

TEST_F(Streams, AClosedStandardInputIsReportedBeforeAnythingIsSent) {
    EXPECT_EQ(as("pump").closeInput().run({"put"}),
              failure("Cannot read standard input: Bad file descriptor.",
                      "Nothing was sent."));
    EXPECT_EQ(trace(), "");
}

TEST_F(Streams, AClosedStandardInputDoesNotDisturbAPutFromAFile) {
    script(exchange("<r/>") + exchange("<r/>"));
    EXPECT_EQ(as("pump").closeInput().run({"put", folder.write("a", "a")}),
              (Outcome{0, "",
                       "ovmem: Put 1 byte; 0 other clients share the "
                       "events.\n"}));
}

TEST_F(Streams, AClosedStandardOutputIsReportedBeforeAnythingIsSent) {
    for (const char* command :
         {"status", "register", "clients", "put", "get", "unregister"}) {
        EXPECT_EQ(as("pump").closeOutput().run({command}), CLOSED_OUTPUT);
    }
    EXPECT_EQ(trace(), "");
}

TEST_F(Streams, APipeThatNobodyReadsIsReportedBeforeAnythingIsSent) {
    EXPECT_EQ(as("pump").breakOutput().run({"get"}),
              failure("Cannot write to standard output: Broken pipe.",
                      "Give standard output a place to go."));
    EXPECT_EQ(trace(), "");
}

TEST_F(Streams, AnAnswerThatCannotBeWrittenIsReported) {
    script(exchange("<r/>") +
           exchange("<r><sharedClients>valve</sharedClients></r>"));
    EXPECT_EQ(as("pump").outputTo("/dev/full").run({"put"}),
              failure("Cannot write the answer to standard output: No space "
                      "left on device.",
                      "What was asked for is done; only the answer is "
                      "missing."));
}

TEST_F(Streams, EventsThatCannotBeWrittenAreSaved) {
    script(exchange("<r/>") + exchange("the events") + exchange("<r/>"));
    const Outcome outcome = as("pump").outputTo("/dev/full").run({"get"});
    EXPECT_EQ(outcome.exitCode, 9);
    ASSERT_EQ(outcome.errors.substr(0, SAVED.size()), SAVED);
    const std::string rest = outcome.errors.substr(SAVED.size());
    const fs::path file = rest.substr(0, rest.size() - 1);
    EXPECT_EQ(rest.back(), '\n');
    EXPECT_EQ(file.parent_path(), folder / "home/.local/state/ovmem");
    EXPECT_EQ(readFile(file), "the events");
    EXPECT_EQ(fs::status(file).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Streams, EventsAreSavedAsTheyAreAlsoWhereJsonWasAskedFor) {
    script(exchange("<r/>") + exchange("the events") + exchange("<r/>"));
    const Outcome outcome =
        as("pump")
            .set("XDG_STATE_HOME", (folder / "state").string())
            .outputTo("/dev/full")
            .run({"get", "--json"});
    EXPECT_EQ(outcome.exitCode, 9);
    const fs::directory_iterator saved(folder / "state/ovmem");
    ASSERT_NE(saved, fs::directory_iterator());
    EXPECT_EQ(readFile(saved->path()), "the events");
}

TEST_F(Streams, EventsAreSavedAmongTemporaryFilesWhereThereIsNoOtherPlace) {
    script(exchange("<r/>") + exchange("the events") + exchange("<r/>"));
    fs::create_directory(folder / "temporary");
    const Outcome outcome = as("pump")
                                .set("HOME", folder.write("file", "no folder"))
                                .set("TMPDIR", (folder / "temporary").string())
                                .outputTo("/dev/full")
                                .run({"get"});
    EXPECT_EQ(outcome.exitCode, 9);
    const fs::directory_iterator saved(folder / "temporary");
    ASSERT_NE(saved, fs::directory_iterator());
    EXPECT_EQ(readFile(saved->path()), "the events");
}

TEST_F(Streams, NothingIsSavedWhereNothingWasFetched) {
    script(exchange("<r/>") + exchange("") + exchange("<r/>"));
    EXPECT_EQ(as("pump").outputTo("/dev/full").run({"get"}),
              (Outcome{0, "",
                       "ovmem: 'pump' is registered at 'plant'; if it was not "
                       "before, it receives events from now on.\n"
                       "ovmem: Got 0 bytes.\n"}));
}

TEST_F(StoreStreams, AClosedStandardOutputNeverBecomesTheStore) {
    registerClient("valve");
    EXPECT_EQ(as("pump").input("kept").run({"put"}).exitCode, 0);
    EXPECT_EQ(as("valve").closeOutput().run({"get"}), CLOSED_OUTPUT);
    EXPECT_EQ(eventsOf("valve"), "kept");
}
