// In place of SystemCalls.cpp where a sanitizer has its functions.

#include "tests/emulator/SystemCalls.h"

namespace OvMemTest {

bool SystemCallWatcher::seesCalls() {
    return false;
}

SystemCallWatcher::SystemCallWatcher() = default;
SystemCallWatcher::~SystemCallWatcher() = default;

void SystemCallWatcher::after(const SystemCall&, long) {}

}  // namespace OvMemTest
