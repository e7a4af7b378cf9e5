#ifndef TESTS_EMULATOR_STOPPEDHOLDER_H
#define TESTS_EMULATOR_STOPPEDHOLDER_H

#include <string>

#include <sys/types.h>

namespace OvMemTest {

// A process that locked the gate of a store and is stopped, as by Ctrl-Z or a
// debugger. It ends with the object.
class StoppedHolder {
public:
    explicit StoppedHolder(const std::string& gatePath);
    StoppedHolder(const StoppedHolder&) = delete;
    StoppedHolder& operator=(const StoppedHolder&) = delete;
    ~StoppedHolder();

    // As an error text names it.
    std::string description() const;

    // What one is told who waited at the gate in vain.
    std::string timeoutText() const;

private:
    const std::string path;
    pid_t process;
};

}  // namespace OvMemTest

#endif
