#ifndef TESTS_EMULATOR_FAILINGCALLS_H
#define TESTS_EMULATOR_FAILINGCALLS_H

#include <cstdint>
#include <string>

#include "tests/emulator/SystemCalls.h"

namespace OvMemTest {

// During its life, one system call on what is in a folder fails, or one and all
// that follow, whoever makes it. Those calls count that fail with such an
// error: with EMFILE open, with ENOLCK a lock, with ENOSPC and EDQUOT what
// needs room, with any other one all but locks.
//
// `fallsShort` in place of an error: a write takes half of its bytes.
class FailingCalls : private SystemCallWatcher {
public:
    static constexpr int fallsShort = -1;

    struct Plan {
        std::uint64_t failAt = 0;  // counted from 1
        int error = 0;
        bool andAllAfter = false;
    };

    FailingCalls(Plan plan, std::string folder);

    // How many calls failed.
    std::uint64_t failed() const { return failures; }

private:
    Verdict before(const SystemCall& call) override;
    bool canFail(SystemCall::Kind kind) const;

    const Plan plan;
    const std::string folder;
    std::uint64_t calls = 0;
    std::uint64_t failures = 0;
};

}  // namespace OvMemTest

#endif
