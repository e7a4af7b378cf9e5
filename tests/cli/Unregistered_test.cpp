#include "tests/cli/ScriptedCliTest.h"

using OvMemTest::Outcome;

namespace {

// Without a server identity, the connection is not registered.
using Unregistered = OvMemTest::ScriptedCliTest;

const Outcome NOT_REGISTERED = {
    3, "",
    "ovmem: OvMEMProtocolException (-2): Client not Registered with Model "
    "Event Manager\n"
    "ovmem: Name the identity with --server and --client, or with OVMEM_SERVER "
    "and OVMEM_CLIENT.\n"};

// By getSharedClients it is thrown as a pointer.
const Outcome NOT_REGISTERED_BY_POINTER = {
    3, "",
    "ovmem: OvMEMProtocolException* (-2): Client not Registered with Model "
    "Event Manager\n"
    "ovmem: Name the identity with --server and --client, or with OVMEM_SERVER "
    "and OVMEM_CLIENT.\n"};

}  // namespace

TEST_F(Unregistered, ClientsPutAndGetReportItAndSendNothing) {
    EXPECT_EQ(ovmem.run({"clients"}), NOT_REGISTERED_BY_POINTER);
    EXPECT_EQ(ovmem.run({"put"}), NOT_REGISTERED);
    EXPECT_EQ(ovmem.run({"get"}), NOT_REGISTERED);
    EXPECT_EQ(trace(), "");
}

TEST_F(Unregistered, AClientIdentityAloneDoesNotRegister) {
    EXPECT_EQ(ovmem.run({"get", "--client", "pump"}), NOT_REGISTERED);
    EXPECT_EQ(trace(), "");
}

TEST_F(Unregistered, QuietDoesNotSilenceErrors) {
    EXPECT_EQ(ovmem.run({"get", "--quiet"}), NOT_REGISTERED);
}

TEST_F(Unregistered, TheReportIsJsonWhereJsonIsAskedFor) {
    EXPECT_EQ(ovmem.run({"clients", "--json"}),
              (Outcome{3, "",
                       "{\"error\":\"OvMEMProtocolException\",\"type\":-2,"
                       "\"text\":\"Client not Registered with Model Event "
                       "Manager\",\"advice\":\"Name the identity with --server "
                       "and --client, or with OVMEM_SERVER and OVMEM_CLIENT.\","
                       "\"exitCode\":3}\n"}));
}
