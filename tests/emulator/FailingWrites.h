#ifndef TESTS_EMULATOR_FAILINGWRITES_H
#define TESTS_EMULATOR_FAILINGWRITES_H

#include <string>

namespace OvMemTest {

// During its life, SQLite's writes to one file fail with `error` behind the
// first `room` bytes of that file. One at a time.
class FailingWrites {
public:
    FailingWrites(int error, const std::string& path, long room);
    FailingWrites(const FailingWrites&) = delete;
    FailingWrites& operator=(const FailingWrites&) = delete;
    ~FailingWrites();
};

}  // namespace OvMemTest

#endif
