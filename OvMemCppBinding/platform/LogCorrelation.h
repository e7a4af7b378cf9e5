#ifndef OVMEMCPPBINDING_PLATFORM_LOGCORRELATION_H
#define OVMEMCPPBINDING_PLATFORM_LOGCORRELATION_H

#include <string>

namespace Orvane {
namespace Common {
namespace Logging {

#pragma GCC visibility push(default)

// The one class that the client uses of the logging library,
// libovlogging.so: the identifiers by which a request can be found again in
// the logs of the application that sent it.
//
// There is one object in the process; the logging library owns it.
//
// Threads: as the logging library allows. The client reads the three values
// once for every request, on the thread that sends it.
class LogCorrelation {
public:
    // The process's single object. Never null, never to be deleted.
    static LogCorrelation* get();

    // The current values of the calling application; each may be empty.
    std::string getRequestID() const;
    std::string getSessionID() const;
    std::string getUserAction() const;

    // The header names under which the three values are sent.
    static const char* const HTTP_HEADER_REQUEST_ID;
    static const char* const HTTP_HEADER_SESSION_ID;
    static const char* const HTTP_HEADER_USER_ACTION;
};

#pragma GCC visibility pop

}  // namespace Logging
}  // namespace Common
}  // namespace Orvane

#endif
