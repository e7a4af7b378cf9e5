#ifndef EMULATOR_OVLOGGING_LOGCORRELATIONCONTROL_H
#define EMULATOR_OVLOGGING_LOGCORRELATIONCONTROL_H

#include <string>

namespace Orvane {
namespace Common {
namespace Logging {

#pragma GCC visibility push(default)

// Sets what LogCorrelation answers in this process. A value that was not set
// comes from the environment, which is read each time: OVLOG_REQUEST_ID,
// OVLOG_SESSION_ID, OVLOG_USER_ACTION; without the variable it is empty.
//
// Threads: any, at the same time; the values are those of the process.
class LogCorrelationControl {
public:
    static void setRequestID(const std::string& value);
    static void setSessionID(const std::string& value);
    static void setUserAction(const std::string& value);

    // Back to the environment with all three.
    static void clear();
};

#pragma GCC visibility pop

}  // namespace Logging
}  // namespace Common
}  // namespace Orvane

#endif
