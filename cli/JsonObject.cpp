#include "cli/JsonObject.h"

#include <algorithm>

#include "cli/Base64.h"
#include "cli/TerminalText.h"
#include "cli/Utf8.h"

namespace ovmem::cli {

namespace {

std::string quoteCode(char32_t code) {
    if (code > 0xFFFF) {  // as two surrogates
        const char32_t offset = code - 0x10000;
        return quoteCode(0xD800 + (offset >> 10)) +
               quoteCode(0xDC00 + (offset & 0x3FF));
    }
    const char digits[] = "0123456789abcdef";
    return {'\\',
            'u',
            digits[code >> 12 & 0xF],
            digits[code >> 8 & 0xF],
            digits[code >> 4 & 0xF],
            digits[code & 0xF]};
}

// REQUIRES: `text` is UTF-8.
std::string quote(std::string_view text) {
    std::string quoted = "\"";
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        switch (character.code) {
            case '"':
                quoted += "\\\"";
                break;
            case '\\':
                quoted += "\\\\";
                break;
            case '\n':
                quoted += "\\n";
                break;
            case '\r':
                quoted += "\\r";
                break;
            case '\t':
                quoted += "\\t";
                break;
            default:
                if (steersTerminal(character.code)) {
                    quoted += quoteCode(character.code);
                } else {
                    quoted += text.substr(0, character.length);
                }
        }
        text.remove_prefix(character.length);
    }
    return quoted + '"';
}

std::string encodedName(std::string_view name) {
    return std::string(name) + "Base64";
}

}  // namespace

void JsonObject::add(std::string_view name, std::string_view text) {
    if (isUtf8(text)) {
        addRaw(name, quote(text));
    } else {
        addRaw(encodedName(name), quote(toBase64(text)));
    }
}

void JsonObject::add(std::string_view name, const char* text) {
    add(name, std::string_view(text));
}

void JsonObject::add(std::string_view name,
                     const std::vector<std::string>& texts) {
    const bool plain =
        std::all_of(texts.begin(), texts.end(),
                    [](const std::string& text) { return isUtf8(text); });
    std::string list;
    for (const std::string& text : texts) {
        list += list.empty() ? "" : ",";
        list += quote(plain ? text : toBase64(text));
    }
    addRaw(plain ? std::string(name) : encodedName(name), '[' + list + ']');
}

void JsonObject::add(std::string_view name, long long number) {
    addRaw(name, std::to_string(number));
}

void JsonObject::add(std::string_view name, bool value) {
    addRaw(name, value ? "true" : "false");
}

void JsonObject::add(std::string_view name,
                     const std::vector<JsonObject>& objects) {
    std::string list;
    for (const JsonObject& object : objects) {
        list += list.empty() ? "{" : ",{";
        list += object.members + '}';
    }
    addRaw(name, '[' + list + ']');
}

std::string JsonObject::line() const {
    return '{' + members + "}\n";
}

void JsonObject::addRaw(std::string_view name, const std::string& value) {
    members += members.empty() ? "" : ",";
    members += quote(name) + ':' + value;
}

}  // namespace ovmem::cli
