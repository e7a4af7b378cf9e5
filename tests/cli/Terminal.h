#ifndef TESTS_CLI_TERMINAL_H
#define TESTS_CLI_TERMINAL_H

#include <string>

#include "tests/cli/RunningProgram.h"

namespace OvMemTest {

// A terminal for a program under test: a pseudo terminal that passes every
// byte on as it is.
//
//     Terminal terminal;
//     program.outputTo(terminal.file()).run({"clients"});
//     EXPECT_EQ(terminal.take(), "pump\n");
class Terminal {
public:
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // What the program is to open.
    const std::string& file() const { return path; }

    // Everything that was written; at most 4095 bytes have room. To be called
    // once, when no program uses the terminal any more.
    std::string take();

    // From now on Ctrl-C, Ctrl-\\ and Ctrl-Z send their signals, and drop what
    // nobody has read yet.
    void obeyKeys() const;

    // Presses a key, and returns when the terminal has done what it says.
    void press(char key) const;

    // Waits until there is something to read.
    void waitForOutput() const;

    // Everything that is read until the program has ended.
    std::string takeUntilEndOf(const RunningProgram& program) const;

private:
    int master;
    int slave;
    std::string path;
};

}  // namespace OvMemTest

#endif
