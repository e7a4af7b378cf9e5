#ifndef CLI_ARGUMENTS_H
#define CLI_ARGUMENTS_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace ovmem::cli {

// The words of a command line, told apart. The parser is left with nothing to
// guess: it would take the word after `--client=` for the value, and a file
// named "[a]" for a list.
struct Arguments {
    std::vector<std::string> words;  // commands and options; a value has a
                                     // word of its own, right after its name
    std::vector<std::string> files;  // every other word
    std::string unknown;             // the first that begins like an option and
                                     // is none; empty if there is none
    const CLI::App* command;         // the innermost one named; else the app
};

// Sorts the arguments of main by the commands and options of `app`, which is
// borrowed.
//
//     --opt=VALUE   VALUE, whatever it is; also the empty text
//     --opt VALUE   the same; a VALUE that begins with "--" needs the form
//     above
//     --            every word that follows is a file
//     -             a file
//
// An option with a value is given once. What `app` does not know is left to the
// caller to refuse, who may answer a --help next to it first.
//
// THROWS: Failure with ExitCode::Usage.
Arguments sortArguments(const CLI::App& app, int count,
                        const char* const* arguments);

}  // namespace ovmem::cli

#endif
