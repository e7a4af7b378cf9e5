#ifndef TESTS_SUPPORT_CHILDPROCESS_H
#define TESTS_SUPPORT_CHILDPROCESS_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include <sys/types.h>

namespace OvMemTest {

// A forked copy of this process that runs one function and ends: for what
// concerns a whole process, such as the XML platform, the locale or a call
// that does not return.
//
//     ChildProcess child([] { ...; return 0; });
//     EXPECT_TRUE(child.awaitEnd(10s));
//     EXPECT_EQ(child.exitStatus(), 0) << child.output();
//
// The child ends through std::exit with the result of the function, 254 if it
// threw. What it writes to the standard streams is collected here. The
// destructor kills it if it still runs.
class ChildProcess {
public:
    using Milliseconds = std::chrono::milliseconds;

    explicit ChildProcess(const std::function<int()>& function);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t id() const { return process; }

    // Both wait for at most `limit`, and tell whether it came to be.

    bool awaitOutput(const std::string& text, Milliseconds limit);
    bool awaitEnd(Milliseconds limit);

    // Kills it and waits for its end.
    void kill();

    // After its end: the one or the other.
    std::optional<int> exitStatus() const;
    std::optional<int> signal() const;

    // What it wrote so far.
    const std::string& output() const;  // standard output
    const std::string& errors() const;  // standard error stream

private:
    bool read(Milliseconds limit);
    void reap();

    pid_t process;
    int outputPipe;
    int errorPipe;
    std::string outputText;
    std::string errorText;
    std::optional<int> waitStatus;
};

// For a child that is to be killed at this point.
[[noreturn]] void waitToBeKilled();

}  // namespace OvMemTest

#endif
