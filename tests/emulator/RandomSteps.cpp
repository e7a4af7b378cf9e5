#include "tests/emulator/RandomSteps.h"

#include <array>

namespace OvMemTest {

namespace {

using Kind = StoreStep::Kind;

const std::array<std::string, 3> servers{"plant", "", "pier \xC3\xA4"};
const std::array<std::string, 6> clients{"pump",  "valve", "",
                                         "a\x01", "a\x02", "motor"};

}  // namespace

StoreStep RandomSteps::next(std::size_t gets) {
    StoreStep step;
    step.kind = kind(gets);
    step.server = servers.at(below(servers.size()));
    step.client = clients.at(below(clients.size()));
    if (step.kind == Kind::put) {
        step.events = events();
    } else if (step.kind == Kind::complete) {
        step.get = gets - 1 - below(gets < 30 ? gets : 30);
    }
    return step;
}

StoreStep::Kind RandomSteps::kind(std::size_t gets) {
    const std::size_t chance = below(100);
    if (chance < 10) {
        return Kind::registerClient;
    }
    if (chance < 14) {
        return Kind::unregisterClient;
    }
    if (chance < 19) {
        return Kind::sharedClients;
    }
    if (chance < 55) {
        return Kind::put;
    }
    if (chance < 70) {
        return Kind::get;
    }
    return chance < 85 || gets == 0 ? Kind::getComplete : Kind::complete;
}

std::string RandomSteps::events() {
    constexpr std::array<std::size_t, 8> limits{1,   2,    10,   100,
                                                100, 1000, 5000, 20000};
    std::string text(below(limits.at(below(limits.size()))), ' ');
    for (char& byte : text) {
        byte = static_cast<char>(random());
    }
    return text;
}

}  // namespace OvMemTest
