#ifndef OVMEMCPPBINDING_UTIL_PARSETIME_H
#define OVMEMCPPBINDING_UTIL_PARSETIME_H

#include <chrono>

namespace Orvane::Net::OvModelEventManager::Util {

// The processor time that one parse may take, of the thread that parses.
//
// There is no limit but the one that an XmlPlatformGuard has set, for all
// parses of the process.
//
// Threads: an object belongs to the one that constructed it; the limit is set
// and lifted while there is no object.
class ParseTime {
public:
    static void setLimit(std::chrono::milliseconds limit);
    static void liftLimit();
    static bool isLimited();

    // The parse begins.
    ParseTime();

    // To be called at every step of the parse. It asks for the time at some of
    // the calls only, since that takes a system call.
    //
    // THROWS: DomException beyond the limit.
    void check();

    // As check(), but throws once at most: for what is also called while the
    // exception unwinds the stack.
    void checkOnce();

private:
    bool isOver();
    [[noreturn]] void refuse();

    std::chrono::nanoseconds end;
    unsigned calls = 0;
    bool over = false;
    bool refused = false;
};

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
