#ifndef TESTS_FAULTS_REPLYDOCUMENT_H
#define TESTS_FAULTS_REPLYDOCUMENT_H

#include <string>
#include <vector>

namespace OvMemTest {

// The document that answers the operations of the matrix, in two chunks; each
// is filled up with blanks to 1100 bytes, so that a length of about 1000 still
// holds all of it.
std::string firstReplyChunk();
std::string secondReplyChunk();

// What the client makes of this document, whole or damaged by a fault: its
// identifiers.
//
// THROWS: a Thrown in place of the exception; std::logic_error for a document
// that nobody thought of.
std::vector<std::string> identifiersIn(const std::string& reply);

}  // namespace OvMemTest

#endif
