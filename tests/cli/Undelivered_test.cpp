#include <algorithm>

#include "tests/cli/FaultyCliTest.h"

using OvMemTest::exchange;
using OvMemTest::failingExchange;
using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::readFile;

namespace {

// A get whose standard output does not take everything.
class Undelivered : public OvMemTest::FaultyCliTest {
protected:
    std::string failed(const std::string& events, const std::string& error,
                       std::size_t taken) const {
        return "ovmem: input/output: Cannot write the events to standard "
               "output: " +
               error + "; it has taken " + std::to_string(taken) + " of " +
               std::to_string(events.size()) + " bytes.\n" +
               saved(events, savedFile(events));
    }

    Outcome got(const std::string& events) const {
        return {0, events,
                "ovmem: Got " + std::to_string(events.size()) + " bytes.\n"};
    }
};

}  // namespace

TEST_F(Undelivered, ASlowReaderGetsEverything) {
    auto running = getterOf(manyEvents).pipeOutput().start({"get"});
    running.waitUntil([&] { return running.outputIsFull(); });
    EXPECT_EQ(running.waitForEnd(), got(manyEvents));
    EXPECT_EQ(savedFiles().size(), 0u);
}

TEST_F(Undelivered, APipeThatDoesNotBlockGetsEverything) {
    auto running =
        getterOf(manyEvents).pipeOutputWithoutBlocking().start({"get"});
    running.waitUntil([&] { return running.outputIsFull(); });
    EXPECT_EQ(running.waitForEnd(), got(manyEvents));
    EXPECT_EQ(savedFiles().size(), 0u);
}

TEST_F(Undelivered, AFullPipeThatDoesNotBlockIsNotTriedAgainAndAgain) {
    auto running = getterOf(manyEvents, "write output 1000+ fail EIO")
                       .pipeOutputWithoutBlocking()
                       .start({"get"});
    running.waitUntil([&] { return running.outputIsFull(); });
    EXPECT_EQ(running.readOutput(65536), manyEvents.substr(0, 65536));
    running.waitUntil([&] { return running.outputIsFull(); });
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(outcome,
              (Outcome{0, manyEvents.substr(65536), got(manyEvents).errors}));
}

TEST_F(Undelivered, ShortAndInterruptedWritesDeliverEverything) {
    EXPECT_EQ(getterOf(manyEvents,
                       "write output 2 fail EINTR;"
                       "write output 4 fail EAGAIN;"
                       "write output 1+ short 50001")
                  .run({"get"}),
              got(manyEvents));
}

TEST_F(Undelivered, AReaderThatGoesHalfWayLeavesEverythingSaved) {
    auto running = getterOf(manyEvents).pipeOutput().start({"get"});
    running.waitUntil([&] { return running.outputIsFull(); });
    EXPECT_EQ(running.readOutput(1000), manyEvents.substr(0, 1000));
    running.closeOutput();
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(outcome,
              (Outcome{9, "", failed(manyEvents, "Broken pipe", 65536)}));
}

TEST_F(Undelivered, ANonBlockingReaderThatGoesLeavesEverythingSaved) {
    auto running =
        getterOf(manyEvents).pipeOutputWithoutBlocking().start({"get"});
    running.waitUntil([&] { return running.outputIsFull(); });
    running.closeOutput();
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(outcome,
              (Outcome{9, "", failed(manyEvents, "Broken pipe", 65536)}));
}

TEST_F(Undelivered, AReaderThatGoesBeforeTheFirstByteLeavesEverythingSaved) {
    auto running = getterOf("the events", "receive - 5 hang -")
                       .pipeOutput()
                       .start({"get"});
    waitForHang(running);
    running.closeOutput();
    goOn();
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(outcome,
              (Outcome{9, "", failed("the events", "Broken pipe", 0)}));
}

TEST_F(Undelivered, AWriteThatFailsLeavesEverythingSaved) {
    const std::pair<std::string, std::string> errors[] = {
        {"EIO", "Input/output error"},
        {"ENOSPC", "No space left on device"},
        {"EDQUOT", "Disk quota exceeded"}};
    for (const auto& [error, text] : errors) {
        const Outcome outcome = getterOf(manyEvents,
                                         "write output 1 short 4096;"
                                         "write output 2 fail " +
                                             error)
                                    .run({"get"});
        EXPECT_EQ(outcome, (Outcome{9, manyEvents.substr(0, 4096),
                                    failed(manyEvents, text, 4096)}));
        std::filesystem::remove_all(place);
    }
}

TEST_F(Undelivered, AWriteThatTakesNothingLeavesEverythingSaved) {
    const Outcome outcome =
        getterOf("the events", "write output 1 short 0").run({"get"});
    EXPECT_EQ(outcome,
              (Outcome{9, "", failed("the events", "Input/output error", 0)}));
}

TEST_F(Undelivered, AFailureThatShowsOnlyWhenClosingLeavesEverythingSaved) {
    const Outcome outcome =
        getterOf("the events", "close output 1 fail EDQUOT").run({"get"});
    EXPECT_EQ(outcome,
              (Outcome{9, "the events",
                       failed("the events", "Disk quota exceeded", 10)}));
}

TEST_F(Undelivered, AFullDeviceLeavesEverythingSaved) {
    const Outcome outcome =
        getterOf(manyEvents).outputTo("/dev/full").run({"get"});
    EXPECT_EQ(
        outcome,
        (Outcome{9, "", failed(manyEvents, "No space left on device", 0)}));
}

// SIGXFSZ. The limit of the shell that runs ovmem is a soft one.
TEST_F(Undelivered, AFileThatMayNotGrowLeavesEverythingSaved) {
    const Outcome outcome =
        getterOf(manyEvents).after("ulimit -S -f 16").run({"get"});
    EXPECT_EQ(outcome, (Outcome{9, manyEvents.substr(0, 8192),
                                failed(manyEvents, "File too large", 8192)}));
}

TEST_F(Undelivered, WhereNoFileMayGrowEverythingIsSavedInSeveral) {
    const Outcome outcome =
        getterOf(manyEvents).after("ulimit -f 400").run({"get"});
    const std::size_t limit = 400 * 512;
    const std::vector<std::string> files = savedFiles();
    ASSERT_EQ(files.size(), manyEvents.size() / limit + 1);
    std::string list;
    std::string all;
    Program::Arguments show = {"rescue", "show"};
    for (const std::string& file : files) {
        list += ' ' + file;
        all += readFile(file);
        show.push_back(std::filesystem::path(file).filename());
    }
    EXPECT_TRUE(all == manyEvents);
    const std::string size = std::to_string(manyEvents.size());
    EXPECT_EQ(outcome,
              (Outcome{9, manyEvents.substr(0, limit),
                       "ovmem: input/output: Cannot write the events to "
                       "standard output: File too large; it has taken " +
                           std::to_string(limit) + " of " + size +
                           " bytes.\n"
                           "ovmem: The service has handed them out and will "
                           "not do so again. All of them (" +
                           size +
                           " bytes) are saved in these files, in this "
                           "order:" +
                           list + "\n"}));
    script("");
    EXPECT_EQ(ovmem.run(show), (Outcome{0, manyEvents,
                                        "ovmem: Wrote " + size +
                                            " bytes; nothing was removed.\n"}));
}

TEST_F(Undelivered, EventsBeforeAFailureOfTheServiceAreSavedAsWell) {
    script(exchange("<r/>") + exchange("the events") +
           failingExchange(-3001, "Gone."));
    const Outcome outcome = as("pump").outputTo("/dev/full").run({"get"});
    EXPECT_EQ(
        outcome,
        (Outcome{9, "", failed("the events", "No space left on device", 0)}));
}

TEST_F(Undelivered, JsonIsWrittenWithoutMemoryForAllOfIt) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "The sanitizer brings operator new.";
#endif
    const std::string controls(1000000, '\x01');
    std::string escaped;
    for (std::size_t i = 0; i < controls.size(); ++i) {
        escaped += "\\u0001";
    }
    const Outcome outcome = getterOf(controls, "")
                                .set("OVMEM_TEST_LARGEST_NEW", "1100000")
                                .run({"get", "--json"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(outcome.output ==
                "{\"command\":\"get\",\"bytes\":1000000,\"events\":\"" +
                    escaped + "\",\"sharedClients\":[]}\n");
    EXPECT_EQ(savedFiles(), std::vector<std::string>());
}

// The names of the clients are no longer than the events, but their JSON is.
TEST_F(Undelivered, WithoutMemoryForJsonEverythingIsSaved) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "The sanitizer brings operator new.";
#endif
    std::string name;
    for (int i = 0; i < 100000; ++i) {
        name += "\u0080";  // six characters each
    }
    script(exchange("<r/>") + exchange("the events") +
           exchange("<r><sharedClients>" + name + "</sharedClients></r>"));
    const Outcome outcome = withFaults(as("pump"), "")
                                .set("OVMEM_TEST_LARGEST_NEW", "500000")
                                .run({"get", "--json"});
    EXPECT_EQ(
        outcome,
        (Outcome{9, "",
                 "{\"error\":\"input/output\",\"text\":\"Cannot write the "
                 "events to standard output: Cannot allocate memory; it has "
                 "taken 0 of 10 bytes.\",\"advice\":\"The service has handed "
                 "them out and will not do so again. All of them (10 bytes) "
                 "are saved in this file: " +
                     savedFile("the events") + "\",\"exitCode\":9}\n"}));
}

TEST_F(Undelivered, NothingIsSavedWhereNoEventsWereWaiting) {
    EXPECT_EQ(getterOf("").outputTo("/dev/full").run({"get", "--json"}),
              (Outcome{9, "",
                       "{\"error\":\"input/output\",\"text\":\"Cannot write "
                       "the events to standard output: No space left on "
                       "device; it has taken 0 of 59 bytes.\",\"advice\":\"No "
                       "events were waiting; nothing is lost.\",\"exitCode\":"
                       "9}\n"}));
    EXPECT_EQ(savedFiles().size(), 0u);
}

TEST_F(Undelivered, AnAnswerInPartsIsWrittenWhole) {
    script(exchange("<r/>") +
           exchange("<r><sharedClients>valve</sharedClients></r>"));
    EXPECT_EQ(withFaults(as("pump"), "write output 1+ short 2").run({"put"}),
              (Outcome{0, "valve\n",
                       "ovmem: Put 0 bytes; 1 other client shares the "
                       "events.\n"}));
}

TEST_F(Undelivered, WordsInPartsAreWrittenWhole) {
    EXPECT_EQ(withFaults(as("pump"),
                         "write errors 1+ short 3;"
                         "write errors 2 fail EINTR")
                  .run({"fetch"})
                  .errors,
              "ovmem: usage: 'fetch' is neither a command nor an option.\n"
              "ovmem: 'ovmem --help' lists the commands and options.\n");
}
