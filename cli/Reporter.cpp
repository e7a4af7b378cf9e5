#include "cli/Reporter.h"

#include "cli/JsonObject.h"
#include "cli/StandardStreams.h"
#include "cli/StopSignal.h"

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
    object.add("advice", error.advice);
    object.add("exitCode", static_cast<long long>(error.exitCode));
    return object.line();
}

std::string toWords(const ErrorReport& error) {
    std::string words = "ovmem: " + error.statement + "\n";
    if (!error.advice.empty()) {
        words += "ovmem: " + error.advice + "\n";
    }
    return words;
}

}  // namespace

Reporter::Reporter(bool asJson, bool errorsOnly)
    : json(asJson), quiet(errorsOnly) {}

void Reporter::tell(const std::string& sentence) const {
    if (!json && !quiet) {
        writeWords("ovmem: " + sentence + "\n");
    }
}

void Reporter::report(const ErrorReport& error) const {
    // Told to stop, ovmem does not wait for somebody to read this.
    const int patience = isStopped(error.exitCode) ? STOPPED_PATIENCE : -1;
    writeWords(json ? toJson(error) : toWords(error), patience);
}

}  // namespace ovmem::cli
