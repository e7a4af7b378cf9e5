#include "tests/cli/platform/ScriptFile.h"

#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/support/Quoted.h"

namespace OvMemTest {

namespace {

std::string unquoted(std::istream& line) {
    std::string rest;
    std::getline(line >> std::ws, rest);
    std::string_view text = rest;
    return takeQuoted(text);
}

int number(std::istream& line) {
    int status = 0;
    if (!(line >> status)) {
        throw std::invalid_argument("a status is missing");
    }
    return status;
}

}  // namespace

void readScript(std::istream& lines, ScriptedTransport& transport) {
    for (std::string word; lines >> word;) {
        if (word == "init") {
            transport.init(number(lines));
        } else if (word == "receive") {
            transport.receive(number(lines));
        } else if (word == "reply") {
            transport.reply(unquoted(lines));
        } else if (word == "last-error") {
            const int status = number(lines);
            transport.lastError(status, unquoted(lines));
        } else {
            throw std::invalid_argument("unknown answer " + word);
        }
    }
}

}  // namespace OvMemTest
