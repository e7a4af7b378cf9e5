#include "tests/cli/Program.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

namespace OvMemTest {

namespace {

void check(int error, const char* what) {
    if (error != 0) {
        throw std::runtime_error(std::string(what) + ": " +
                                 std::strerror(error));
    }
}

// What happens to the descriptors of the new process.
class FileActions {
public:
    FileActions() { check(posix_spawn_file_actions_init(&actions), "init"); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void open(int descriptor, const std::string& file, int flags) {
        check(posix_spawn_file_actions_addopen(&actions, descriptor,
                                               file.c_str(), flags, 0600),
              "open");
    }

    void close(int descriptor) {
        check(posix_spawn_file_actions_addclose(&actions, descriptor), "close");
    }

    void duplicate(int from, int to) {
        check(posix_spawn_file_actions_adddup2(&actions, from, to), "dup2");
    }

    const posix_spawn_file_actions_t* get() const { return &actions; }

private:
    posix_spawn_file_actions_t actions;
};

// What the new process does at a signal: what is usual, and nothing is blocked.
// A test that runs in the background of a shell has SIGINT and SIGQUIT ignored,
// which its children would inherit.
class UsualSignals {
public:
    explicit UsualSignals(bool ownSession) {
        check(posix_spawnattr_init(&attributes), "signals");
        sigset_t usual;
        sigset_t blocked;
        sigemptyset(&blocked);
        sigemptyset(&usual);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE}) {
            sigaddset(&usual, signal);
        }
        posix_spawnattr_setsigdefault(&attributes, &usual);
        posix_spawnattr_setsigmask(&attributes, &blocked);
        posix_spawnattr_setflags(
            &attributes,
            static_cast<short>(POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK |
                               (ownSession ? POSIX_SPAWN_SETSID : 0)));
    }
    ~UsualSignals() { posix_spawnattr_destroy(&attributes); }
    UsualSignals(const UsualSignals&) = delete;
    UsualSignals& operator=(const UsualSignals&) = delete;

    const posix_spawnattr_t* get() const { return &attributes; }

private:
    posix_spawnattr_t attributes{};
};

class Pipe {
public:
    Pipe() { check(pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno, "pipe"); }
    ~Pipe() {
        closeReader();
        close(ends[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int writer() const { return ends[1]; }

    // No longer owned.
    int takeReader() { return std::exchange(ends[0], -1); }

    void closeReader() {
        if (ends[0] >= 0) {
            close(takeReader());
        }
    }

    void doNotBlock() const {
        check(fcntl(ends[1], F_SETFL, O_NONBLOCK) == 0 ? 0 : errno, "fcntl");
    }

private:
    int ends[2];
};

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

// What a failed test shows of it.
std::string shortened(const std::string& text) {
    const std::size_t most = 4000;
    return text.size() <= most ? text
                               : text.substr(0, most) + "... (" +
                                     std::to_string(text.size()) + " bytes)\n";
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << "exit code " << outcome.exitCode << "\n--- output\n"
                  << shortened(outcome.output) << "--- errors\n"
                  << shortened(outcome.errors) << "---\n";
}

Program::Program(std::string programPath) : path(std::move(programPath)) {
    for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = std::getenv(name)) {
            set(name, value);
        }
    }
}

Program& Program::set(const std::string& variable, const std::string& value) {
    environment[variable] = value;
    return *this;
}

Program& Program::unset(const std::string& variable) {
    environment.erase(variable);
    return *this;
}

Program& Program::input(std::string_view bytes) {
    inputBytes = bytes;
    return *this;
}

Program& Program::closeInput() {
    inputState = Stream::Closed;
    return *this;
}

Program& Program::outputTo(const std::string& file) {
    outputFile = file;
    return *this;
}

Program& Program::atTerminal(const std::string& file) {
    // The first process of a session becomes the one in the foreground of the
    // terminal that it opens first, for reading as well.
    ownSession = true;
    return outputTo(file);
}

Program& Program::closeOutput() {
    outputState = Stream::Closed;
    return *this;
}

Program& Program::breakOutput() {
    outputState = Stream::Broken;
    return *this;
}

Program& Program::pipeOutput() {
    outputState = Stream::Pipe;
    return *this;
}

Program& Program::pipeOutputWithoutBlocking() {
    outputState = Stream::NonBlockingPipe;
    return *this;
}

Program& Program::errorsToOutput() {
    errorsFollowOutput = true;
    return *this;
}

Program& Program::after(const std::string& commands) {
    preparation = commands;
    return *this;
}

Outcome Program::run(const Arguments& arguments) const {
    return start(arguments).waitForEnd();
}

RunningProgram Program::start(const Arguments& arguments) const {
    auto folder = std::make_unique<TemporaryFolder>();
    const std::string output = folder->write("output", "");
    const std::string errors = folder->write("errors", "");
    FileActions actions;
    if (inputState == Stream::Closed) {
        actions.close(STDIN_FILENO);
    } else {
        actions.open(STDIN_FILENO, folder->write("input", inputBytes),
                     O_RDONLY);
    }
    Pipe pipe;
    int reader = -1;
    if (outputState == Stream::Normal) {
        actions.open(STDOUT_FILENO, outputFile.empty() ? output : outputFile,
                     (ownSession ? O_RDWR : O_WRONLY) | O_CREAT | O_TRUNC);
    } else if (outputState == Stream::Closed) {
        actions.close(STDOUT_FILENO);
    } else {
        actions.duplicate(pipe.writer(), STDOUT_FILENO);
        if (outputState == Stream::Broken) {
            pipe.closeReader();
        } else {
            reader = pipe.takeReader();
        }
        if (outputState == Stream::NonBlockingPipe) {
            pipe.doNotBlock();
        }
    }
    if (errorsFollowOutput) {
        actions.duplicate(STDOUT_FILENO, STDERR_FILENO);
    } else {
        actions.open(STDERR_FILENO, errors, O_WRONLY);
    }

    std::vector<std::string> argumentTexts = arguments;
    argumentTexts.insert(argumentTexts.begin(), path);
    const std::string run = preparation.empty() ? path : "/bin/sh";
    if (!preparation.empty()) {
        const std::string script = preparation + R"(; exec "$0" "$@")";
        argumentTexts.insert(argumentTexts.begin(), {run, "-c", script});
    }
    std::vector<std::string> variables;
    for (const auto& [name, value] : environment) {
        variables.emplace_back(name).append("=").append(value);
    }
    pid_t process = -1;
    const UsualSignals signals(ownSession);
    check(
        posix_spawn(&process, run.c_str(), actions.get(), signals.get(),
                    pointers(argumentTexts).data(), pointers(variables).data()),
        run.c_str());
    return RunningProgram(process, reader, std::move(folder));
}

}  // namespace OvMemTest
