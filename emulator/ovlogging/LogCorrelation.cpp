#include "OvMemCppBinding/platform/LogCorrelation.h"

#include <cstdlib>
#include <mutex>
#include <optional>

#include "emulator/ovlogging/LogCorrelationControl.h"

namespace Orvane::Common::Logging {

namespace {

struct Values {
    std::mutex mutex;
    std::optional<std::string> requestId;
    std::optional<std::string> sessionId;
    std::optional<std::string> userAction;
};

// Never destroyed: requests may be sent until the very end of the process.
Values& values() {
    static auto* const current = new Values;
    return *current;
}

using Member = std::optional<std::string> Values::*;

std::string read(Member member, const char* variable) {
    Values& current = values();
    const std::lock_guard lock(current.mutex);
    if (current.*member) {
        return *(current.*member);
    }
    const char* value = std::getenv(variable);
    return value ? value : "";
}

void write(Member member, const std::string& value) {
    Values& current = values();
    const std::lock_guard lock(current.mutex);
    current.*member = value;
}

}  // namespace

const char* const LogCorrelation::HTTP_HEADER_REQUEST_ID = "Request-ID";
const char* const LogCorrelation::HTTP_HEADER_SESSION_ID = "Session-ID";
const char* const LogCorrelation::HTTP_HEADER_USER_ACTION = "User-Action";

LogCorrelation* LogCorrelation::get() {
    static LogCorrelation single;
    return &single;
}

std::string LogCorrelation::getRequestID() const {
    return read(&Values::requestId, "OVLOG_REQUEST_ID");
}

std::string LogCorrelation::getSessionID() const {
    return read(&Values::sessionId, "OVLOG_SESSION_ID");
}

std::string LogCorrelation::getUserAction() const {
    return read(&Values::userAction, "OVLOG_USER_ACTION");
}

void LogCorrelationControl::setRequestID(const std::string& value) {
    write(&Values::requestId, value);
}

void LogCorrelationControl::setSessionID(const std::string& value) {
    write(&Values::sessionId, value);
}

void LogCorrelationControl::setUserAction(const std::string& value) {
    write(&Values::userAction, value);
}

void LogCorrelationControl::clear() {
    Values& current = values();
    const std::lock_guard lock(current.mutex);
    current.requestId.reset();
    current.sessionId.reset();
    current.userAction.reset();
}

}  // namespace Orvane::Common::Logging
