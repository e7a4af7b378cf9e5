#ifndef TESTS_SUPPORT_QUOTED_H
#define TESTS_SUPPORT_QUOTED_H

#include <string>
#include <string_view>

namespace OvMemTest {

// `bytes` as one line of printable ASCII between double quotes. A carriage
// return, a line feed, a quote and a backslash are escaped as in C++, any other
// byte as \x and two lower-case digits. Two texts look the same only if they
// are the same.
std::string inQuotes(std::string_view bytes);

// The bytes behind the quoted text that `text` begins with, and takes it off.
//
// THROWS: std::invalid_argument when it does not begin with one.
std::string takeQuoted(std::string_view& text);

}  // namespace OvMemTest

#endif
