#include "cli/Arguments.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "cli/Failure.h"

namespace ovmem::cli {

namespace {

Failure refusal(const std::string& text, const std::string& advice) {
    return {ExitCode::Usage, text, advice};
}

// A common option stands anywhere, one of a command behind the command.
const CLI::Option* findOption(const CLI::App& app, const CLI::App& command,
                              const std::string& name) {
    const CLI::Option* common = app.get_option_no_throw(name);
    return common ? common : command.get_option_no_throw(name);
}

class Sorter {
public:
    Sorter(const CLI::App& knownApp, int count, const char* const* arguments)
        : app(knownApp), rest(arguments + 1, arguments + count) {
        sorted.command = &app;
    }

    Arguments sort() {
        while (next < rest.size()) {
            const std::string word = rest[next++];
            if (filesOnly) {
                sorted.files.push_back(word);
            } else if (word == "--") {
                filesOnly = true;
            } else if (word.starts_with("-") && word != "-") {
                takeOption(word);
            } else {
                takeBareWord(word);
            }
        }
        return std::move(sorted);
    }

private:
    void takeBareWord(const std::string& word) {
        const auto commands = sorted.command->get_subcommands({});
        const auto named = std::find_if(
            commands.begin(), commands.end(),
            [&](const CLI::App* command) { return command->check_name(word); });
        if (named == commands.end()) {
            sorted.files.push_back(word);
        } else {
            sorted.command = *named;
            sorted.words.push_back(word);
        }
    }

    void takeOption(const std::string& word) {
        const bool isLong = word.starts_with("--");
        const std::size_t equals = isLong ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, equals);
        const CLI::Option* option = findOption(app, *sorted.command, name);
        if (option == nullptr) {
            if (sorted.unknown.empty()) {
                sorted.unknown = word;
            }
        } else if (option->get_items_expected_max() == 0) {
            if (equals != std::string::npos) {
                throw refusal(name + " takes no value.",
                              "Write " + name + " alone.");
            }
            sorted.words.push_back(name);
        } else {
            if (std::count(given.begin(), given.end(), name) > 0) {
                throw refusal(name + " is given twice.", "Give it once.");
            }
            given.push_back(name);
            sorted.words.push_back(name);
            sorted.words.push_back(equals == std::string::npos
                                       ? takeValue(name)
                                       : word.substr(equals + 1));
        }
    }

    std::string takeValue(const std::string& name) {
        if (next == rest.size()) {
            throw refusal(name + " needs a value.",
                          "Give " + name + " a value, or write " + name +
                              "= for the empty one.");
        }
        std::string value = rest[next++];
        if (value.starts_with("--")) {
            throw refusal(name + " is followed by '" + value +
                              "', which begins like an option.",
                          "Give " + name + " a value; if '" + value +
                              "' is the value, write " + name + "=" + value +
                              ".");
        }
        return value;
    }

    const CLI::App& app;
    const std::vector<std::string> rest;
    std::size_t next = 0;
    bool filesOnly = false;
    std::vector<std::string> given;  // options with a value, so far
    Arguments sorted{};
};

}  // namespace

Arguments sortArguments(const CLI::App& app, int count,
                        const char* const* arguments) {
    return Sorter(app, count, arguments).sort();
}

}  // namespace ovmem::cli
