#include "tests/crash/TracedRun.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OvMemTest {

namespace {

constexpr unsigned secondsForARun = 60;

void require(bool done, const char* call) {
    if (!done) {
        throw std::system_error(errno, std::generic_category(), call);
    }
}

enum class Argument { none, file, path, pathAfterFolder, mappedFile };

// Where a call says which file it is for.
Argument fileArgument(std::uint64_t call) {
    switch (call) {
        case SYS_close:
        case SYS_fallocate:
        case SYS_fchmod:
        case SYS_fchown:
        case SYS_fcntl:
        case SYS_fdatasync:
        case SYS_flock:
        case SYS_fstat:
        case SYS_fsync:
        case SYS_ftruncate:
        case SYS_lseek:
        case SYS_pread64:
        case SYS_pwrite64:
        case SYS_read:
        case SYS_write:
            return Argument::file;
        case SYS_mmap:
            return Argument::mappedFile;
#ifdef SYS_open
        case SYS_access:
        case SYS_chmod:
        case SYS_lstat:
        case SYS_mkdir:
        case SYS_open:
        case SYS_readlink:
        case SYS_rename:
        case SYS_stat:
        case SYS_unlink:
            return Argument::path;
#endif
        case SYS_faccessat:
        case SYS_faccessat2:
        case SYS_mkdirat:
        case SYS_newfstatat:
        case SYS_openat:
        case SYS_readlinkat:
        case SYS_unlinkat:
            return Argument::pathAfterFolder;
        default:
            return Argument::none;
    }
}

class Tracee {
public:
    explicit Tracee(const TracedPlan& what) : plan(what), process(start()) {}

    TracedEnd run() {
        TracedEnd end;
        awaitStop(end);
        require(::ptrace(PTRACE_SETOPTIONS, process, 0,
                         PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) == 0,
                "PTRACE_SETOPTIONS");
        plan.atStart();
        bool counted = false;
        for (int signal = 0;;) {
            ::ptrace(PTRACE_SYSCALL, process, 0, signal);
            if (!awaitStop(end)) {
                return end;
            }
            const int stop = WSTOPSIG(end.status);
            const bool atCall = stop == (SIGTRAP | 0x80);
            signal = atCall || stop == SIGTRAP ? 0 : stop;
            if (!atCall) {
                continue;
            }
            const bool before = isBeforeACallThatCounts(counted);
            if (before) {
                ++end.calls;
                counted = true;
            }
            const std::uint64_t position = 2 * end.calls - (before ? 1 : 0);
            if (counted && position == plan.killAt) {
                ::kill(process, SIGKILL);
            }
            counted = before;
        }
    }

private:
    pid_t start() const {
        const pid_t child = ::fork();
        require(child >= 0, "fork");
        if (child != 0) {
            return child;
        }
        const int output =
            ::open(plan.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(output, STDOUT_FILENO);
        ::alarm(secondsForARun);
        std::string url = "OVMEM_STORE=" + plan.storeUrl;
        // A search for leaks would need to trace the program itself.
        std::string sanitizer = "ASAN_OPTIONS=detect_leaks=0";
        std::string name = plan.program;
        std::array<char*, 2> arguments{name.data(), nullptr};
        std::array<char*, 3> environment{url.data(), sanitizer.data(), nullptr};
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::execve(name.c_str(), arguments.data(), environment.data());
        ::_exit(127);
    }

    // False at its end.
    bool awaitStop(TracedEnd& end) const {
        require(::waitpid(process, &end.status, 0) == process, "waitpid");
        return WIFSTOPPED(end.status);
    }

    // `begun`: the stop may be the one behind a call that counts.
    bool isBeforeACallThatCounts(bool begun) const {
        __ptrace_syscall_info info{};
        const long got =
            ::ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof(info), &info);
        if (got <= 0 || info.op != PTRACE_SYSCALL_INFO_ENTRY || begun) {
            return false;
        }
        const auto& arguments = info.entry.args;
        switch (fileArgument(info.entry.nr)) {
            case Argument::none:
                return false;
            case Argument::file:
                return isInFolder(pathOf(arguments[0]));
            case Argument::mappedFile:
                return isInFolder(pathOf(arguments[4]));
            case Argument::path:
                return isInFolder(textAt(arguments[0]));
            case Argument::pathAfterFolder: {
                const std::string path = textAt(arguments[1]);
                return isInFolder(path.empty() ? pathOf(arguments[0]) : path);
            }
        }
        return false;
    }

    bool isInFolder(const std::string& path) const {
        return path.starts_with(plan.folder);
    }

    std::string pathOf(std::uint64_t file) const {
        std::error_code none;
        return std::filesystem::read_symlink(
                   "/proc/" + std::to_string(process) + "/fd/" +
                       std::to_string(static_cast<int>(file)),
                   none)
            .string();
    }

    std::string textAt(std::uint64_t address) const {
        std::string text;
        while (text.size() < 4096) {
            errno = 0;
            const long word =
                ::ptrace(PTRACE_PEEKDATA, process, address + text.size(), 0);
            if (errno != 0) {
                break;
            }
            std::array<char, sizeof(word)> bytes;
            std::memcpy(bytes.data(), &word, sizeof(word));
            const std::size_t length = ::strnlen(bytes.data(), bytes.size());
            text.append(bytes.data(), length);
            if (length < bytes.size()) {
                break;
            }
        }
        return text;
    }

    const TracedPlan& plan;
    const pid_t process;
};

}  // namespace

TracedEnd runTraced(const TracedPlan& plan) {
    return Tracee(plan).run();
}

}  // namespace OvMemTest
