#ifndef TESTS_FAULTS_HEAPLOSS_H
#define TESTS_FAULTS_HEAPLOSS_H

#include <string>
#include <vector>

namespace OvMemTest {

// Who is to blame for a block that nobody has given back, by the stack of the
// request for it: the function of the XML library that this program called, or
// empty if it was this program itself.
//
// Where there is too little memory, the XML library keeps from tidying up, lest
// that fail as well, and so loses what it holds, in two of its functions: while
// it creates a reader, and while a reader parses. All that they took is
// excused, but for the reader, which belongs to the caller once it is created.
// What one of our callbacks took during the parse is not excused.
std::string whoLost(const std::vector<std::string>& stack);

// For a message.
std::string inOneLine(const std::vector<std::string>& stack);

}  // namespace OvMemTest

#endif
