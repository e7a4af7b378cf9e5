#include "OvMemCppBinding/util/XmlEscape.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

struct Entity {
    char character;
    std::string_view name;  // without the '&' that begins every entity
};

constexpr std::array<Entity, 8> entities{{
    {'&', "amp;"},
    {'<', "lt;"},
    {'>', "gt;"},
    {'%', "#x25;"},
    {'"', "quot;"},
    {'\'', "apos;"},
    {'\n', "#10;"},
    {'\t', "#9;"},
}};

// What a byte is written as. Eight bytes are stored at once, whatever the
// length, since that needs no branch.
struct Escaped {
    char text[8];
};

constexpr std::size_t pieceSize = 4096;

constexpr std::size_t index(char byte) {
    return static_cast<unsigned char>(byte);
}

constexpr auto lengths = [] {
    std::array<std::size_t, 256> table{};
    table.fill(1);
    for (const Entity& entity : entities)
        table[index(entity.character)] = 1 + entity.name.size();
    return table;
}();

constexpr auto texts = [] {
    std::array<Escaped, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte)
        table[byte].text[0] = static_cast<char>(byte);
    for (const Entity& entity : entities) {
        char* text = table[index(entity.character)].text;
        *text++ = '&';
        for (char character : entity.name)
            *text++ = character;
    }
    return table;
}();

}  // namespace

std::string escape(const std::string& text) {
    std::size_t length = 0;
    for (char byte : text)
        length += lengths[index(byte)];
    if (length == text.size())
        return text;

    // Piece by piece: a string of the whole length would be filled with zeros
    // before.
    std::string escaped;
    escaped.reserve(length);
    char piece[pieceSize];
    char* target = piece;
    for (char byte : text) {
        std::memcpy(target, texts[index(byte)].text, sizeof(Escaped));
        target += lengths[index(byte)];
        if (target > piece + pieceSize - sizeof(Escaped)) {
            escaped.append(piece, target);
            target = piece;
        }
    }
    escaped.append(piece, target);
    return escaped;
}

std::string unescape(const std::string& text) {
    std::string plain;
    plain.reserve(text.size());
    std::string_view rest = text;
    for (;;) {
        const std::size_t ampersand = rest.find('&');
        plain.append(rest.substr(0, ampersand));
        if (ampersand == std::string_view::npos)
            return plain;
        rest.remove_prefix(ampersand + 1);
        char produced = '&';
        for (const Entity& entity : entities) {
            if (rest.starts_with(entity.name)) {
                produced = entity.character;
                rest.remove_prefix(entity.name.size());
                break;
            }
        }
        plain.push_back(produced);
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Util
