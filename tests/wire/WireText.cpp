#include "tests/wire/WireText.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "tests/support/Quoted.h"

namespace OvMemTest {

namespace {

constexpr std::string_view blanks = " \n";
constexpr std::string_view digits = "0123456789";
constexpr std::string_view wordCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";

std::string_view leading(std::string_view text, std::string_view allowed) {
    return text.substr(0, text.find_first_not_of(allowed));
}

}  // namespace

WireText::WireText(std::string_view text) : whole(text), rest(text) {
    skip();
}

bool WireText::atEnd() const {
    return rest.empty();
}

bool WireText::atText() const {
    return rest.starts_with('"');
}

bool WireText::atNumber() const {
    return rest.starts_with('-') || !leading(rest, digits).empty();
}

std::string WireText::word() {
    const std::string result(leading(rest, wordCharacters));
    if (result.empty()) {
        fail("a word is missing");
    }
    rest.remove_prefix(result.size());
    skip();
    return result;
}

int WireText::number() {
    int value = 0;
    const auto [end, error] =
        std::from_chars(rest.data(), rest.data() + rest.size(), value);
    if (error != std::errc()) {
        fail("a number is missing");
    }
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    skip();
    return value;
}

std::string WireText::text() {
    std::string result;
    do {
        std::string piece;
        try {
            piece = takeQuoted(rest);
        } catch (const std::invalid_argument& problem) {
            fail(problem.what());
        }
        skip();
        const int times = accept("*") ? number() : 1;
        for (int count = 0; count < times; ++count) {
            result += piece;
        }
    } while (atText());
    return result;
}

std::vector<std::string> WireText::texts() {
    std::vector<std::string> result;
    if (!accept("none")) {
        do {
            result.push_back(text());
        } while (accept(","));
    }
    return result;
}

std::string WireText::until(char delimiter) {
    const auto length = rest.find(delimiter);
    if (length == std::string_view::npos) {
        fail(std::string("'") + delimiter + "' is missing");
    }
    std::string result(rest.substr(0, length));
    rest.remove_prefix(length + 1);
    skip();
    return result;
}

bool WireText::accept(std::string_view mark) {
    if (!rest.starts_with(mark)) {
        return false;
    }
    rest.remove_prefix(mark.size());
    skip();
    return true;
}

void WireText::expect(std::string_view mark) {
    if (!accept(mark)) {
        fail("'" + std::string(mark) + "' is missing");
    }
}

void WireText::fail(const std::string& what) const {
    const std::string_view read = whole.substr(0, whole.size() - rest.size());
    const auto line = 1 + std::count(read.begin(), read.end(), '\n');
    throw std::invalid_argument("line " + std::to_string(line) + ": " + what);
}

void WireText::skip() {
    rest.remove_prefix(leading(rest, blanks).size());
    while (rest.starts_with('#')) {
        rest.remove_prefix(std::min(rest.find('\n'), rest.size()));
        rest.remove_prefix(leading(rest, blanks).size());
    }
}

}  // namespace OvMemTest
