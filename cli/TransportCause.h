#ifndef CLI_TRANSPORTCAUSE_H
#define CLI_TRANSPORTCAUSE_H

#include <string>

namespace ovmem::cli {

// What the transport says about its latest call on this thread, if that
// failed: for a failed status check, whose exception keeps the cause to
// itself. Empty if the transport has nothing to say.
std::string lastTransportError();

}  // namespace ovmem::cli

#endif
