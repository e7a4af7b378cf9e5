#include "cli/ErrorReport.h"

#include <exception>
#include <memory>

#include <OvMemCppBinding/client/Exceptions.h>
#include <OvMemCppBinding/util/DomException.h>

#include "cli/Failure.h"

namespace ovmem::cli {

namespace Client = Orvane::Net::OvModelEventManager::Client;
namespace Util = Orvane::Net::OvModelEventManager::Util;

namespace {

const int STATUS_CHECK_FAILED = -1;
const int NOT_REGISTERED = -2;

std::string adviseByType(int type, const char* otherwise) {
    switch (type) {
        case STATUS_CHECK_FAILED:
            return "The service did not answer the status check. 'ovmem "
                   "register' reports the transport's own text.";
        case NOT_REGISTERED:
            return "Name the identity with --server and --client, or with "
                   "OVMEM_SERVER and OVMEM_CLIENT.";
        default:
            return otherwise;
    }
}

ErrorReport reportClient(ExitCode exitCode, const char* className,
                         const Client::Exception& exception,
                         const char* advice) {
    return {exitCode, className, exception.getType(), exception.getMessage(),
            adviseByType(exception.getType(), advice)};
}

ErrorReport reportProtocol(const Client::OvMEMProtocolException& exception) {
    return reportClient(ExitCode::ProtocolException, "OvMEMProtocolException",
                        exception,
                        "The service refused the request as it stands; "
                        "sending it again unchanged will fail again.");
}

ErrorReport reportFailure(const Failure& failure) {
    const bool usage = failure.exitCode == ExitCode::Usage;
    return {failure.exitCode, usage ? "usage" : "input/output", std::nullopt,
            failure.text, failure.advice};
}

}  // namespace

ErrorReport reportCurrentException() {
    try {
        throw;
    } catch (const Client::OvMEMConnectionException& exception) {
        return reportClient(
            ExitCode::ConnectionException, "OvMEMConnectionException",
            exception, "Check that the service can be reached; try again.");
    } catch (const Client::OvMEMProtocolException& exception) {
        return reportProtocol(exception);
    } catch (Client::OvMEMProtocolException* exception) {
        const std::unique_ptr<Client::OvMEMProtocolException> owner(exception);
        return reportProtocol(*exception);
    } catch (const Client::OvMEMRuntimeException& exception) {
        return reportClient(
            ExitCode::RuntimeException, "OvMEMRuntimeException", exception,
            "Try again; if it persists, the platform needs attention.");
    } catch (const Client::OvMEMUnrecognisedException& exception) {
        return reportClient(ExitCode::UnrecognisedException,
                            "OvMEMUnrecognisedException", exception,
                            "Report the text; it is the transport's own.");
    } catch (const Client::OvMEMException& exception) {
        return reportClient(ExitCode::AnyOtherException, "OvMEMException",
                            exception, "");
    } catch (const Client::Exception& exception) {
        return reportClient(
            ExitCode::PlainException, "Exception", exception,
            "The service may still know the client; see the text.");
    } catch (Util::DomException& exception) {
        return {ExitCode::DomException, "DomException", std::nullopt,
                exception.getMessage(),
                "The reply is not the expected XML; is it a Model Event "
                "Manager that answers? The request itself was carried out."};
    } catch (const Failure& failure) {
        return reportFailure(failure);
    } catch (const std::exception& exception) {
        return {ExitCode::AnyOtherException, "std::exception", std::nullopt,
                exception.what(), ""};
    } catch (...) {
        return {ExitCode::AnyOtherException, "unknown", std::nullopt,
                "An exception of a class that ovmem does not know.", ""};
    }
}

}  // namespace ovmem::cli
