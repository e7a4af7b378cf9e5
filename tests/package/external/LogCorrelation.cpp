// A logging library that says its name under a header of its own.

#include "OvMemCppBinding/platform/LogCorrelation.h"

namespace Orvane {
namespace Common {
namespace Logging {

const char* const LogCorrelation::HTTP_HEADER_REQUEST_ID = "Logged-By";
const char* const LogCorrelation::HTTP_HEADER_SESSION_ID = "Logged-Session";
const char* const LogCorrelation::HTTP_HEADER_USER_ACTION = "Logged-Action";

LogCorrelation* LogCorrelation::get() {
    static LogCorrelation correlation;
    return &correlation;
}

std::string LogCorrelation::getRequestID() const {
    return "external-logging";
}

std::string LogCorrelation::getSessionID() const {
    return std::string();
}

std::string LogCorrelation::getUserAction() const {
    return std::string();
}

}  // namespace Logging
}  // namespace Common
}  // namespace Orvane
