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

// ASCII that stands for itself. For speed only: most texts are nothing else.
bool isOrdinary(char byte) {
    return byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\';
}

std::string_view ordinaryPrefix(std::string_view text) {
    const auto* const end =
        std::find_if_not(text.begin(), text.end(), isOrdinary);
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

// So much of a borrowed text is encoded at once: a multiple of three, since
// base64 encodes three bytes together.
const std::size_t PIECE = 3 * std::size_t{16384};

// REQUIRES: `text` is UTF-8.
void appendQuoted(std::string_view text, std::string& quoted) {
    while (!text.empty()) {
        const std::string_view ordinary = ordinaryPrefix(text);
        if (!ordinary.empty()) {
            quoted += ordinary;
            text.remove_prefix(ordinary.size());
            continue;
        }
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
}

std::string quote(std::string_view text) {
    std::string quoted = "\"";
    appendQuoted(text, quoted);
    return quoted + '"';
}

bool isInsideCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

// The front of `text`; of UTF-8 whole characters.
std::string_view firstPiece(std::string_view text, bool utf8) {
    std::size_t size = std::min(PIECE, text.size());
    while (utf8 && size < text.size() && isInsideCharacter(text[size])) {
        --size;
    }
    return text.substr(0, size);
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

void JsonObject::addBorrowed(std::string_view name, std::string_view text) {
    borrowedIsUtf8 = isUtf8(text);
    borrowed = text;
    addRaw(borrowedIsUtf8 ? std::string(name) : encodedName(name), "\"\"");
    borrowedAt = members.size() - 1;
}

std::string JsonObject::line() const {
    std::string line;
    write([&line](std::string_view piece) {
        line += piece;
        return true;
    });
    return line;
}

void JsonObject::write(const TextSink& sink) const {
    bool wanted = sink('{' + members.substr(0, borrowedAt));
    std::string encoded;
    for (std::string_view rest = borrowed; wanted && !rest.empty();) {
        const std::string_view piece = firstPiece(rest, borrowedIsUtf8);
        if (borrowedIsUtf8) {
            encoded.clear();
            appendQuoted(piece, encoded);
        } else {
            encoded = toBase64(piece);
        }
        wanted = sink(encoded);
        rest.remove_prefix(piece.size());
    }
    if (wanted) {
        sink(members.substr(borrowedAt) + "}\n");
    }
}

void JsonObject::addRaw(std::string_view name, const std::string& value) {
    members += members.empty() ? "" : ",";
    members += quote(name) + ':' + value;
}

}  // namespace ovmem::cli
