#ifndef TESTS_EMULATOR_SEALEDROWS_H
#define TESTS_EMULATOR_SEALEDROWS_H

#include <SQLiteCpp/SQLiteCpp.h>

namespace OvMemTest {

// Gives every row of the store the checksums that belong to what it holds, and
// every server the mark of its clients: after a test has changed rows by hand,
// so that nothing but that change is left to be noticed.
void sealRows(SQLite::Database& store);

}  // namespace OvMemTest

#endif
