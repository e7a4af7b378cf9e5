#include "tests/emulator/FailingCalls.h"

#include <cerrno>
#include <utility>

namespace OvMemTest {

FailingCalls::FailingCalls(Plan whatFails, std::string where)
    : plan(whatFails), folder(std::move(where)) {}

SystemCallWatcher::Verdict FailingCalls::before(const SystemCall& call) {
    if (!call.path.starts_with(folder) || !canFail(call.kind)) {
        return {};
    }
    ++calls;
    if (calls != plan.failAt && !(plan.andAllAfter && calls > plan.failAt)) {
        return {};
    }
    ++failures;
    if (plan.error == fallsShort) {
        return {0, (call.count + 1) / 2};
    }
    return {plan.error};
}

bool FailingCalls::canFail(SystemCall::Kind kind) const {
    using Kind = SystemCall::Kind;
    switch (plan.error) {
        case EMFILE:
            return kind == Kind::open;
        case ENOLCK:
            return kind == Kind::lock;
        case fallsShort:
            return kind == Kind::write;
        case ENOSPC:
        case EDQUOT:
            return kind == Kind::write || kind == Kind::cut ||
                   kind == Kind::sync || kind == Kind::make;
        default:
            return kind != Kind::lock;
    }
}

}  // namespace OvMemTest
