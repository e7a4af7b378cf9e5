#ifndef TESTS_SUPPORT_SYSTEMCHECK_H
#define TESTS_SUPPORT_SYSTEMCHECK_H

namespace OvMemTest {

// Whether the XML parser platform of the process is initialised.
bool xmlPlatformRuns();

}  // namespace OvMemTest

#endif
