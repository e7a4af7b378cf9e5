#include "tests/faults/ModelTransport.h"

#include <functional>
#include <map>
#include <utility>

namespace OvMemTest {

ModelTransport::ModelTransport(std::vector<Received> ordinary,
                               std::optional<TransportFault> deviation,
                               LastError message)
    : receives(std::move(ordinary)),
      fault(deviation),
      lastErrorAnswer(std::move(message)) {}

std::int32_t ModelTransport::call(const std::string& function,
                                  const std::string& arguments) {
    calls.push_back(function + "(" + arguments + ")");
    const std::int32_t status = faulty(function == "OvMem_SendNoAck" ? 1 : 0);
    answers.push_back({function, status, {}});
    return status;
}

Received ModelTransport::receive() {
    calls.emplace_back("OvMem_Receive()");
    Received answer{-1, {}};
    if (received < receives.size()) {
        answer = receives[received++];
    }
    const std::int32_t ordinary = answer.status;
    answer.status = faulty(ordinary);
    if (answer.status != ordinary) {
        const bool fits = answer.status >= 0 && answer.status <= 16384;
        answer.bytes.resize(fits ? static_cast<std::size_t>(answer.status) : 0,
                            ' ');
    }
    answers.push_back({"OvMem_Receive", answer.status, answer.bytes});
    return answer;
}

LastError ModelTransport::lastError() {
    calls.emplace_back("OvMem_GetLastError()");
    answers.push_back(
        {"OvMem_GetLastError", lastErrorAnswer.status, lastErrorAnswer.text});
    return lastErrorAnswer;
}

bool ModelTransport::askedForLastError() const {
    return !answers.empty() && answers.back().function == "OvMem_GetLastError";
}

void ModelTransport::script(ScriptedTransport& scripted) const {
    using Status = ScriptedTransport& (ScriptedTransport::*)(std::int32_t);
    static const std::map<std::string, Status> plain{
        {"OvMem_Init", &ScriptedTransport::init},
        {"OvMem_Term", &ScriptedTransport::term},
        {"OvMem_Send", &ScriptedTransport::send},
        {"OvMem_SendNoAck", &ScriptedTransport::sendNoAck},
        {"OvMem_SendEOF", &ScriptedTransport::sendEof},
        {"OvMem_Complete", &ScriptedTransport::complete}};
    for (const Answer& answer : answers) {
        if (answer.function == "OvMem_Receive") {
            scripted.receive(answer.status, *answer.text);
        } else if (answer.function == "OvMem_GetLastError") {
            scripted.lastError(answer.status, answer.text);
        } else {
            std::invoke(plain.at(answer.function), scripted, answer.status);
        }
    }
}

std::int32_t ModelTransport::faulty(std::int32_t status) {
    const bool here = fault && fault->position == position;
    ++position;
    return here ? fault->status : status;
}

}  // namespace OvMemTest
