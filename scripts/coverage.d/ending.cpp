// Linked into ovmem for scripts/coverage: what ends the program without the
// handlers of exit would lose the counts, so they are written before.

#include <csignal>

extern "C" {

// NOLINTBEGIN: the names are the linker's (--wrap) and the compiler's.
void __gcov_dump();
void __gcov_reset();
[[noreturn]] void __real__exit(int status);
int __real_raise(int signal);

[[noreturn]] void __wrap__exit(int status) {
    __gcov_dump();
    __real__exit(status);
}

int __wrap_raise(int signal) {
    __gcov_dump();
    __gcov_reset();
    return __real_raise(signal);
}
// NOLINTEND
}
