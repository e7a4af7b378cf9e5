#ifndef TESTS_EMULATOR_STOREDEVENTS_H
#define TESTS_EMULATOR_STOREDEVENTS_H

#include <string>

namespace OvMemTest {

// Writes `count` events into the file of a store, behind those that are there,
// as if the client "pump" of the first server had put them. Thousands take no
// time.
void storeEvents(const std::string& path, int count,
                 const std::string& body = "tick");

}  // namespace OvMemTest

#endif
