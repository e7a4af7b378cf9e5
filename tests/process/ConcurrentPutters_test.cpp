#include <atomic>
#include <barrier>
#include <iomanip>
#include <map>
#include <sstream>
#include <thread>
#include <vector>

#include "tests/cli/CliTest.h"

namespace {

const int PUTTERS = 20;
const int PUTS = 5;
const int LINES = 3;

std::string nameOf(int putter) {
    std::ostringstream name;
    name << "putter-" << std::setw(2) << std::setfill('0') << putter;
    return name.str();
}

std::string lineOf(const std::string& putter, int put, int line) {
    return putter + " put " + std::to_string(put) + " line " +
           std::to_string(line) + "\n";
}

std::string textOf(const std::string& putter, int put) {
    std::string text;
    for (int line = 0; line < LINES; ++line) {
        text += lineOf(putter, put, line);
    }
    return text;
}

class ConcurrentPutters : public OvMemTest::CliTest {
protected:
    // All putters begin at once; each puts one text after the other, every
    // one with a process of its own.
    void putAll(std::barrier<>& start, int putter) const {
        const std::string name = nameOf(putter);
        start.arrive_and_wait();
        for (int put = 0; put < PUTS; ++put) {
            const auto outcome = as(name).input(textOf(name, put)).run({"put"});
            EXPECT_EQ(outcome.exitCode, 0) << outcome;
        }
    }

    // What the getter collects while the putters put.
    std::string collect() const {
        std::barrier<> start(PUTTERS + 1);
        std::vector<std::jthread> putters;
        putters.reserve(PUTTERS);
        for (int putter = 0; putter < PUTTERS; ++putter) {
            putters.emplace_back([&, putter] { putAll(start, putter); });
        }
        std::atomic<bool> done = false;
        std::string collected;
        std::jthread getter([&] {
            while (!done) {
                collected += eventsOf("getter");
            }
        });
        start.arrive_and_wait();
        putters.clear();
        done = true;
        getter.join();
        return collected + eventsOf("getter");
    }
};

// The lines of each putter, in the order of their arrival.
std::map<std::string, std::string> byPutter(const std::string& events) {
    std::map<std::string, std::string> result;
    std::istringstream lines(events);
    for (std::string line; std::getline(lines, line);) {
        result[line.substr(0, line.find(' '))] += line + "\n";
    }
    return result;
}

}  // namespace

TEST_F(ConcurrentPutters, LoseAndDoubleNothingAndKeepTheirOrder) {
    registerClient("getter");
    const std::string events = collect();
    std::map<std::string, std::string> expected;
    for (int putter = 0; putter < PUTTERS; ++putter) {
        const std::string name = nameOf(putter);
        for (int put = 0; put < PUTS; ++put) {
            const std::string text = textOf(name, put);
            EXPECT_NE(events.find(text), std::string::npos)
                << "torn apart: " << text;
            expected[name] += text;
        }
    }
    EXPECT_EQ(byPutter(events), expected);
}
