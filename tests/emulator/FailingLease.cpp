#include "tests/emulator/FailingLease.h"

#include <string>

namespace OvMemTest {

SystemCallWatcher::Verdict FailingLease::before(const SystemCall& call) {
    const bool fails =
        call.kind == kind && call.path.find("-lease-") != std::string::npos;
    return {fails ? reason : 0};
}

}  // namespace OvMemTest
