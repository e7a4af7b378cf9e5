#include "tests/emulator/Wire.h"

#include <array>
#include <ostream>

#include "OvMemCppBinding/platform/OvMemBinding.h"

namespace OvMemTest {

namespace {

constexpr std::int32_t endOfReply = -1;

Outcome failed(std::int32_t status, const std::string& reply = "") {
    return {status, reply, lastError()};
}

Outcome readReply() {
    std::array<char, 16384> buffer{};
    std::string reply;
    for (;;) {
        const std::int32_t status = OvMem_Receive(buffer.data());
        if (status < endOfReply) {
            return failed(status, reply);
        }
        if (status == endOfReply) {
            return {status, reply, lastError()};
        }
        reply.append(buffer.data(), static_cast<std::size_t>(status));
    }
}

}  // namespace

std::string headerBlock(const std::string& operation,
                        const std::string& serverId,
                        const std::string& clientId) {
    return "Client-ID=" + clientId +
           "\r\nLog-Correlation-ID=test\r\nOperation-Name=" + operation +
           "\r\nServer-ID=" + serverId +
           "\r\nService-Name=OvMEMRequest\r\n\r\n";
}

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << outcome.status << " '" << outcome.reply << "' ("
                  << outcome.error << ")";
}

Outcome streamedExchange(const std::string& block,
                         const std::vector<std::string>& bodyParts) {
    constexpr std::int32_t sendBody = 19;
    constexpr std::int32_t replyFollows = 20;
    std::array<char, 16384> buffer{};
    std::int32_t status = OvMem_SendNoAck(block.c_str());
    if (status < 0) {
        return failed(status);
    }
    OvMem_SendEOF();
    status = OvMem_Receive(buffer.data());
    if (status != sendBody) {
        return failed(status);
    }
    for (const std::string& part : bodyParts) {
        status = OvMem_SendNoAck(part.c_str());
        if (status <= 0) {
            return failed(status);
        }
    }
    // Whoever is asked again has nothing more.
    do {
        status = OvMem_SendEOF();
        if (status < 0) {
            return failed(status);
        }
        status = OvMem_Receive(buffer.data());
    } while (status == sendBody);
    return status == replyFollows ? readReply() : failed(status);
}

Outcome wholeExchange(const std::string& request) {
    std::int32_t status = OvMem_Send(request.c_str());
    if (status >= 0) {
        status = OvMem_SendEOF();
    }
    return status < 0 ? failed(status) : readReply();
}

Outcome request(const std::string& operation, const std::string& serverId,
                const std::string& clientId, const std::string& body) {
    const std::vector<std::string> parts =
        body.empty() ? std::vector<std::string>() : std::vector{body};
    Outcome outcome =
        streamedExchange(headerBlock(operation, serverId, clientId), parts);
    if (outcome.status == endOfReply) {
        const std::int32_t status = OvMem_Complete();
        return status < 0 ? failed(status, outcome.reply) : outcome;
    }
    return outcome;
}

std::string lastError() {
    const char* text = nullptr;
    const std::int32_t status = OvMem_GetLastError(&text);
    if (status != 0) {
        return "status " + std::to_string(status);
    }
    return text ? text : "(none)";
}

std::string sharedClients(const std::vector<std::string>& ids) {
    std::string document =
        "\n<ns0:SharedClientIDs xmlns:ns0=\"http://www.orvane.com/Schemas/"
        "OvModelEventManager/_2009_06/base\">";
    for (const std::string& id : ids) {
        document += "<ns0:sharedClients>" + id + "</ns0:sharedClients>";
    }
    return document + "</ns0:SharedClientIDs>";
}

}  // namespace OvMemTest
