#ifndef TESTS_CLI_FAULTYCLITEST_H
#define TESTS_CLI_FAULTYCLITEST_H

#include <string>
#include <vector>

#include "tests/cli/ScriptedCliTest.h"

namespace OvMemTest {

// Tests that run ovmem over the scripted platform with system calls that fail
// or hang (see preload/FailingCalls.cpp), and look at what it saved.
class FaultyCliTest : public ScriptedCliTest {
protected:
    FaultyCliTest();

    // A get of 'pump' that fetches these events.
    Program getterOf(const std::string& events) const;

    // The same with faults.
    Program getterOf(const std::string& events,
                     const std::string& faults) const;

    // `program` with faults.
    Program withFaults(Program program, const std::string& faults) const;

    // Waits until a call hangs; lets it go on.
    void waitForHang(RunningProgram& running) const;
    void goOn() const;

    // The files in the first place for saved events, also hidden ones.
    std::vector<std::string> filesIn(const std::string& place) const;
    std::vector<std::string> savedFiles() const;

    // The path of the only one; a test failure if there are none or more, or
    // if it holds other events than these.
    std::string savedFile(const std::string& events) const;

    // What get says when its events are in a file.
    static std::string saved(const std::string& events,
                             const std::string& path);

    const std::string place;       // the first one
    const std::string manyEvents;  // more than a pipe takes
};

}  // namespace OvMemTest

#endif
