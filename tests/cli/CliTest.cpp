#include "tests/cli/CliTest.h"

namespace OvMemTest {

CliTest::CliTest() : ovmem(OVMEM_PROGRAM) {
    ovmem.set("OVMEM_STORE", "sqlite:" + (folder / "events.db").string());
    ovmem.set("HOME", (folder / "home").string());
    ovmem.set("LC_ALL", "C.UTF-8");
}

Program CliTest::as(const std::string& client) const {
    return Program(ovmem)
        .set("OVMEM_SERVER", "plant")
        .set("OVMEM_CLIENT", client);
}

void CliTest::registerClient(const std::string& client) const {
    const Outcome outcome = as(client).run({"register"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
}

std::string CliTest::eventsOf(const std::string& client) const {
    const Outcome outcome = as(client).run({"get"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    return outcome.output;
}

}  // namespace OvMemTest
