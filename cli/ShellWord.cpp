#include "cli/ShellWord.h"

#include "cli/TerminalText.h"

namespace ovmem::cli {

namespace {

const char PLAIN[] =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
    "/._-+:,@%=";

std::string inQuotes(const std::string& start, std::string_view text,
                     const std::string& apostrophe) {
    std::string word = start;
    for (const char character : text) {
        word += character == '\'' ? apostrophe : std::string(1, character);
    }
    return word + '\'';
}

}  // namespace

std::string shellWord(std::string_view text) {
    if (!text.empty() &&
        text.find_first_not_of(PLAIN) == std::string_view::npos) {
        return std::string(text);
    }
    const std::string safe = escaped(text);
    return safe == text ? inQuotes("'", text, "'\\''")
                        : inQuotes("$'", safe, "\\'");
}

}  // namespace ovmem::cli
