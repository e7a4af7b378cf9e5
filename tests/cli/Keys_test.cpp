#include <csignal>

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
    RunningProgram running = startAtTerminal(getterOf(manyEvents));
    terminal.waitForOutput();
    terminal.press('\x03');
    terminal.takeUntilEndOf(running);
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(
        outcome,
        (Outcome{130, "",
                 dropped("stopped: Stopped by SIGINT; standard", "SIGINT")}));
}

TEST_F(Keys, ForQuittingDropOutputToo) {
    RunningProgram running = startAtTerminal(getterOf(manyEvents));
    terminal.waitForOutput();
    terminal.press('\x1C');
    terminal.takeUntilEndOf(running);
    const Outcome outcome = running.waitForEnd();
    EXPECT_EQ(
        outcome,
        (Outcome{131, "",
                 dropped("stopped: Stopped by SIGQUIT; standard", "SIGQUIT")}));
}

TEST_F(Keys, ThatGetIgnoresDropOutputAllTheSame) {
    RunningProgram running =
        startAtTerminal(getterOf(manyEvents).after("trap '' INT"));
    terminal.waitForOutput();
    terminal.press('\x03');
    terminal.takeUntilEndOf(running);
    const Outcome outcome = running.waitForEnd();
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
