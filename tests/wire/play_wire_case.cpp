// Plays the wire cases that are named on the command line; fails and says why
// when one does not go as written.

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>

#include "tests/wire/WirePlayer.h"

namespace {

bool play(const char* fileName) {
    std::ifstream file(fileName, std::ios::binary);
    if (!file) {
        std::cerr << fileName << ": cannot be read\n";
        return false;
    }
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto differences =
        OvMemTest::playWireCase(OvMemTest::parseWireCase(text));
    for (const std::string& difference : differences) {
        std::cerr << fileName << ": " << difference << '\n';
    }
    return differences.empty();
}

}  // namespace

int main(int count, char** arguments) {
    bool good = count > 1;
    for (int at = 1; at < count; ++at) {
        try {
            good = play(arguments[at]) && good;
        } catch (const std::exception& problem) {
            std::cerr << arguments[at] << ": " << problem.what() << '\n';
            good = false;
        }
    }
    return good ? 0 : 1;
}
