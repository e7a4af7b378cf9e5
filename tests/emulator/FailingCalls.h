#ifndef TESTS_EMULATOR_FAILINGCALLS_H
#define TESTS_EMULATOR_FAILINGCALLS_H

#include <cstdint>

namespace OvMemTest {

// During its life, one system call of SQLite fails, or one and all that follow.
// Those calls count that fail with such an error: with EMFILE open, with ENOLCK
// a lock, with ENOSPC and EDQUOT pwrite and ftruncate, with any other one all
// but locks. One object at a time, one thread.
class FailingCalls {
public:
    struct Plan {
        std::uint64_t failAt = 0;  // counted from 1
        int error = 0;
        bool andAllAfter = false;
    };

    explicit FailingCalls(Plan plan);
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;
    ~FailingCalls();

    // How many calls failed.
    static std::uint64_t failed();
};

}  // namespace OvMemTest

#endif
