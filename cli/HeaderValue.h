#ifndef CLI_HEADERVALUE_H
#define CLI_HEADERVALUE_H

#include <string>

namespace ovmem::cli {

// Refuses a value that would not arrive as it was given. The identity, the
// locale and the id of a put travel as header lines of the request, so a value
//   - must not hold a carriage return or a line feed, which end the line;
//   - must not be "null", which is sent as an empty value;
//   - must be UTF-8, whatever the locale: it is sent so, and what is not UTF-8
//     would be replaced, which makes one text of different names.
//
// `option` is named in the refusal: "--server".
//
// THROWS: Failure with ExitCode::Usage.
void checkHeaderValue(const std::string& option, const std::string& value);

}  // namespace ovmem::cli

#endif
