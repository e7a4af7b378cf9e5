#include "tests/crash/Received.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include <gtest/gtest.h>

namespace OvMemTest {

std::uint64_t expectArrivals(const std::string& all, const std::string& name,
                             const std::string& output) {
    const auto answered = static_cast<std::uint64_t>(
        std::count(output.begin(), output.end(), ';'));
    std::uint64_t arrived = 0;
    std::istringstream events(all);
    for (std::string event; std::getline(events, event, ';');) {
        event.erase(std::find(event.begin(), event.end(), '+'), event.end());
        if (event.starts_with(name + ".")) {
            EXPECT_EQ(event, name + "." + std::to_string(arrived));
            ++arrived;
        }
    }
    EXPECT_TRUE(arrived == answered || arrived == answered + 1)
        << arrived << " arrived, " << answered << " answered";
    return answered;
}

Received::Received(std::string events) : all(std::move(events)) {}

void Received::addOutput(const std::string& output) {
    for (std::size_t position = 0; position < output.size();) {
        const std::size_t colon = output.find(':', position);
        if (colon == std::string::npos) {
            return;  // killed while it wrote
        }
        const std::size_t size =
            std::stoul(output.substr(position, colon - position));
        const std::string text = output.substr(colon + 1, size);
        if (text.size() < size) {
            return;
        }
        add(text);
        position = colon + 1 + size;
        if (position < output.size()) {
            EXPECT_EQ(output[position], ';');
            ++position;
            at += std::exchange(unsure, 0);
        }
    }
}

void Received::addRest(const std::string& text) {
    if (!text.empty() || unsure == 0) {
        add(text);
        unsure = 0;
        at += text.size();
    } else {
        at += std::exchange(unsure, 0);
    }
    EXPECT_EQ(at, all.size()) << "bytes were got";
}

void Received::add(const std::string& text) {
    if (unsure != 0 && !all.substr(at).starts_with(text)) {
        at += unsure;
    }
    EXPECT_EQ(text, all.substr(at, text.size()));
    unsure = text.size();
}

}  // namespace OvMemTest
