#ifndef TESTS_EMULATOR_NEXTOPERATIONS_H
#define TESTS_EMULATOR_NEXTOPERATIONS_H

namespace OvMemTest {

// Over the started transport, whatever has happened before: two clients
// register with a server of their own, put, list, get and unregister, and each
// operation does what it should. About `count` operations.
void expectNextOperationsWork(int count = 50);

}  // namespace OvMemTest

#endif
