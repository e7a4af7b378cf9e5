#include "tests/emulator/StoppedHolder.h"

#include <csignal>
#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OvMemTest {

StoppedHolder::StoppedHolder(const std::string& gatePath)
    : path(gatePath), process(::fork()) {
    if (process == 0) {
        const int file = ::open(path.c_str(), O_RDWR | O_CREAT, 0600);
        ::flock(file, LOCK_EX);
        ::raise(SIGSTOP);
        ::_exit(0);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(process, &status, WUNTRACED), process);
    EXPECT_TRUE(WIFSTOPPED(status));
}

StoppedHolder::~StoppedHolder() {
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
}

std::string StoppedHolder::description() const {
    std::ifstream file("/proc/" + std::to_string(process) + "/comm");
    std::string name;
    std::getline(file, name);
    return "process " + std::to_string(process) + " (" + name +
           "), which is stopped,";
}

std::string StoppedHolder::timeoutText() const {
    return "The event store is in use: " + description() + " holds its gate '" +
           path + "'. Let that process go on or end it, then repeat the call.";
}

}  // namespace OvMemTest
