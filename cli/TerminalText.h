#ifndef CLI_TERMINALTEXT_H
#define CLI_TERMINALTEXT_H

#include <string>
#include <string_view>

// Texts of others on a terminal: the names of clients, and error texts that
// may hold such names. Whoever chose them must not steer the terminal with
// them, nor make them look like other texts.

namespace ovmem::cli {

// True for the characters that a terminal obeys or that change how others
// look: the controls C0, DEL and C1, the controls of the direction of writing,
// and the line and paragraph separators. For those, too, that show nothing
// themselves, so that two names would look alike: the joiners, the spaces
// without a width, the selectors of variants, the tags.
bool steersTerminal(char32_t code);

// `text` with every such character, every byte that is no UTF-8, and the
// backslash escaped: each of its bytes as \xNN, the backslash as two. A shell
// reads that back between $' and '.
std::string escaped(std::string_view text);

// The same for a message, whose line feeds stay. What follows one is indented,
// so that no text can forge a line that begins like another message.
std::string escapedLines(std::string_view message);

}  // namespace ovmem::cli

#endif
