#include "tests/emulator/NextOperations.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/emulator/Wire.h"

namespace OvMemTest {

namespace {

const char* const server = "afterwards";

void expect(const std::string& operation, const std::string& client,
            const std::string& body, const std::string& reply) {
    EXPECT_EQ(request(operation, server, client, body),
              (Outcome{-1, reply, "(none)"}))
        << operation;
}

}  // namespace

void expectNextOperationsWork(int count) {
    const std::string nobody = sharedClients({});
    const std::string one = sharedClients({"one"});
    const std::string two = sharedClients({"two"});
    expect("registerClient", "one", "", nobody);
    expect("registerClient", "two", "", one);
    for (int done = 4; done < count; done += 4) {
        const std::string text = "event " + std::to_string(done) + ";";
        expect("putEvents", "one", text, two);
        expect("putEvents", "two", "not for two", one);
        expect("getSharedClients", "one", "", two);
        expect("getEvents", "two", "", text);
    }
    expect("unregisterClient", "one", "", two);
    expect("unregisterClient", "two", "", nobody);
}

}  // namespace OvMemTest
