#ifndef CLI_SHELLWORD_H
#define CLI_SHELLWORD_H

#include <string>
#include <string_view>

namespace ovmem::cli {

// `text` as a shell reads it as one word, for paths in messages: as it is where
// that is enough, else in quotes. What would steer a terminal is escaped, so
// that no path can pass for a line or a word of its own. The Reporter doubles a
// backslash.
std::string shellWord(std::string_view text);

}  // namespace ovmem::cli

#endif
