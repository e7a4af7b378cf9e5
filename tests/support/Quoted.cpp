#include "tests/support/Quoted.h"

#include <stdexcept>

namespace OvMemTest {

namespace {

constexpr std::string_view digits = "0123456789abcdef";

unsigned digitValue(char digit) {
    const auto value = digits.find(digit);
    if (value == std::string_view::npos) {
        throw std::invalid_argument("\\x needs two digits of 0-9a-f");
    }
    return static_cast<unsigned>(value);
}

char takeCharacter(std::string_view& text) {
    if (text.empty()) {
        throw std::invalid_argument("closing quote is missing");
    }
    const char character = text.front();
    text.remove_prefix(1);
    return character;
}

char takeEscaped(std::string_view& text) {
    switch (const char kind = takeCharacter(text)) {
        case 'r':
            return '\r';
        case 'n':
            return '\n';
        case '"':
        case '\\':
            return kind;
        case 'x': {
            const unsigned high = digitValue(takeCharacter(text));
            const unsigned low = digitValue(takeCharacter(text));
            return static_cast<char>(high * 16 + low);
        }
        default:
            throw std::invalid_argument(std::string("unknown escape \\") +
                                        kind);
    }
}

}  // namespace

std::string inQuotes(std::string_view bytes) {
    std::string result = "\"";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '"' || byte == '\\') {
            result += '\\';
            result += byte;
        } else if (byte == '\r') {
            result += "\\r";
        } else if (byte == '\n') {
            result += "\\n";
        } else if (value >= 0x20 && value < 0x7f) {
            result += byte;
        } else {
            result += "\\x";
            result += digits[value / 16];
            result += digits[value % 16];
        }
    }
    result += '"';
    return result;
}

std::string takeQuoted(std::string_view& text) {
    if (text.empty() || text.front() != '"') {
        throw std::invalid_argument("a quoted text is missing");
    }
    text.remove_prefix(1);
    std::string bytes;
    for (char next = takeCharacter(text); next != '"';
         next = takeCharacter(text)) {
        bytes += next == '\\' ? takeEscaped(text) : next;
    }
    return bytes;
}

}  // namespace OvMemTest
