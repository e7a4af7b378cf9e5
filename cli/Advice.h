#ifndef CLI_ADVICE_H
#define CLI_ADVICE_H

#include "cli/ErrorReport.h"
#include "cli/Options.h"

namespace ovmem::cli {

// How far a run has got.
struct Progress {
    Command command = Command::Status;
    bool namesServer = false;  // an identity was given
    bool sendsId = false;      // by which a repeated put is known
    bool registered = false;   // the service has it; the command came next
};

// Puts the advice of a failure in terms of the tool. The library advises a
// program on one call; a run of ovmem is up to three, of which the user asked
// for the last.
void adviseUser(ErrorReport& report, const Progress& progress);

}  // namespace ovmem::cli

#endif
