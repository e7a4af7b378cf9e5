#include "tests/crash/Work.h"

namespace OvMemTest {

namespace {

void carryOut(const Step& step, Queues& queues) {
    std::optional<std::string>& own = queues[step.client];
    switch (step.kind) {
        case Step::Kind::join:
            own = own.value_or("");
            break;
        case Step::Kind::leave:
            own.reset();
            break;
        case Step::Kind::put:
            for (auto& [client, queue] : queues) {
                if (own && queue && client != step.client) {
                    *queue += step.text;
                }
            }
            break;
        case Step::Kind::get:
            if (own) {
                own = "";
            }
            break;
        case Step::Kind::close:
            break;
    }
}

}  // namespace

Work smallWork() {
    using Kind = Step::Kind;
    return {{Kind::join, "watcher", ""},
            {Kind::join, "pump", ""},
            {Kind::put, "pump", "1;"},
            {Kind::join, "valve", ""},
            {Kind::put, "pump", "2;"},
            {Kind::get, "valve", ""},
            {Kind::put, "valve", "3;"},
            {Kind::get, "pump", ""},
            {Kind::put, "pump", std::string(20000, '4') + ";"},
            {Kind::put, "pump", "5;"},
            {Kind::get, "valve", ""},
            {Kind::leave, "valve", ""},
            {Kind::put, "pump", "6;"},
            {Kind::join, "valve", ""},
            {Kind::put, "pump", "7;"},
            {Kind::close, "pump", ""}};
}

std::vector<Queues> statesOf(const Work& work, const Queues& before) {
    Queues queues = before;
    for (const Step& step : work) {
        queues.try_emplace(step.client);
    }
    std::vector<Queues> states{queues};
    for (const Step& step : work) {
        carryOut(step, queues);
        states.push_back(queues);
    }
    return states;
}

}  // namespace OvMemTest
