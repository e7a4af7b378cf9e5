#include "tests/cli/ScriptedCliTest.h"

using OvMemTest::exchange;
using OvMemTest::Outcome;
using OvMemTest::Program;
using OvMemTest::readFile;

namespace {

// What reaches the transport, call by call and byte for byte.
class Requests : public OvMemTest::ScriptedCliTest {
protected:
    void expectTrace(const Program& program,
                     const Program::Arguments& arguments,
                     const std::string& name) {
        const auto outcome = program.run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_EQ(trace(),
                  readFile(OVMEM_EXPECTED_TEXTS "/trace-" + name + ".txt"));
    }
};

}  // namespace

TEST_F(Requests, StatusSendsNeitherIdentityNorLocale) {
    script(exchange("OvMEM Status check"));
    expectTrace(as("pump").set("OVMEM_LOCALE", "en_GB"), {"status"}, "status");
}

TEST_F(Requests, RegisterSendsTheIdentityAndTheLocale) {
    script(exchange("<r/>"));
    expectTrace(as("Kühlung"), {"register", "--locale", "en_GB"}, "register");
}

TEST_F(Requests, RegisterWarnsOfAnEmptyServerIdentity) {
    script(exchange("<r/>"));
    EXPECT_EQ(ovmem.run({"register", "--server=", "--client=x"}),
              (Outcome{0, "",
                       "ovmem: Registered 'x' at ''; 0 other clients share the "
                       "events.\n"
                       "ovmem: The server identity is empty, which the library "
                       "takes for none: no other command can use this "
                       "registration.\n"}));
}

TEST_F(Requests, ClientsRegistersAndAsks) {
    script(exchange("<r/>") + exchange("<r/>"));
    expectTrace(as("pump"), {"clients"}, "clients");
}

TEST_F(Requests, PutRegistersAndSendsTheEvents) {
    script(exchange("<r/>") + exchange("<r/>"));
    expectTrace(as("pump").set("OVMEM_LOCALE", "en_GB").input("on\noff\n"),
                {"put"}, "put");
}

TEST_F(Requests, PutSendsItsIdAsTheCorrelation) {
    script(exchange("<r/>") + exchange("<r/>"));
    expectTrace(as("pump").set("OVMEM_LOCALE", "en_GB").input("on\noff\n"),
                {"put", "--id", "Kühlung 7"}, "put-id");
}

TEST_F(Requests, GetRegistersFetchesAndAsks) {
    script(exchange("<r/>") + exchange("events") + exchange("<r/>"));
    expectTrace(as("pump"), {"get"}, "get");
}

TEST_F(Requests, UnregisterRegistersAndUnregisters) {
    script(exchange("<r/>") + exchange("<r/>"));
    expectTrace(as("pump"), {"unregister"}, "unregister");
}

TEST_F(Requests, UnregisterWithoutAnIdentitySendsAnEmptyOne) {
    script(exchange("<r/>"));
    expectTrace(ovmem, {"unregister"}, "unregister-empty");
}
