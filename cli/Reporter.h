#ifndef CLI_REPORTER_H
#define CLI_REPORTER_H

#include <string>

#include "cli/ErrorReport.h"

namespace ovmem::cli {

// Says on standard error what was done and what failed. Names and texts of
// others are escaped there, terminal or not: words are for people, and what
// goes to a file today is shown on a terminal tomorrow.
class Reporter {
public:
    // With `asJson`, errors are JSON objects and nothing else is said.
    Reporter(bool asJson, bool errorsOnly);

    // One sentence about something done.
    void tell(const std::string& sentence) const;

    void report(const ErrorReport& error) const;

private:
    const bool json;
    const bool quiet;
};

}  // namespace ovmem::cli

#endif
