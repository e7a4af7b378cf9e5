#include "cli/ErrorReport.h"

#include <cctype>
#include <memory>
#include <utility>

#include <OvMemCppBinding/client/CurrentException.h>
#include <OvMemCppBinding/client/Exceptions.h>
#include <OvMemCppBinding/util/DomException.h>

#include "cli/StopSignal.h"
#include "cli/TransportCause.h"

namespace ovmem::cli {

namespace Client = Orvane::Net::OvModelEventManager::Client;
namespace Util = Orvane::Net::OvModelEventManager::Util;

namespace {

std::string sentence(std::string words) {
    words.front() = static_cast<char>(std::toupper(words.front()));
    return words;
}

// What the library says, and an exit code for it.
ErrorReport reportKnown(ExitCode exitCode, const std::string& className,
                        std::optional<int> type, std::string text) {
    const std::string words = Client::describeCurrentException();
    const std::string border = "\nWhat to do: ";
    const std::size_t end = words.rfind(border);
    return {exitCode,
            className,
            type,
            std::move(text),
            words.substr(0, end),
            sentence(words.substr(end + border.size())),
            ""};
}

ErrorReport reportClient(ExitCode exitCode, const std::string& className,
                         const Client::Exception& exception) {
    ErrorReport report = reportKnown(exitCode, className, exception.getType(),
                                     exception.getMessage());
    if (report.type == STATUS_FAILED) {
        report.cause = lastTransportError();
    }
    return report;
}

ErrorReport reportOther() {
    ErrorReport report =
        reportKnown(ExitCode::AnyOtherException, "", std::nullopt, "");
    const std::size_t colon = report.statement.find(": ");
    report.className = report.statement.substr(0, colon);
    report.text = report.statement.substr(colon + 2);
    return report;
}

std::string classOfFailure(ExitCode exitCode) {
    if (isStopped(exitCode)) {
        return "stopped";
    }
    if (exitCode == ExitCode::NoReceiver) {
        return "no receiver";
    }
    return exitCode == ExitCode::Usage ? "usage" : "input/output";
}

}  // namespace

ErrorReport reportCurrentException() {
    try {
        throw;
    } catch (const Client::OvMEMConnectionException& exception) {
        return reportClient(ExitCode::ConnectionException,
                            "OvMEMConnectionException", exception);
    } catch (const Client::OvMEMProtocolException& exception) {
        return reportClient(ExitCode::ProtocolException,
                            "OvMEMProtocolException", exception);
    } catch (const Client::OvMEMProtocolException* exception) {
        const std::unique_ptr<const Client::OvMEMProtocolException> owner(
            exception);
        return reportClient(ExitCode::ProtocolException,
                            "OvMEMProtocolException", *owner);
    } catch (const Client::OvMEMRuntimeException& exception) {
        return reportClient(ExitCode::RuntimeException, "OvMEMRuntimeException",
                            exception);
    } catch (const Client::OvMEMUnrecognisedException& exception) {
        return reportClient(ExitCode::UnrecognisedException,
                            "OvMEMUnrecognisedException", exception);
    } catch (const Client::OvMEMException& exception) {
        return reportClient(ExitCode::AnyOtherException, "OvMEMException",
                            exception);
    } catch (const Client::Exception& exception) {
        return reportClient(ExitCode::PlainException, "Exception", exception);
    } catch (Util::DomException& exception) {
        return reportKnown(ExitCode::DomException, "DomException", std::nullopt,
                           exception.getMessage());
    } catch (const Failure& failure) {
        return reportFailure(failure);
    } catch (...) {
        return reportOther();
    }
}

ErrorReport reportFailure(const Failure& failure) {
    const std::string className = classOfFailure(failure.exitCode);
    return {failure.exitCode,
            className,
            std::nullopt,
            failure.text,
            className + ": " + failure.text,
            failure.advice,
            ""};
}

}  // namespace ovmem::cli
