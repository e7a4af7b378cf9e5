#include <chrono>
#include <csignal>
#include <filesystem>

#include "tests/cli/FaultyCliTest.h"

using OvMemTest::exchange;
using OvMemTest::failingExchange;
using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds graceAndMore{1700};

// The first answer of the service to registerClient, and to getEvents.
const char REGISTERING[] = "receive - 1 hang -";
const char FETCHING[] = "receive - 5 hang -";

// A get that is told to stop.
class Stopping : public OvMemTest::FaultyCliTest {
protected:
    // A get whose reader has taken nothing yet and whose pipe is full.
    OvMemTest::RunningProgram startBlocked(Program getter,
                                           const std::string& grace) const {
        return getter.pipeOutput().start({"get", "--grace=" + grace});
    }

    std::string delivered(const std::string& name) const {
        return "ovmem: stopped: Stopped by " + name + " after all events (" +
               std::to_string(manyEvents.size()) + " bytes) were written.\n";
    }

    std::string savedWithoutReader() const {
        return "ovmem: input/output: Cannot write the events to standard "
               "output: Broken pipe; it has taken 65536 of " +
               std::to_string(manyEvents.size()) + " bytes.\n" +
               saved(manyEvents, savedFile(manyEvents));
    }

    std::string cut(const std::string& name) const {
        return "ovmem: stopped: Stopped by " + name +
               "; standard output has taken 65536 of " +
               std::to_string(manyEvents.size()) + " bytes.\n" +
               saved(manyEvents, savedFile(manyEvents));
    }
};

const std::string LOST =
    "ovmem: stopped: Stopped by SIGTERM before the service had answered.\n"
    "ovmem: If the service has handed out events by now, they are lost. If "
    "not, they still wait for the client.\n";

const std::string ENDED_WHILE_SAVING =
    "ovmem: stopped: Stopped by SIGTERM while the events were being saved.\n"
    "ovmem: What standard output has not taken may be lost. 'ovmem rescue "
    "list' names the events if they are complete; if not, what there is of "
    "them is in the files .events-not-delivered-* of the places that 'ovmem "
    "--help' names.\n";

const std::string NOT_ASKED =
    "ovmem: stopped: Stopped by SIGTERM before the events were asked for.\n"
    "ovmem: Nothing is lost; what waits for the client still waits.\n";

}  // namespace

TEST_F(Stopping, ASlowReaderGetsEverythingAfterEachOfTheSignals) {
    std::vector<std::pair<int, std::string>> signals = {
        {SIGTERM, "SIGTERM"},     {SIGINT, "SIGINT"},
        {SIGHUP, "SIGHUP"},       {SIGQUIT, "SIGQUIT"},
        {SIGALRM, "SIGALRM"},     {SIGUSR1, "SIGUSR1"},
        {SIGUSR2, "SIGUSR2"},     {SIGIO, "SIGPOLL"},
        {SIGPROF, "SIGPROF"},     {SIGPWR, "SIGPWR"},
        {SIGXCPU, "SIGXCPU"},     {SIGSTKFLT, "SIGSTKFLT"},
        {SIGVTALRM, "SIGVTALRM"}, {SIGRTMIN, "SIGRTMIN"}};
    for (int number = SIGRTMIN + 1; number <= SIGRTMAX; ++number) {
        signals.emplace_back(number,
                             "SIGRTMIN+" + std::to_string(number - SIGRTMIN));
    }
    for (const auto& [number, name] : signals) {
        auto running = startBlocked(getterOf(manyEvents), "100");
        running.waitUntil([&] { return running.outputIsFull(); });
        running.signal(number);
        EXPECT_EQ(running.waitForEnd(),
                  (Outcome{128 + number, manyEvents, delivered(name)}));
    }
    EXPECT_EQ(savedFiles().size(), 0u);
}

TEST_F(Stopping, ASecondSignalSavesWhatTheReaderHasNotTaken) {
    auto running = startBlocked(getterOf(manyEvents), "100");
    running.waitUntil([&] { return running.outputIsFull(); });
    running.signal(SIGTERM);
    running.signal(SIGINT);
    const Outcome outcome = running.waitForEndUnread();
    EXPECT_EQ(outcome,
              (Outcome{143, manyEvents.substr(0, 65536), cut("SIGTERM")}));
}

TEST_F(Stopping, TheEndOfTheGraceSavesWhatTheReaderHasNotTaken) {
    auto running = startBlocked(getterOf(manyEvents), "0.2");
    running.waitUntil([&] { return running.outputIsFull(); });
    running.signal(SIGHUP);
    const Outcome outcome = running.waitForEndUnread();
    EXPECT_EQ(outcome,
              (Outcome{129, manyEvents.substr(0, 65536), cut("SIGHUP")}));
}

TEST_F(Stopping, WritingALargeFileIsGivenUpBetweenTwoMebibytes) {
    const std::string events(2500000, 'e');
    auto running =
        getterOf(events, "write output 2 hang -").start({"get", "--grace=99"});
    waitForHang(running);
    running.signal(SIGTERM);
    running.signal(SIGINT);
    goOn();
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(
        outcome,
        (Outcome{143, events.substr(0, 2097152),
                 "ovmem: stopped: Stopped by SIGTERM; standard output has "
                 "taken "
                 "2097152 of 2500000 bytes.\n" +
                     saved(events, savedFile(events))}));
}

TEST_F(Stopping, APipeThatDoesNotBlockIsGivenUpInTheSameWay) {
    auto running = getterOf(manyEvents)
                       .pipeOutputWithoutBlocking()
                       .start({"get", "--grace=0"});
    running.waitUntil([&] { return running.outputIsFull(); });
    running.signal(SIGTERM);
    const Outcome outcome = running.waitForEndUnread();
    EXPECT_EQ(outcome,
              (Outcome{143, manyEvents.substr(0, 65536), cut("SIGTERM")}));
}

TEST_F(Stopping, TheSameSignalAtOnceAgainIsNoSecondOne) {
    bool atOnce = false;
    for (int attempt = 0; !atOnce && attempt < 50; ++attempt) {
        auto running = startBlocked(getterOf(manyEvents), "100");
        running.waitUntil([&] { return running.outputIsFull(); });
        const auto begin = Clock::now();
        running.signal(SIGTERM);
        running.signal(SIGTERM);
        atOnce = Clock::now() - begin < std::chrono::milliseconds(50);
        if (atOnce) {
            EXPECT_EQ(running.waitForEnd(),
                      (Outcome{143, manyEvents, delivered("SIGTERM")}));
        }
    }
    EXPECT_TRUE(atOnce) << "The machine is too busy.";
}

TEST_F(Stopping, TheSameSignalLaterIsASecondOne) {
    auto running = startBlocked(getterOf(manyEvents), "100");
    running.waitUntil([&] { return running.outputIsFull(); });
    running.waitUntil([&] {
        running.send(SIGTERM);
        return running.hasEnded();
    });
    EXPECT_EQ(running.waitForEnd().exitCode, 143);
}

TEST_F(Stopping, TheAnswerOfTheServiceIsAwaitedAndDelivered) {
    auto running = getterOf(manyEvents, FETCHING)
                       .pipeOutput()
                       .start({"get", "--grace=99"});
    waitForHang(running);
    running.signal(SIGINT);
    goOn();
    EXPECT_EQ(running.waitForEnd(),
              (Outcome{130, manyEvents, delivered("SIGINT")}));
}

TEST_F(Stopping, AServiceThatHangsIsLeftAtTheSecondSignal) {
    auto running = getterOf("e", FETCHING).start({"get", "--grace=99"});
    waitForHang(running);
    running.signal(SIGTERM);
    running.signal(SIGQUIT);
    EXPECT_EQ(running.waitForEnd(), (Outcome{143, "", LOST}));
}

TEST_F(Stopping, AServiceThatHangsIsLeftAtTheEndOfTheGrace) {
    auto running = getterOf("e", FETCHING).start({"get", "--grace", "0.3"});
    waitForHang(running);
    running.signal(SIGTERM);
    EXPECT_EQ(running.waitForEnd(), (Outcome{143, "", LOST}));
}

TEST_F(Stopping, WithoutAnOptionTheGraceEndsToo) {
    auto running = getterOf("e", FETCHING).start({"get"});
    waitForHang(running);
    running.signal(SIGTERM);
    EXPECT_EQ(running.waitForEnd(), (Outcome{143, "", LOST}));
}

TEST_F(Stopping, AServiceThatHangsBeforeTheEventsWereAskedForLosesNothing) {
    auto running = getterOf("e", REGISTERING).start({"get", "--grace=99"});
    waitForHang(running);
    running.signal(SIGTERM);
    running.signal(SIGINT);
    EXPECT_EQ(running.waitForEnd(), (Outcome{143, "", NOT_ASKED}));
}

TEST_F(Stopping, ASignalBeforeTheEventsWereAskedForLeavesThemThere) {
    script(exchange("<r/>"));
    auto running =
        withFaults(as("pump"), REGISTERING).start({"get", "--grace=99"});
    waitForHang(running);
    running.signal(SIGTERM);
    goOn();
    EXPECT_EQ(running.waitForEnd(), (Outcome{143, "", NOT_ASKED}));
}

TEST_F(Stopping, AFailureOfTheServiceIsReportedToo) {
    script(exchange("<r/>") + exchange("the events") +
           failingExchange(-3001, "Gone."));
    auto running =
        withFaults(as("pump"), FETCHING).start({"get", "--grace=99"});
    waitForHang(running);
    running.signal(SIGTERM);
    goOn();
    EXPECT_EQ(running.waitForEnd(),
              (Outcome{143, "the events",
                       "ovmem: OvMEMConnectionException (0): Gone.\n"
                       "ovmem: Remove the cause, then try again.\n"}));
}

TEST_F(Stopping, AReaderThatGoesAfterTheSignalLeavesTheEventsSaved) {
    auto running = startBlocked(getterOf(manyEvents), "99");
    running.waitUntil([&] { return running.outputIsFull(); });
    running.signal(SIGTERM);
    running.closeOutput();
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(outcome, (Outcome{143, "", savedWithoutReader()}));
}

TEST_F(Stopping, ASignalWhileSavingWaitsUntilItIsSaved) {
    auto running = getterOf("the events", "fsync - 1 hang -")
                       .outputTo("/dev/full")
                       .start({"get", "--grace=0"});
    waitForHang(running);
    running.signal(SIGTERM);
    goOn();
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(outcome,
              (Outcome{143, "",
                       "ovmem: input/output: Cannot write the events to "
                       "standard output: No space left on device; it has taken "
                       "0 of 10 bytes.\n" +
                           saved("the events", savedFile("the events"))}));
}

TEST_F(Stopping, ASecondSignalWhileSavingEndsIt) {
    auto running = getterOf("the events", "fsync - 1 hang -")
                       .outputTo("/dev/full")
                       .start({"get", "--grace=99"});
    waitForHang(running);
    running.signal(SIGTERM);
    running.signal(SIGINT);
    EXPECT_EQ(running.waitForEnd(), (Outcome{143, "", ENDED_WHILE_SAVING}));
    EXPECT_EQ(savedFiles().size(), 1u);
    script("");
    EXPECT_EQ(ovmem.run({"rescue", "list"}),
              (Outcome{0, "", "ovmem: No events are saved.\n"}));
}

// The folder's own fsync is held back: the file has its name already.
TEST_F(Stopping, ASecondSignalAfterTheFileHasItsNameDoesNotCallItLost) {
    auto running = getterOf("the events", "fsync st3/ovmem 2 hang -")
                       .set("XDG_STATE_HOME", folder.file("st3"))
                       .outputTo("/dev/full")
                       .start({"get", "--grace=99"});
    waitForHang(running);
    running.signal(SIGTERM);
    running.signal(SIGINT);
    EXPECT_EQ(running.waitForEnd(), (Outcome{143, "", ENDED_WHILE_SAVING}));
    const auto files = filesIn(folder.file("st3/ovmem"));
    ASSERT_EQ(files.size(), 1u);
    script("");
    ovmem.set("XDG_STATE_HOME", folder.file("st3"));
    const std::string name = std::filesystem::path(files[0]).filename();
    EXPECT_EQ(ovmem.run({"rescue", "show", name, "--quiet"}),
              (Outcome{0, "the events", ""}));
}

TEST_F(Stopping, ASignalThatIsNoStopInterruptsNothingOfTheTransport) {
    auto running = getterOf("the events", FETCHING).start({"get"});
    waitForHang(running);
    for (int i = 0; i < 20; ++i) {
        running.signal(SIGURG);
    }
    goOn();
    EXPECT_EQ(running.waitForEnd(),
              (Outcome{0, "the events", "ovmem: Got 10 bytes.\n"}));
    EXPECT_EQ(OvMemTest::readFile(folder.file("reached")), "x");
}

TEST_F(Stopping, ASignalAfterSavingDoesNotKeepTheReportBack) {
    auto running = getterOf(manyEvents, "write errors 1 hang -")
                       .pipeOutput()
                       .start({"get", "--grace=0"});
    running.waitUntil([&] { return running.outputIsFull(); });
    running.signal(SIGTERM);
    waitForHang(running);
    running.signal(SIGINT);
    running.signal(SIGHUP);
    goOn();
    const Outcome outcome = running.waitForEndUnread();
    EXPECT_EQ(outcome,
              (Outcome{143, manyEvents.substr(0, 65536), cut("SIGTERM")}));
}

TEST_F(Stopping, AFirstSignalAfterSavingDoesNotKeepTheReportBack) {
    auto running = getterOf("the events", "write errors 1 hang -")
                       .outputTo("/dev/full")
                       .start({"get", "--grace=0"});
    waitForHang(running);
    running.signal(SIGTERM);
    goOn();
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(outcome,
              (Outcome{9, "",
                       "ovmem: input/output: Cannot write the events to "
                       "standard output: No space left on device; it has taken "
                       "0 of 10 bytes.\n" +
                           saved("the events", savedFile("the events"))}));
}

TEST_F(Stopping, AReportThatNobodyTakesIsLeftAtTheSecondSignal) {
    auto running =
        getterOf("e", "write errors 1 hang -").start({"get", "--grace=99"});
    waitForHang(running);
    running.signal(SIGTERM);
    running.signal(SIGINT);
    EXPECT_EQ(running.waitForEnd(), (Outcome{143, "e", ""}));
}

TEST_F(Stopping, WithoutGraceThereIsStillTimeForSaving) {
    auto running = getterOf(manyEvents, "fsync - 1 hang -")
                       .pipeOutput()
                       .start({"get", "--grace=0"});
    running.waitUntil([&] { return running.outputIsFull(); });
    running.signal(SIGTERM);
    waitForHang(running);
    goOn();
    const Outcome outcome = running.waitForEndUnread();
    EXPECT_EQ(outcome,
              (Outcome{143, manyEvents.substr(0, 65536), cut("SIGTERM")}));
}

TEST_F(Stopping, TheGraceBeginsAgainWithSaving) {
    auto running = getterOf(manyEvents, "fsync - 1 hang -")
                       .pipeOutput()
                       .start({"get", "--grace=1.5"});
    running.waitUntil([&] { return running.outputIsFull(); });
    running.signal(SIGTERM);
    const auto end = Clock::now() + graceAndMore;
    running.closeOutput();
    waitForHang(running);
    running.waitUntil([&] { return Clock::now() > end; });
    goOn();
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(outcome, (Outcome{143, "", savedWithoutReader()}));
}

TEST_F(Stopping, TheEndOfTheGraceDoesNotKeepTheReportBack) {
    auto running = getterOf(manyEvents, "write errors 1 hang -")
                       .pipeOutput()
                       .start({"get", "--grace=1.5"});
    running.waitUntil([&] { return running.outputIsFull(); });
    running.signal(SIGTERM);
    const auto end = Clock::now() + graceAndMore;
    EXPECT_EQ(running.readOutput(manyEvents.size()), manyEvents);
    waitForHang(running);
    running.waitUntil([&] { return Clock::now() > end; });
    goOn();
    EXPECT_EQ(running.waitForEnd(), (Outcome{143, "", delivered("SIGTERM")}));
}

TEST_F(Stopping, ASignalThatIsIgnoredFromTheStartStaysSo) {
    auto running = getterOf(manyEvents)
                       .pipeOutput()
                       .after("trap '' HUP INT QUIT TERM")
                       .start({"get", "--grace=0"});
    running.waitUntil([&] { return running.outputIsFull(); });
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        running.signal(number);
    }
    EXPECT_EQ(running.waitForEnd(),
              (Outcome{0, manyEvents,
                       "ovmem: Got " + std::to_string(manyEvents.size()) +
                           " bytes.\n"}));
}

TEST_F(Stopping, NobodyNeedsToTakeTheReport) {
    auto running = getterOf(manyEvents)
                       .pipeOutput()
                       .errorsToOutput()
                       .start({"get", "--grace=0"});
    running.waitUntil([&] { return running.outputIsFull(); });
    running.signal(SIGTERM);
    const Outcome outcome = running.waitForEndUnread();
    EXPECT_EQ(outcome, (Outcome{143, manyEvents.substr(0, 65536), ""}));
    savedFile(manyEvents);
}

TEST_F(Stopping, TheReportIsJsonWhereJsonIsAskedFor) {
    auto running =
        getterOf("e", FETCHING).start({"get", "--json", "--grace=0"});
    waitForHang(running);
    running.signal(SIGTERM);
    EXPECT_EQ(running.waitForEnd(),
              (Outcome{143, "",
                       "{\"error\":\"stopped\",\"text\":\"Stopped by SIGTERM "
                       "before the service had answered.\",\"advice\":\"If the "
                       "service has handed out events by now, they are lost. "
                       "If not, they still wait for the client.\",\"exitCode\":"
                       "143}\n"}));
}

TEST_F(Stopping, OtherCommandsEndAtTheFirstSignal) {
    script(exchange("<r/>") + exchange("<r/>"));
    auto running = withFaults(as("pump"), FETCHING).start({"put"});
    waitForHang(running);
    running.signal(SIGTERM);
    EXPECT_EQ(running.waitForEnd(), (Outcome{-SIGTERM, "", ""}));
}

TEST_F(Stopping, WithoutMemoryForTheThreadTheSignalsAreAsTheyWere) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "The sanitizer brings operator new.";
#endif
    auto running =
        withFaults(as("pump"), "new - 1 fail EAGAIN;write errors 1 hang -")
            .start({"get"});
    waitForHang(running);
    running.signal(SIGTERM);
    EXPECT_EQ(running.waitForEnd(), (Outcome{-SIGTERM, "", ""}));
    EXPECT_EQ(trace(), "");
}

TEST_F(Stopping, WithoutAThreadToWatchNothingIsAskedFor) {
    EXPECT_EQ(withFaults(as("pump"), "thread - 1+ fail EAGAIN").run({"get"}),
              (Outcome{9, "",
                       "ovmem: input/output: Cannot start a thread that "
                       "watches for signals: Resource temporarily "
                       "unavailable.\n"
                       "ovmem: Nothing was asked for. Allow ovmem one more "
                       "thread.\n"}));
    EXPECT_EQ(trace(), "");
}
