#include "tests/crash/Observed.h"

#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/emulator/Environment.h"
#include "tests/emulator/NextOperations.h"
#include "tests/emulator/Wire.h"

namespace OvMemTest {

namespace {

// Long texts by their length and end.
std::string shown(const Queues& queues) {
    std::string text;
    for (const auto& [client, queue] : queues) {
        text += client + ": ";
        if (!queue) {
            text += "not registered";
        } else if (queue->size() < 60) {
            text += "'" + *queue + "'";
        } else {
            text += std::to_string(queue->size()) + " bytes that end in '" +
                    queue->substr(queue->size() - 20) + "'";
        }
        text += "\n";
    }
    return text;
}

void expectDone(const std::string& operation, const std::string& client,
                const std::string& body = "") {
    const Outcome outcome = request(operation, "plant", client, body);
    EXPECT_EQ(outcome.status, -1) << operation << ": " << outcome;
}

// One more event comes behind what is queued, and then everything is got.
void expectToTakeEvents(const Queues& before) {
    expectDone("registerClient", "late");
    expectDone("putEvents", "late", "late;");
    Queues after = before;
    Queues empty = before;
    for (auto& [client, queue] : after) {
        if (queue) {
            *queue += "late;";
            empty[client] = "";
        }
    }
    const Queues now = observe(before);
    EXPECT_TRUE(now == after) << shown(now);
    for (const auto& [client, queue] : before) {
        if (queue) {
            expectDone("getEvents", client);
        }
    }
    EXPECT_TRUE(observe(before) == empty);
}

}  // namespace

Queues observe(const Queues& example) {
    Queues queues;
    for (const auto& [client, ignored] : example) {
        const Outcome got = streamedExchange(
            headerBlock("getEvents", "plant", client), {"probe"});
        EXPECT_TRUE(got.status == -1 || got.status == -3017) << got;
        queues[client];
        if (got.status == -1) {
            queues[client] = got.reply;
        }
    }
    return queues;
}

void expectWholeStore(const std::vector<Queues>& states, std::size_t answered) {
    ASSERT_LT(answered, states.size());
    const Queues now = observe(states.front());
    const std::size_t next = std::min(answered + 1, states.size() - 1);
    EXPECT_TRUE(now == states[answered] || now == states[next])
        << "after " << answered << " answered steps the store holds\n"
        << shown(now) << "in place of\n"
        << shown(states[answered]) << "or\n"
        << shown(states[next]);
    expectNextOperationsWork();
    expectToTakeEvents(now);
}

void expectWholeStore(const std::string& url, const std::vector<Queues>& states,
                      std::size_t answered) {
    Environment environment;
    environment.set("OVMEM_STORE", url);
    const std::int32_t started = OvMem_Init(&std::malloc, &std::free);
    ASSERT_EQ(started, 0) << lastError();
    expectWholeStore(states, answered);
    EXPECT_EQ(OvMem_Term(), 0);
}

}  // namespace OvMemTest
