#include <csignal>
#include <utility>

#include "tests/cli/FaultyCliTest.h"
#include "tests/cli/Terminal.h"

using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::RunningProgram;
using OvMemTest::Terminal;

namespace {

// The keys of the terminal to which get writes.
class Keys : public OvMemTest::FaultyCliTest {
protected:
    Keys() { terminal.obeyKeys(); }

    RunningProgram startAtTerminal(Program getter) const {
        return getter.atTerminal(terminal.file()).start({"get", "--grace=99"});
    }

    // How it ends when a key is pressed at its terminal.
    Outcome pressing(char key, Program getter) const {
        RunningProgram running = startAtTerminal(std::move(getter));
        terminal.waitForOutput();
        terminal.press(key);
        terminal.takeUntilEndOf(running);
        return running.waitForEnd();
    }

    // What get says when the terminal has taken everything.
    std::string dropped(const std::string& begin,
                        const std::string& name) const {
        return "ovmem: " + begin + " output has taken all " +
               std::to_string(manyEvents.size()) + " bytes, but at " + name +
               " the terminal may have dropped some of them.\n" +
               saved(manyEvents, savedFile(manyEvents));
    }

    const Terminal terminal;
};

}  // namespace

TEST_F(Keys, ThatStopGetMayDropOutputSoThatAllEventsAreSavedAsWell) {
    const Outcome outcome = pressing('\x03', getterOf(manyEvents));
    EXPECT_EQ(
        outcome,
        (Outcome{130, "",
                 dropped("stopped: Stopped by SIGINT; standard", "SIGINT")}));
}

TEST_F(Keys, ForQuittingDropOutputToo) {
    const Outcome outcome = pressing('\x1C', getterOf(manyEvents));
    EXPECT_EQ(
        outcome,
        (Outcome{131, "",
                 dropped("stopped: Stopped by SIGQUIT; standard", "SIGQUIT")}));
}

TEST_F(Keys, ThatGetIgnoresDropOutputAllTheSame) {
    const Outcome outcome =
        pressing('\x03', getterOf(manyEvents).after("trap '' INT"));
    EXPECT_EQ(outcome,
              (Outcome{9, "", dropped("input/output: Standard", "SIGINT")}));
}

TEST_F(Keys, ThatHaltGetForAWhileDropOutputToo) {
    RunningProgram running = startAtTerminal(getterOf(manyEvents));
    terminal.waitForOutput();
    running.signal(SIGCONT);
    terminal.takeUntilEndOf(running);
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(outcome,
              (Outcome{9, "", dropped("input/output: Standard", "SIGCONT")}));
}

TEST_F(Keys, ThatWereNotPressedDropNothing) {
    RunningProgram running = startAtTerminal(getterOf(manyEvents));
    terminal.waitForOutput();
    running.signal(SIGTERM);
    EXPECT_EQ(terminal.takeUntilEndOf(running), manyEvents);
    EXPECT_EQ(running.waitForEnd(),
              (Outcome{143, "",
                       "ovmem: stopped: Stopped by SIGTERM after all events (" +
                           std::to_string(manyEvents.size()) +
                           " bytes) were written.\n"}));
    EXPECT_EQ(savedFiles().size(), 0u);
}

TEST_F(Keys, ATerminalThatDoesNotPassOutputOnLeavesEverythingSaved) {
    RunningProgram running =
        startAtTerminal(getterOf(manyEvents, "tcdrain output 1 fail EIO"));
    EXPECT_EQ(terminal.takeUntilEndOf(running), manyEvents);
    const std::string size = std::to_string(manyEvents.size());
    EXPECT_EQ(running.waitForEnd(),
              (Outcome{9, "",
                       "ovmem: input/output: Cannot write the events to "
                       "standard output: Input/output error; it has taken " +
                           size + " of " + size + " bytes.\n" +
                           saved(manyEvents, savedFile(manyEvents))}));
}
