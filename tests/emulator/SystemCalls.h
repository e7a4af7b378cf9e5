#ifndef TESTS_EMULATOR_SYSTEMCALLS_H
#define TESTS_EMULATOR_SYSTEMCALLS_H

#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/types.h>

namespace OvMemTest {

// A system call about a file that this program, or a library in it, makes.
struct SystemCall {
    enum class Kind { open, lock, read, write, cut, sync, ask, make, remove };

    Kind kind;
    std::string path;             // as the system names the file
    int file = -1;                // -1 if the call takes a path
    int flags = 0;                // of open
    const void* bytes = nullptr;  // of a write
    std::size_t count = 0;        // of bytes
    off_t offset = 0;             // of a write; the new length of a cut
};

// Sees the calls of the thread that made it, during its life; one a thread at a
// time. What it calls itself is not watched.
//
// The functions of the C library that SQLite and the emulator call stand in
// SystemCalls.cpp, with or without a watcher. An fsync there never waits for
// the disk: no test can tell whether one was really reached.
//
// The thread sanitizer needs these functions for itself: then no call is seen,
// and a test that wants one to be skips itself.
class SystemCallWatcher {
public:
    static bool seesCalls();

    // What becomes of a call.
    struct Verdict {
        int error = 0;                // other than 0: it fails so
        std::size_t most = SIZE_MAX;  // so many bytes are written at most
    };

    SystemCallWatcher();
    SystemCallWatcher(const SystemCallWatcher&) = delete;
    SystemCallWatcher& operator=(const SystemCallWatcher&) = delete;

    virtual Verdict before(const SystemCall& call) = 0;
    virtual void after(const SystemCall& call, long result);

protected:
    ~SystemCallWatcher();
};

}  // namespace OvMemTest

#endif
