#ifndef TESTS_UTIL_RECORDINGREADER_H
#define TESTS_UTIL_RECORDINGREADER_H

#include <string>
#include <vector>

namespace OvMemTest {

// What has been asked, in order, of every reader created in this program since
// the last call. Each reader is the XML library's own, which carries it out.
//
// A test program with RecordingReader.cpp has XMLReaderFactory create recording
// readers.
std::vector<std::string> takeReaderCalls();

}  // namespace OvMemTest

#endif
