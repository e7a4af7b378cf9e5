// Loaded before the C library (LD_PRELOAD), makes chosen calls of a program
// fail, fall short or hang.
//
// OVMEM_TEST_FAULTS holds rules with a semicolon between two:
//
//     CALL TARGET WHICH ACTION ARGUMENT
//
//     write output 2 fail ENOSPC    the second write to standard output fails
//     write saved 1+ short 1000     each write to a path with "saved" in it
//                                   takes no more than 1000 bytes
//     fsync - 1 hang -              the first one of all does not return
//
// A call that hangs adds "x" to the file OVMEM_TEST_REACHED, and "i" each time
// a signal interrupts it; it goes on when the file OVMEM_TEST_GO exists. Of
// several rules that fit, the first counts.
// Calls of "new" count from the moment at which a thread blocks signals.
//
// OVMEM_TEST_LARGEST_NEW is the size from which operator new fails once a reply
// has been received, OVMEM_TEST_LARGEST_EARLY_NEW the one before.

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {

const int MOST_RULES = 8;

struct Rule {
    char call[16];
    char target[64];
    int from;
    bool onwards;
    char action[16];
    char argument[16];
    std::atomic<int> matches;
};

Rule rules[MOST_RULES];
int ruleCount = 0;
std::atomic<bool> received = false;
std::atomic<bool> blocked = false;  // signals

[[noreturn]] void refuse(const char* text) {
    std::fprintf(stderr, "faults: cannot understand '%s'\n", text);
    std::abort();
}

__attribute__((constructor)) void readRules() {
    const char* text = std::getenv("OVMEM_TEST_FAULTS");
    while (text != nullptr && *text != '\0') {
        Rule& rule = rules[ruleCount++];
        char which[16];
        if (std::sscanf(text, " %15s %63s %15s %15s %15[^ ;]", rule.call,
                        rule.target, which, rule.action, rule.argument) != 5) {
            refuse(text);
        }
        rule.from = std::atoi(which);
        rule.onwards = std::strchr(which, '+') != nullptr;
        const char* next = std::strchr(text, ';');
        text = next == nullptr ? nullptr : next + 1;
    }
}

int numberOf(const char* name) {
    const struct {
        const char* name;
        int number;
    } errors[] = {{"EAGAIN", EAGAIN}, {"EDQUOT", EDQUOT}, {"EINTR", EINTR},
                  {"EINVAL", EINVAL}, {"EIO", EIO},       {"EMFILE", EMFILE},
                  {"ENOLCK", ENOLCK}, {"ENOSPC", ENOSPC}, {"NONE", 0}};
    for (const auto& error : errors) {
        if (std::strcmp(error.name, name) == 0) {
            return error.number;
        }
    }
    refuse(name);
}

bool isOutput(int descriptor) {
    struct stat own = {};
    struct stat output = {};
    return fstat(descriptor, &own) == 0 && fstat(STDOUT_FILENO, &output) == 0 &&
           own.st_dev == output.st_dev && own.st_ino == output.st_ino;
}

// Where a call goes to: a path, or a descriptor.
struct Target {
    const char* path;
    int descriptor;

    bool is(const char* wanted) const {
        if (std::strcmp(wanted, "-") == 0) {
            return true;
        }
        if (std::strcmp(wanted, "output") == 0) {
            return path == nullptr && isOutput(descriptor);
        }
        if (path != nullptr) {
            return std::strstr(path, wanted) != nullptr;
        }
        char link[64];
        char name[512] = "";
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
        const ssize_t length = readlink(link, name, sizeof name - 1);
        return length > 0 && std::strstr(name, wanted) != nullptr;
    }
};

void note(const char* letter) {
    const int reached = static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, std::getenv("OVMEM_TEST_REACHED"),
                O_WRONLY | O_APPEND | O_CREAT, 0600));
    syscall(SYS_write, reached, letter, 1);
    syscall(SYS_close, reached);
}

void hang() {
    note("x");
    const timespec interval = {0, 2000000};
    while (access(std::getenv("OVMEM_TEST_GO"), F_OK) != 0) {
        if (nanosleep(&interval, nullptr) != 0) {
            note("i");
        }
    }
}

// What is to happen to a call.
struct Fault {
    int error = 0;  // to fail with
    bool fails = false;
    std::size_t most = SIZE_MAX;  // how many bytes it may take
};

// The first rule that fits; all are counted.
const Rule* ruleFor(const char* call, const Target& target) {
    const Rule* found = nullptr;
    for (int i = 0; i < ruleCount; ++i) {
        Rule& rule = rules[i];
        if (std::strcmp(rule.call, call) != 0 || !target.is(rule.target)) {
            continue;
        }
        const int match = ++rule.matches;
        const bool fits =
            match == rule.from || (rule.onwards && match > rule.from);
        if (fits && found == nullptr) {
            found = &rule;
        }
    }
    return found;
}

Fault faultOf(const char* call, const Target& target) {
    const int former = errno;
    const Rule* rule = ruleFor(call, target);
    errno = former;
    if (rule == nullptr) {
        return {};
    }
    if (std::strcmp(rule->action, "fail") == 0) {
        return {numberOf(rule->argument), true};
    }
    if (std::strcmp(rule->action, "short") == 0) {
        return {0, false, std::strtoul(rule->argument, nullptr, 10)};
    }
    if (std::strcmp(rule->action, "hang") == 0) {
        hang();
        errno = former;
        return {};
    }
    refuse(rule->action);
}

// The error of a call that fails, or its result.
template <class Call>
long unlessFaulty(const char* name, const Target& target, const Call& call) {
    const Fault fault = faultOf(name, target);
    if (fault.fails) {
        errno = fault.error;
        return -1;
    }
    return call(fault.most);
}

std::size_t lesser(std::size_t one, std::size_t other) {
    return one < other ? one : other;
}

}  // namespace

#define INTERPOSED extern "C" __attribute__((visibility("default")))

INTERPOSED ssize_t write(int file, const void* bytes, size_t size) {
    return unlessFaulty("write", {nullptr, file}, [&](std::size_t most) {
        return syscall(SYS_write, file, bytes, lesser(size, most));
    });
}

INTERPOSED ssize_t read(int file, void* bytes, size_t size) {
    return unlessFaulty("read", {nullptr, file}, [&](std::size_t most) {
        return syscall(SYS_read, file, bytes, lesser(size, most));
    });
}

INTERPOSED int fsync(int file) {
    return static_cast<int>(
        unlessFaulty("fsync", {nullptr, file},
                     [&](std::size_t) { return syscall(SYS_fsync, file); }));
}

// A close that fails closes all the same.
INTERPOSED int close(int file) {
    const Fault fault = faultOf("close", {nullptr, file});
    const long result = syscall(SYS_close, file);
    if (fault.fails) {
        errno = fault.error;
        return -1;
    }
    return static_cast<int>(result);
}

INTERPOSED int dup(int file) {
    return static_cast<int>(
        unlessFaulty("dup", {nullptr, file},
                     [&](std::size_t) { return syscall(SYS_dup, file); }));
}

INTERPOSED int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const int mode = (flags & O_CREAT) != 0 ? va_arg(arguments, int) : 0;
    va_end(arguments);
    return static_cast<int>(unlessFaulty("open", {path, -1}, [&](std::size_t) {
        return syscall(SYS_openat, AT_FDCWD, path, flags, mode);
    }));
}

INTERPOSED int renameat2(int fromFolder, const char* from, int toFolder,
                         const char* to, unsigned int flags) noexcept {
    return static_cast<int>(unlessFaulty("rename", {to, -1}, [&](std::size_t) {
        return syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags);
    }));
}

INTERPOSED int link(const char* from, const char* to) noexcept {
    return static_cast<int>(unlessFaulty("link", {to, -1}, [&](std::size_t) {
        return syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0);
    }));
}

INTERPOSED int unlink(const char* path) noexcept {
    return static_cast<int>(
        unlessFaulty("unlink", {path, -1},
                     [&](std::size_t) { return syscall(SYS_unlink, path); }));
}

INTERPOSED int faccessat(int folder, const char* path, int mode,
                         int flags) noexcept {
    return static_cast<int>(
        unlessFaulty("faccessat", {path, -1}, [&](std::size_t) {
            return syscall(SYS_faccessat2, folder, path, mode, flags);
        }));
}

INTERPOSED int flock(int file, int operation) noexcept {
    return static_cast<int>(unlessFaulty(
        "flock", {nullptr, file},
        [&](std::size_t) { return syscall(SYS_flock, file, operation); }));
}

INTERPOSED int tcdrain(int file) {
    return static_cast<int>(unlessFaulty(
        "tcdrain", {nullptr, file},
        [&](std::size_t) { return syscall(SYS_ioctl, file, TCSBRK, 1); }));
}

INTERPOSED int32_t OvMem_Receive(char* buffer) {
    using Receive = int32_t (*)(char*);
    static const auto next =
        reinterpret_cast<Receive>(dlsym(RTLD_NEXT, "OvMem_Receive"));
    received = true;
    faultOf("receive", {"", -1});
    return next(buffer);
}

INTERPOSED int pthread_sigmask(int how, const sigset_t* set,
                               sigset_t* former) noexcept {
    using Mask = int (*)(int, const sigset_t*, sigset_t*);
    static const auto next =
        reinterpret_cast<Mask>(dlsym(RTLD_NEXT, "pthread_sigmask"));
    const int result = next(how, set, former);
    blocked = how == SIG_BLOCK;
    return result;
}

INTERPOSED int pthread_create(pthread_t* thread,
                              const pthread_attr_t* attributes,
                              void* (*start)(void*), void* argument) noexcept {
    using Create =
        int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const auto next =
        reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    const Fault fault = faultOf("thread", {"", -1});
    return fault.fails ? fault.error
                       : next(thread, attributes, start, argument);
}

#ifndef __SANITIZE_ADDRESS__
__attribute__((visibility("default"))) void* operator new(std::size_t size) {
    if (blocked && faultOf("new", {"", -1}).fails) {
        throw std::bad_alloc();
    }
    const char* largest = std::getenv(
        received ? "OVMEM_TEST_LARGEST_NEW" : "OVMEM_TEST_LARGEST_EARLY_NEW");
    if (largest == nullptr || size < std::strtoul(largest, nullptr, 10)) {
        if (void* block = std::malloc(size == 0 ? 1 : size)) {
            return block;
        }
    }
    throw std::bad_alloc();
}
#endif
