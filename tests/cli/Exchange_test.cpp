#include <filesystem>

#include "tests/cli/CliTest.h"

using OvMemTest::CliTest;
using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

using Exchange = CliTest;

// What a command says that only looks.
std::string registered(const std::string& client) {
    return "ovmem: '" + client +
           "' is registered at 'plant'; if it was not before, it receives "
           "events from now on.\n";
}

std::string allBytesButNul() {
    std::string bytes;
    for (int value = 1; value < 256; ++value) {
        bytes += static_cast<char>(value);
    }
    return bytes;
}

}  // namespace

TEST_F(Exchange, TheStatusOfTheEmulatorIsAlive) {
    EXPECT_EQ(ovmem.run({"status"}),
              (Outcome{0, "", "ovmem: The service is alive.\n"}));
}

TEST_F(Exchange, TheStatusNamesWhatIsWrongWithTheStore) {
    ovmem.set("OVMEM_STORE", "file:events.db");
    EXPECT_EQ(
        ovmem.run({"status"}),
        (Outcome{2, "",
                 "ovmem: OvMEMConnectionException (-1): OvMEM Connection "
                 "failed\n"
                 "ovmem: The transport says: The store URL 'file:events.db' is "
                 "of no known kind. Set OVMEM_STORE to sqlite:PATH or memory:. "
                 "Options follow a '?', with '&' between them: portion=BYTES, "
                 "dedupe=correlation, lease=SECONDS, limit-events=N, "
                 "limit-bytes=N, limit-age=SECONDS; of sqlite:PATH alone: "
                 "synchronous=NORMAL or FULL, access=OWNER or GROUP.\n"
                 "ovmem: Remove the cause, then try again.\n"}));
}

TEST_F(Exchange, StatusLooksAtNoIdentity) {
    EXPECT_EQ(as("null").run({"status"}),
              (Outcome{0, "", "ovmem: The service is alive.\n"}));
}

TEST_F(Exchange, RegisterWritesTheOtherClients) {
    EXPECT_EQ(as("pump").run({"register"}),
              (Outcome{0, "",
                       "ovmem: Registered 'pump' at 'plant'; 0 other clients "
                       "share the events.\n"}));
    EXPECT_EQ(as("valve").run({"register"}),
              (Outcome{0, "pump\n",
                       "ovmem: Registered 'valve' at 'plant'; 1 other client "
                       "shares the events.\n"}));
    EXPECT_EQ(as("boiler").run({"register"}),
              (Outcome{0, "pump\nvalve\n",
                       "ovmem: Registered 'boiler' at 'plant'; 2 other clients "
                       "share the events.\n"}));
}

TEST_F(Exchange, ClientsWritesEachOtherClientOnce) {
    registerClient("pump");
    registerClient("Ventil-Süd");
    EXPECT_EQ(
        as("boiler").run({"clients"}),
        (Outcome{0, "Ventil-Süd\npump\n",
                 registered("boiler") +
                     "ovmem: Asked; 2 other clients share the events.\n"}));
}

TEST_F(Exchange, WhatOnePutsTheOthersGetByteForByte) {
    registerClient("pump");
    registerClient("valve");
    Program putter = as("pump");
    putter.input(allBytesButNul());
    EXPECT_EQ(putter.run({"put"}),
              (Outcome{0, "valve\n",
                       "ovmem: Put 255 bytes; 1 other client shares the "
                       "events.\n"}));
    EXPECT_EQ(as("pump").run({"get"}),
              (Outcome{0, "", registered("pump") + "ovmem: Got 0 bytes.\n"}));
    EXPECT_EQ(as("valve").run({"get"}),
              (Outcome{0, allBytesButNul(), "ovmem: Got 255 bytes.\n"}));
    EXPECT_EQ(as("valve").run({"get"}),
              (Outcome{0, "", registered("valve") + "ovmem: Got 0 bytes.\n"}));
}

TEST_F(Exchange, FilesAreSentAsOneTextInTheirOrder) {
    registerClient("valve");
    Program putter = as("pump");
    putter.input("from input;");
    const std::string second = folder.write("b", "from b;");
    const std::string first = folder.write("a", "from a;");
    EXPECT_EQ(putter.run({"put", first, "-", second, first}).exitCode, 0);
    EXPECT_EQ(eventsOf("valve"), "from a;from input;from b;from a;");
}

TEST_F(Exchange, AFileMayBeNamedLikeACommandOrAnOption) {
    registerClient("valve");
    const std::string name = folder.write("get", "from get");
    EXPECT_EQ(as("pump").run({"put", "--", name}).exitCode, 0);
    EXPECT_EQ(eventsOf("valve"), "from get");
}

TEST_F(Exchange, TheEmptyTextIsPutToo) {
    registerClient("valve");
    EXPECT_EQ(as("pump").run({"put"}),
              (Outcome{0, "valve\n",
                       "ovmem: Put 0 bytes; 1 other client shares the "
                       "events.\n"}));
    EXPECT_EQ(eventsOf("valve"), "");
}

TEST_F(Exchange, RegisteringAgainKeepsWhatWaits) {
    registerClient("valve");
    EXPECT_EQ(as("pump").input("kept").run({"put"}).exitCode, 0);
    registerClient("valve");
    EXPECT_EQ(as("valve").run({"clients"}).exitCode, 0);
    EXPECT_EQ(eventsOf("valve"), "kept");
}

TEST_F(Exchange, TheFirstGetOfANewClientRegistersIt) {
    EXPECT_EQ(eventsOf("valve"), "");
    EXPECT_EQ(as("pump").input("later").run({"put"}).output, "valve\n");
    EXPECT_EQ(eventsOf("valve"), "later");
}

TEST_F(Exchange, ACommandThatOnlyLooksSaysThatItRegisters) {
    EXPECT_EQ(as("valve").run({"get"}),
              (Outcome{0, "", registered("valve") + "ovmem: Got 0 bytes.\n"}));
    EXPECT_EQ(as("boiler").run({"clients"}),
              (Outcome{0, "valve\n",
                       registered("boiler") +
                           "ovmem: Asked; 1 other client shares the "
                           "events.\n"}));
    for (const char* command : {"get", "clients"}) {
        EXPECT_EQ(as("pump").run({command, "--quiet"}).errors, "");
        EXPECT_EQ(as("pump").run({command, "--json"}).errors, "");
    }
}

TEST_F(Exchange, UnregisterEndsTheSharing) {
    registerClient("pump");
    registerClient("valve");
    EXPECT_EQ(as("valve").run({"unregister"}),
              (Outcome{0, "pump\n",
                       "ovmem: Unregistered; 1 other client shares the "
                       "events.\n"}));
    EXPECT_EQ(as("pump").run({"clients"}).output, "");
}

TEST_F(Exchange, ServersShareNothing) {
    registerClient("valve");
    Program elsewhere = as("pump").set("OVMEM_SERVER", "harbour");
    EXPECT_EQ(elsewhere.input("elsewhere").run({"put"}).output, "");
    EXPECT_EQ(eventsOf("valve"), "");
}

TEST_F(Exchange, QuietLeavesTheDataAlone) {
    registerClient("valve");
    EXPECT_EQ(as("pump").input("e").run({"put", "--quiet"}),
              (Outcome{0, "valve\n", ""}));
    EXPECT_EQ(as("valve").run({"--quiet", "get"}), (Outcome{0, "e", ""}));
    EXPECT_EQ(ovmem.run({"--quiet", "status"}), (Outcome{0, "", ""}));
}

TEST_F(Exchange, AnOptionWinsOverTheEnvironment) {
    registerClient("valve");
    EXPECT_EQ(as("valve").run({"clients", "--client", "pump"}).output,
              "valve\n");
    EXPECT_EQ(as("valve").run({"clients", "--server", "harbour"}).output, "");
}

TEST_F(Exchange, AnEmptyVariableCountsAsAbsent) {
    Program program = as("");
    EXPECT_EQ(program.run({"register"}).errors,
              "ovmem: usage: --server needs --client as well.\n"
              "ovmem: Give --client, or set OVMEM_CLIENT.\n");
    program.set("OVMEM_SERVER", "");
    EXPECT_EQ(program.run({"register"}).errors,
              "ovmem: usage: register needs --server.\n"
              "ovmem: Give --server, or set OVMEM_SERVER.\n");
}

TEST_F(Exchange, AnIdentityThatIsEmptyOnPurposeIsRegistered) {
    EXPECT_EQ(ovmem.run({"register", "--server", "", "--client", ""}),
              (Outcome{0, "",
                       "ovmem: Registered '' at ''; 0 other clients share the "
                       "events.\n"
                       "ovmem: The server identity is empty, which the library "
                       "takes for none: no other command can use this "
                       "registration.\n"}));
}

TEST_F(Exchange, EventsThatArePutBackReachEveryOtherClientOnceMore) {
    registerClient("boiler");
    registerClient("pump");
    EXPECT_EQ(as("valve").input("open").run({"put"}).exitCode, 0);
    EXPECT_EQ(eventsOf("boiler"), "open");
    EXPECT_EQ(as("pump").outputTo("/dev/full").run({"get"}).exitCode, 9);
    const std::filesystem::directory_iterator saved(folder /
                                                    "home/.local/state/ovmem");
    ASSERT_NE(saved, std::filesystem::directory_iterator());
    EXPECT_EQ(as("pump").run({"rescue", "put-back", saved->path()}),
              (Outcome{0, "boiler\nvalve\n",
                       "ovmem: Put back 4 bytes and removed 1 file; 2 other "
                       "clients share the events.\n"}));
    EXPECT_EQ(eventsOf("boiler"), "open");
    EXPECT_EQ(eventsOf("valve"), "open");
    EXPECT_EQ(eventsOf("pump"), "");
}
