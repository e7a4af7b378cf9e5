#include "cli/Reporter.h"

#include "cli/JsonObject.h"
#include "cli/StandardStreams.h"
#include "cli/StopSignal.h"
#include "cli/TerminalText.h"

namespace ovmem::cli {

namespace {

const int STOPPED_PATIENCE = 1000;  // milliseconds

std::string toJson(const ErrorReport& error) {
    JsonObject object;
    object.add("error", error.className);
    if (error.type) {
        object.add("type", static_cast<long long>(*error.type));
    }
    object.add("text", error.text);
    if (!error.cause.empty()) {
        object.add("cause", error.cause);
    }
    object.add("advice", error.advice);
    object.add("exitCode", static_cast<long long>(error.exitCode));
    return object.line();
}

std::string message(const std::string& text) {
    return "ovmem: " + escapedLines(text) + "\n";
}

std::string toWords(const ErrorReport& error) {
    std::string words = message(error.statement);
    if (!error.cause.empty()) {
        words += message("The transport says: " + error.cause);
    }
    if (!error.advice.empty()) {
        words += message(error.advice);
    }
    return words;
}

}  // namespace

Reporter::Reporter(bool asJson, bool errorsOnly)
    : json(asJson), quiet(errorsOnly) {}

void Reporter::tell(const std::string& sentence) const {
    if (!json && !quiet) {
        writeWords(message(sentence));
    }
}

void Reporter::report(const ErrorReport& error) const {
    // Told to stop, ovmem does not wait for somebody to read this.
    const int patience = isStopped(error.exitCode) ? STOPPED_PATIENCE : -1;
    writeWords(json ? toJson(error) : toWords(error), patience);
}

}  // namespace ovmem::cli
