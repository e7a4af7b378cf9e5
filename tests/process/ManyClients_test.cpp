#include <string>

#include "tests/cli/CliTest.h"

using OvMemTest::Outcome;
using OvMemTest::Program;

namespace {

// The address sanitizer makes every byte of a name a matter of its own.
#ifdef __SANITIZE_ADDRESS__
constexpr int longNames = 30;
#else
constexpr int longNames = 300;
#endif

// The list of clients comes with every reply but the events.
class ManyClients : public OvMemTest::CliTest {
protected:
    // Every command works at a server that has so many clients with names of
    // that length, and nothing of the list is lost.
    void expectAllCommandsWork(int count, std::size_t length) {
        registerClient("pump");
        registerClient("valve");
        ASSERT_EQ(Program(OVMEM_FILL_STORE)
                      .run({folder.file("events.db"), "clients",
                            std::to_string(count), std::to_string(length)}),
                  (Outcome{0, "", ""}));
        std::string added;
        for (int i = 1; i <= count; ++i) {
            std::string name = std::to_string(i);
            name.insert(0, 6 - name.size(), '0');
            name.resize(length, 'x');
            added += name + '\n';
        }
        const auto share = [count](int more) {
            return "; " + std::to_string(count + more) +
                   " other clients share the events.\n";
        };
        expect("pump", {"clients"}, added + "valve\n",
               registered("pump") + "ovmem: Asked" + share(1));
        expect("pump", {"put"}, added + "valve\n",
               "ovmem: Put 4 bytes" + share(1), "open");
        expect("valve", {"get"}, "open", "ovmem: Got 4 bytes.\n");
        expect("motor", {"register"}, added + "pump\nvalve\n",
               "ovmem: Registered 'motor' at 'plant'" + share(2));
        expect("motor", {"unregister"}, added + "pump\nvalve\n",
               "ovmem: Unregistered" + share(2));
        std::string quoted;
        for (std::size_t begin = 0; begin < added.size(); begin += length + 1) {
            quoted += '"' + added.substr(begin, length) + "\",";
        }
        expect("valve", {"get", "--json"},
               "{\"command\":\"get\",\"bytes\":0,\"events\":\"\","
               "\"sharedClients\":[" +
                   quoted + "\"pump\"]}\n",
               "");
    }

    void expect(const std::string& client, const Program::Arguments& arguments,
                const std::string& output, const std::string& errors,
                const std::string& input = "") {
        const Outcome outcome = as(client).input(input).run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << arguments[0];
        EXPECT_EQ(outcome.errors, errors) << arguments[0];
        EXPECT_TRUE(outcome.output == output)
            << arguments[0] << ": " << outcome.output.size() << " bytes, not "
            << output.size();
    }

    static std::string registered(const std::string& client) {
        return "ovmem: '" + client +
               "' is registered at 'plant'; if it was not before, it receives "
               "events from now on.\n";
    }
};

}  // namespace

TEST_F(ManyClients, SixtyThousandLeaveEveryCommandWorking) {
    expectAllCommandsWork(60000, 20);
}

TEST_F(ManyClients, HundredsWithLongNamesLeaveEveryCommandWorking) {
    expectAllCommandsWork(longNames, 60000);
}

// What one more would cost: 60,000 references that are read one by one.
TEST_F(ManyClients, WhoeverIsRefusedForTheirNamesLocksNobodyOut) {
    const std::string costly(60000, '&');
    registerClient("valve");
    for (const char* number : {"1", "2", "3", "4", "5"}) {
        registerClient(number + costly);
    }
    const Outcome refused = as("6" + costly).run({"register"});
    EXPECT_EQ(refused,
              (Outcome{3, "",
                       "ovmem: OvMEMProtocolException (0): The client '6" +
                           std::string(79, '&') +
                           "...' cannot be registered with the server "
                           "'plant': the list of its clients would become too "
                           "long to be read. Unregister clients that are no "
                           "longer used, or use another server.\n"
                           "ovmem: Fix what was asked for; the same request "
                           "will fail again.\n"}));
    std::string names;
    for (const char* number : {"1", "2", "3", "4", "5"}) {
        names += number + costly + '\n';
    }
    expect("valve", {"clients"}, names,
           registered("valve") +
               "ovmem: Asked; 5 other clients share the events.\n");
}
