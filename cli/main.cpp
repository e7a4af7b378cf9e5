#include <algorithm>
#include <clocale>
#include <cstddef>
#include <initializer_list>
#include <string>

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

// For the lists of clients, which must not be what fails: twice what one of
// 60,000 clients takes.
const std::size_t GRANTED_MEMORY = 64 * std::size_t{1024} * 1024;

bool isAny(const std::string& word, std::initializer_list<const char*> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// For an error found before the options are known. The word after an option
// with a value is its value, also where it is refused.
bool asksForJson(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        if (word == "--") {
            return false;
        }
        if (word == "--json") {
            return true;
        }
        if (isAny(word,
                  {"--server", "--client", "--locale", "--grace", "--id"})) {
            ++i;
        }
    }
    return false;
}

ExitCode run(int count, char** arguments, Progress& progress) {
    const Options options = parseOptions(count, arguments);
    if (options.answer) {
        writeOutput(*options.answer);
        return ExitCode::Done;
    }
    const XmlPlatformGuard guard(GRANTED_MEMORY);
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
