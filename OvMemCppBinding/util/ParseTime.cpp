#include "OvMemCppBinding/util/ParseTime.h"

#include <ctime>
#include <string>

#include "OvMemCppBinding/util/DomException.h"

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

// Of the calls of check(), one in so many asks for the time.
constexpr unsigned callsPerLook = 16;

constexpr milliseconds unlimitedTime = milliseconds::max();
milliseconds timeLimit = unlimitedTime;

nanoseconds timeOfThread() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

}  // namespace

void ParseTime::setLimit(milliseconds limit) {
    timeLimit = limit;
}

void ParseTime::liftLimit() {
    timeLimit = unlimitedTime;
}

bool ParseTime::isLimited() {
    return timeLimit != unlimitedTime;
}

ParseTime::ParseTime()
    : end(isLimited() ? timeOfThread() + timeLimit : nanoseconds::max()) {}

void ParseTime::check() {
    if (isOver())
        refuse();
}

void ParseTime::checkOnce() {
    if (!refused && isOver())
        refuse();
}

bool ParseTime::isOver() {
    if (!over && isLimited() && ++calls % callsPerLook == 0)
        over = timeOfThread() > end;
    return over;
}

void ParseTime::refuse() {
    refused = true;
    throw DomException(
        "XmlPlatformGuard: the XML library may take no more than " +
        std::to_string(timeLimit.count()) +
        " ms of processor time for a document");
}

}  // namespace Orvane::Net::OvModelEventManager::Util
