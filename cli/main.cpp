#include <algorithm>
#include <clocale>
#include <cstring>

#include <OvMemCppBinding/util/XmlPlatformGuard.h>

#include "cli/Advice.h"
#include "cli/ErrorReport.h"
#include "cli/Options.h"
#include "cli/Reporter.h"
#include "cli/Session.h"
#include "cli/StandardStreams.h"

using namespace ovmem::cli;
using Orvane::Net::OvModelEventManager::Util::XmlPlatformGuard;

namespace {

// For an error found before the options are known.
bool asksForJson(int count, char** arguments) {
    const auto is = [](const char* word) {
        return [word](const char* argument) {
            return std::strcmp(argument, word) == 0;
        };
    };
    char** const end = std::find_if(arguments, arguments + count, is("--"));
    return std::any_of(arguments, end, is("--json"));
}

ExitCode run(int count, char** arguments, Progress& progress) {
    const Options options = parseOptions(count, arguments);
    if (options.answer) {
        writeOutput(*options.answer);
        return ExitCode::Done;
    }
    const XmlPlatformGuard guard;
    const Reporter reporter(options.json, options.quiet);
    return Session(options, reporter, progress).run();
}

}  // namespace

int main(int count, char** arguments) {
    guardStandardStreams();
    std::setlocale(LC_ALL, "");  // before any conversion of text
    Progress progress;
    try {
        return static_cast<int>(run(count, arguments, progress));
    } catch (...) {
        ErrorReport error = reportCurrentException();
        adviseUser(error, progress);
        Reporter(asksForJson(count, arguments), false).report(error);
        return static_cast<int>(error.exitCode);
    }
}
