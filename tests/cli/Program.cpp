#include "tests/cli/Program.h"

#include <cstdlib>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
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

// The end of a pipe whose other end is closed.
class BrokenPipe {
public:
    BrokenPipe() : writeEnd(-1) {
        int ends[2];
        check(pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno, "pipe");
        close(ends[0]);
        writeEnd = ends[1];
    }
    ~BrokenPipe() { close(writeEnd); }
    BrokenPipe(const BrokenPipe&) = delete;
    BrokenPipe& operator=(const BrokenPipe&) = delete;

    int get() const { return writeEnd; }

private:
    int writeEnd;
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

int waitForEnd(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0) {
        check(errno == EINTR ? 0 : errno, "waitpid");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << "exit code " << outcome.exitCode << "\n--- output\n"
                  << outcome.output << "--- errors\n"
                  << outcome.errors << "---\n";
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

Program& Program::closeOutput() {
    outputState = Stream::Closed;
    return *this;
}

Program& Program::breakOutput() {
    outputState = Stream::Broken;
    return *this;
}

Outcome Program::run(const Arguments& arguments) const {
    const TemporaryFolder folder;
    const BrokenPipe broken;
    const std::string output = folder.write("output", "");
    const std::string errors = folder.write("errors", "");
    FileActions actions;
    if (inputState == Stream::Closed) {
        actions.close(STDIN_FILENO);
    } else {
        actions.open(STDIN_FILENO, folder.write("input", inputBytes), O_RDONLY);
    }
    if (outputState == Stream::Closed) {
        actions.close(STDOUT_FILENO);
    } else if (outputState == Stream::Broken) {
        actions.duplicate(broken.get(), STDOUT_FILENO);
    } else {
        actions.open(STDOUT_FILENO, outputFile.empty() ? output : outputFile,
                     O_WRONLY | O_CREAT | O_TRUNC);
    }
    actions.open(STDERR_FILENO, errors, O_WRONLY);

    std::vector<std::string> argumentTexts = arguments;
    argumentTexts.insert(argumentTexts.begin(), path);
    std::vector<std::string> variables;
    for (const auto& [name, value] : environment) {
        variables.emplace_back(name).append("=").append(value);
    }
    pid_t process = -1;
    check(
        posix_spawn(&process, path.c_str(), actions.get(), nullptr,
                    pointers(argumentTexts).data(), pointers(variables).data()),
        path.c_str());
    const int exitCode = waitForEnd(process);
    return {exitCode, readFile(output), readFile(errors)};
}

}  // namespace OvMemTest
