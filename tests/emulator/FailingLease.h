#ifndef TESTS_EMULATOR_FAILINGLEASE_H
#define TESTS_EMULATOR_FAILINGLEASE_H

#include "tests/emulator/SystemCalls.h"

namespace OvMemTest {

// During its life, the file of a lease cannot be opened, for this reason, or
// not be locked.
class FailingLease : private SystemCallWatcher {
public:
    FailingLease(SystemCall::Kind whatFails, int error)
        : kind(whatFails), reason(error) {}

private:
    Verdict before(const SystemCall& call) override;

    const SystemCall::Kind kind;
    const int reason;
};

}  // namespace OvMemTest

#endif
