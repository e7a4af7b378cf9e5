#include "tests/support/ScriptedLogging.h"

#include <cstdio>
#include <cstdlib>

#include "OvMemCppBinding/platform/LogCorrelation.h"

namespace OvMemTest {

namespace {

thread_local ScriptedLogging* installedLogging = nullptr;

}  // namespace

ScriptedLogging::ScriptedLogging(ScriptedTransport& recorder)
    : transport(recorder), previous(installedLogging) {
    installedLogging = this;
}

ScriptedLogging::~ScriptedLogging() {
    installedLogging = previous;
}

void ScriptedLogging::get() {
    transport.record("LogCorrelation::get()");
    if (onGet) {
        onGet();
    }
}

std::string ScriptedLogging::fetch(const std::string ScriptedLogging::*value,
                                   const char* getter) {
    transport.record(std::string("LogCorrelation::") + getter + "()");
    return this->*value;
}

ScriptedLogging& ScriptedLogging::current() {
    if (installedLogging == nullptr) {
        std::fputs("The logging library was called without values.\n", stderr);
        std::abort();
    }
    return *installedLogging;
}

}  // namespace OvMemTest

namespace Orvane::Common::Logging {

using OvMemTest::ScriptedLogging;

const char* const LogCorrelation::HTTP_HEADER_REQUEST_ID = "Request-ID";
const char* const LogCorrelation::HTTP_HEADER_SESSION_ID = "Session-ID";
const char* const LogCorrelation::HTTP_HEADER_USER_ACTION = "Caller-Action";

LogCorrelation* LogCorrelation::get() {
    static LogCorrelation theOne;
    ScriptedLogging::current().get();
    return &theOne;
}

std::string LogCorrelation::getRequestID() const {
    return ScriptedLogging::current().fetch(&ScriptedLogging::requestId,
                                            "getRequestID");
}

std::string LogCorrelation::getSessionID() const {
    return ScriptedLogging::current().fetch(&ScriptedLogging::sessionId,
                                            "getSessionID");
}

std::string LogCorrelation::getUserAction() const {
    return ScriptedLogging::current().fetch(&ScriptedLogging::userAction,
                                            "getUserAction");
}

}  // namespace Orvane::Common::Logging
