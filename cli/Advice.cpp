#include "cli/Advice.h"

#include <string>

namespace ovmem::cli {

namespace {

const int NOT_REGISTERED = -2;

const char REMOVE_CAUSE[] = "Remove the cause, then try again.";

const char NAME_IDENTITY[] =
    "Name the identity with --server and --client, or with OVMEM_SERVER and "
    "OVMEM_CLIENT.";

// Failures after which the request may have been carried out, or not.
bool leavesDoubt(const ErrorReport& report) {
    return report.exitCode == ExitCode::ConnectionException ||
           report.exitCode == ExitCode::RuntimeException ||
           report.exitCode == ExitCode::UnrecognisedException ||
           report.exitCode == ExitCode::AnyOtherException;
}

// The limits of the XmlPlatformGuard, which a user cannot change.
bool isBeyondLimit(const ErrorReport& report) {
    return report.exitCode == ExitCode::DomException &&
           (report.text.starts_with("XmlPlatformGuard: the XML library may") ||
            report.text.starts_with("XmlPlatformGuard: the tree of"));
}

// The service answered the registration, but with something else.
bool isWrongRegistration(const ErrorReport& report, const Progress& progress) {
    return report.exitCode == ExitCode::DomException && !progress.registered;
}

bool isRefusal(const ErrorReport& report) {
    return report.exitCode == ExitCode::ProtocolException && report.type == 0 &&
           report.text != "Reply chunk exceeds the receive buffer.";
}

// The library's advice, but for a connection that fails for a reason: the
// library asks whether the service can be reached, and the transport's text may
// say that it is something else.
std::string generalAdvice(const ErrorReport& report) {
    return report.exitCode == ExitCode::ConnectionException &&
                   !report.text.empty()
               ? REMOVE_CAUSE
               : report.advice;
}

std::string adviceFor(const ErrorReport& report, const Progress& progress) {
    if (report.type == STATUS_FAILED) {
        return report.cause.empty()
                   ? "Check that the service can be reached; the transport "
                     "names no cause."
                   : REMOVE_CAUSE;
    }
    if (report.type == NOT_REGISTERED) {
        return progress.namesServer
                   ? "The server identity is empty, which the library takes "
                     "for none. Name one with --server or OVMEM_SERVER."
                   : NAME_IDENTITY;
    }
    if (isBeyondLimit(report)) {
        return "Check that it is a Model Event Manager that answers; ovmem "
               "takes no answer as large as this.";
    }
    if (!progress.namesServer) {
        return report.exitCode == ExitCode::PlainException
                   ? NAME_IDENTITY
                   : generalAdvice(report);
    }
    if (isWrongRegistration(report, progress)) {
        return "Check that it is a Model Event Manager that answers. The "
               "client may be registered now; nothing else was asked for.";
    }
    if (!progress.registered) {
        return generalAdvice(report);
    }
    if (report.exitCode == ExitCode::PlainException) {
        return "Unless the text says otherwise, the service may still know "
               "the client. Run 'ovmem unregister' again.";
    }
    if (isRefusal(report)) {
        return "Run it again, which registers first; if it fails again, "
               "change what was asked for.";
    }
    const bool puts = progress.command == Command::Put ||
                      progress.command == Command::RescuePutBack;
    if (puts && leavesDoubt(report)) {
        return std::string(
                   "Unless the text says otherwise, the events may have "
                   "arrived. ") +
               (progress.sendsId
                    ? "If you run the same command again, they arrive twice "
                      "only where the service does not store a repeated put "
                      "once."
                    : "If you put them again, they may arrive twice.");
    }
    return generalAdvice(report);
}

}  // namespace

void adviseUser(ErrorReport& report, const Progress& progress) {
    report.advice = adviceFor(report, progress);
}

}  // namespace ovmem::cli
