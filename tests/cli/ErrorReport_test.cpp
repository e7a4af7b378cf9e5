#include "cli/ErrorReport.h"

#include <stdexcept>

#include <OvMemCppBinding/client/Exceptions.h>
#include <OvMemCppBinding/util/DomException.h>
#include <gtest/gtest.h>

#include "cli/Failure.h"

using namespace Orvane::Net::OvModelEventManager::Client;
using namespace ovmem::cli;
using Orvane::Net::OvModelEventManager::Util::DomException;

namespace {

template <class Thrown>
ErrorReport reportOf(const Thrown& thrown) {
    try {
        throw thrown;
    } catch (...) {
        return reportCurrentException();
    }
}

void expectReport(const ErrorReport& report, ExitCode exitCode,
                  const std::string& className, std::optional<int> type,
                  const std::string& text, const std::string& statement,
                  const std::string& advice) {
    EXPECT_EQ(report.exitCode, exitCode);
    EXPECT_EQ(report.className, className);
    EXPECT_EQ(report.type, type);
    EXPECT_EQ(report.text, text);
    EXPECT_EQ(report.statement, statement);
    EXPECT_EQ(report.advice, advice);
    EXPECT_EQ(report.cause, "");
}

const char REGISTER_FIRST[] =
    "Call registerClient with a server identity that is not empty first.";

}  // namespace

TEST(ErrorReport, AClientExceptionIsReportedWithItsClassCodeAndText) {
    expectReport(reportOf(OvMEMConnectionException("a\nb")),
                 ExitCode::ConnectionException, "OvMEMConnectionException", 0,
                 "a\nb", "OvMEMConnectionException (0): a\nb",
                 "Check that the service can be reached, then try again.");
    expectReport(reportOf(OvMEMProtocolException("p")),
                 ExitCode::ProtocolException, "OvMEMProtocolException", 0, "p",
                 "OvMEMProtocolException (0): p",
                 "Fix what was asked for; the same request will fail again.");
    expectReport(reportOf(OvMEMRuntimeException()), ExitCode::RuntimeException,
                 "OvMEMRuntimeException", 0, "", "OvMEMRuntimeException (0): ",
                 "Try again; if it persists, the platform needs attention.");
    expectReport(reportOf(OvMEMUnrecognisedException("u")),
                 ExitCode::UnrecognisedException, "OvMEMUnrecognisedException",
                 0, "u", "OvMEMUnrecognisedException (0): u",
                 "Report the text; it is the transport's own.");
    expectReport(reportOf(Exception("e")), ExitCode::PlainException,
                 "Exception", 0, "e", "Exception (0): e",
                 "The connection has forgotten its identity; the service may "
                 "still know it.");
}

TEST(ErrorReport, AClassThatTheLibraryKeepsToItselfIsAnyOther) {
    expectReport(reportOf(OvMEMException(7, "o")), ExitCode::AnyOtherException,
                 "OvMEMException", 7, "o", "OvMEMException (7): o",
                 "Look at the program that threw it.");
}

TEST(ErrorReport, TheTypeCodeDecidesOnTheAdvice) {
    expectReport(reportOf(OvMEMProtocolException(-2, "n")),
                 ExitCode::ProtocolException, "OvMEMProtocolException", -2, "n",
                 "OvMEMProtocolException (-2): n", REGISTER_FIRST);
    expectReport(reportOf(OvMEMConnectionException(-1, "s")),
                 ExitCode::ConnectionException, "OvMEMConnectionException", -1,
                 "s", "OvMEMConnectionException (-1): s",
                 "Check that the service can be reached; another operation "
                 "tells the cause.");
}

// The leak sanitizer sees to the deletion.
TEST(ErrorReport, AnExceptionThrownAsAPointerIsReportedAndDeleted) {
    const std::string text(100, 'n');
    expectReport(reportOf(new OvMEMProtocolException(-2, text)),
                 ExitCode::ProtocolException, "OvMEMProtocolException", -2,
                 text, "OvMEMProtocolException* (-2): " + text, REGISTER_FIRST);
}

TEST(ErrorReport, TheXmlLayersExceptionHasNoTypeCode) {
    expectReport(reportOf(DomException("Fatal Error\n")),
                 ExitCode::DomException, "DomException", std::nullopt,
                 "Fatal Error\n", "DomException: Fatal Error",
                 "Check that it is a Model Event Manager that answers; the "
                 "request itself was carried out.");
}

TEST(ErrorReport, AFailureOfTheToolKeepsItsTexts) {
    expectReport(reportOf(Failure{ExitCode::Usage, "t", "a"}), ExitCode::Usage,
                 "usage", std::nullopt, "t", "usage: t", "a");
    expectReport(reportOf(Failure{ExitCode::InputOutput, "t", ""}),
                 ExitCode::InputOutput, "input/output", std::nullopt, "t",
                 "input/output: t", "");
}

TEST(ErrorReport, AnythingElseIsReportedToo) {
    expectReport(reportOf(std::runtime_error("r: s")),
                 ExitCode::AnyOtherException, "std::exception", std::nullopt,
                 "r: s", "std::exception: r: s",
                 "Look at the program that threw it.");
    expectReport(reportOf(42), ExitCode::AnyOtherException, "unknown",
                 std::nullopt,
                 "an exception of a class that the library does not know",
                 "unknown: an exception of a class that the library does not "
                 "know",
                 "Look at the program that threw it.");
}
