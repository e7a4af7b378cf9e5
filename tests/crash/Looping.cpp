#include "tests/crash/Looping.h"

#include <iostream>
#include <random>

#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "tests/emulator/Wire.h"

namespace OvMemTest {

namespace {

bool isDone(const Outcome& outcome) {
    if (outcome.status != -1) {
        std::cout << '!' << outcome << std::endl;
    }
    return outcome.status == -1;
}

}  // namespace

int putForEver(const std::string& client, const std::string& name,
               std::uint64_t seed, Registered registered) {
    std::mt19937_64 random(seed);
    const auto run = [&client](const char* operation,
                               const std::string& body = "") {
        return isDone(request(operation, "plant", client, body));
    };
    if (registered == Registered::nowAndThen && !run("registerClient")) {
        return 1;
    }
    for (int number = 0;;) {
        const auto choice = random() % 20;
        bool done = true;
        if (choice == 0 && registered == Registered::nowAndThen) {
            done = run("unregisterClient") && run("registerClient");
        } else if (choice == 1) {
            done = run("getSharedClients");
        } else if (choice == 2) {
            done = run("getEvents");
        } else {
            const std::size_t filling = choice == 3 ? random() % 30000 : 0;
            done = run("putEvents", name + "." + std::to_string(number) +
                                        std::string(filling, '+') + ";");
            ++number;
            std::cout << ';' << std::flush;
        }
        if (!done) {
            return 1;
        }
    }
}

int getForEver(const std::string& client) {
    for (;;) {
        const Outcome got = streamedExchange(
            headerBlock("getEvents", "plant", client), {"probe"});
        if (!isDone(got)) {
            return 1;
        }
        if (!got.reply.empty()) {
            std::cout << got.reply.size() << ':' << got.reply << std::flush;
        }
        if (OvMem_Complete() != 0) {
            std::cout << '!' << lastError() << std::endl;
            return 1;
        }
        if (!got.reply.empty()) {
            std::cout << ';' << std::flush;
        }
    }
}

}  // namespace OvMemTest
