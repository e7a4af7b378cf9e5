#ifndef TESTS_FAULTS_MODELTRANSPORT_H
#define TESTS_FAULTS_MODELTRANSPORT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/ScriptedTransport.h"

namespace OvMemTest {

// One call that OvMem_Receive answers: its status and what it writes.
struct Received {
    std::int32_t status;
    std::string bytes;
};

// The one answer of an exchange that is not the ordinary one.
struct TransportFault {
    std::size_t position;  // of the call, counted from 0
    std::int32_t status;
};

// What OvMem_GetLastError answers.
struct LastError {
    std::int32_t status;
    std::optional<std::string> text;
};

// The transport as the model of the client sees it. Everything is answered in
// the ordinary way, OvMem_Receive from its list and then with -1, but for the
// call that the fault stands at. A length as a fault cuts what would have been
// written, or fills it up with blanks.
//
// It keeps the calls and the answers, so that the library can be given the
// same ones and its calls be compared.
class ModelTransport {
public:
    ModelTransport(std::vector<Received> ordinary,
                   std::optional<TransportFault> deviation, LastError message);

    // One of the functions without a result but their status.
    std::int32_t call(const std::string& function,
                      const std::string& arguments = {});
    Received receive();
    LastError lastError();

    // A line of the logging library's.
    void note(const std::string& line) { calls.push_back(line); }

    const ScriptedTransport::Calls& takenCalls() const { return calls; }

    bool askedForLastError() const;

    // How many calls a fault can stand at.
    std::size_t positions() const { return position; }

    // Gives every answer given here to `scripted`.
    void script(ScriptedTransport& scripted) const;

private:
    struct Answer {
        std::string function;
        std::int32_t status;
        std::optional<std::string> text;
    };

    std::int32_t faulty(std::int32_t status);

    std::vector<Received> receives;
    std::optional<TransportFault> fault;
    LastError lastErrorAnswer;
    std::size_t position = 0;
    std::size_t received = 0;
    std::vector<Answer> answers;
    ScriptedTransport::Calls calls;
};

}  // namespace OvMemTest

#endif
