#include "bench/Emulator.h"

#include <cstdint>
#include <stdexcept>

#include <stdlib.h>

#include "OvMemCppBinding/platform/OvMemBinding.h"

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

constexpr std::size_t bufferSize = 16384;

std::int32_t require(std::int32_t status) {
    if (status < 0) {
        const char* text = nullptr;
        OvMem_GetLastError(&text);
        throw std::runtime_error(text == nullptr ? "the transport failed"
                                                 : text);
    }
    return status;
}

// The header block of the library, in the order in which it comes.
std::string headerBlock(const char* operation, const std::string& clientId) {
    return "Client-ID=" + clientId +
           "\r\nLog-Correlation-ID=bench\r\nOperation-Name=" + operation +
           "\r\nRequest-ID=\r\nServer-ID=plant-7\r\nService-Name=OvMEMRequest"
           "\r\nSession-ID=\r\nUser-Action=\r\n\r\n";
}

// Hands every piece of the reply to `take`.
template <typename Take>
void exchange(const std::string& header, const std::string& body, Take take) {
    char buffer[bufferSize];
    require(OvMem_SendNoAck(header.c_str()));
    require(OvMem_SendEOF());
    require(OvMem_Receive(buffer));
    require(OvMem_SendNoAck(body.c_str()));
    require(OvMem_SendEOF());
    require(OvMem_Receive(buffer));
    for (;;) {
        const std::int32_t length = OvMem_Receive(buffer);
        if (length == -1) {
            break;
        }
        take(buffer, static_cast<std::size_t>(require(length)));
    }
    require(OvMem_Complete());
}

std::size_t replyLength(const std::string& header, const std::string& body) {
    std::size_t total = 0;
    exchange(header, body,
             [&](const char*, std::size_t length) { total += length; });
    return total;
}

}  // namespace

Emulator::Emulator(const std::string& storeFile,
                   const std::string& synchronous) {
    const std::string url =
        "sqlite:" + storeFile + "?synchronous=" + synchronous;
    ::setenv("OVMEM_STORE", url.c_str(), 1);
    if (OvMem_Init(::malloc, ::free) != 0) {
        require(-1);
    }
}

Emulator::~Emulator() {
    OvMem_Term();
}

std::size_t Emulator::registerClient(const std::string& clientId) {
    return replyLength(headerBlock("registerClient", clientId),
                       "OvMEM register client");
}

std::size_t Emulator::putEvents(const std::string& clientId,
                                const std::string& events) {
    return replyLength(headerBlock("putEvents", clientId), events);
}

std::size_t Emulator::getEvents(const std::string& clientId,
                                std::string& events) {
    const std::size_t before = events.size();
    exchange(headerBlock("getEvents", clientId), "Get Events Request",
             [&](const char* bytes, std::size_t length) {
                 events.append(bytes, length);
             });
    return events.size() - before;
}

}  // namespace Orvane::Net::OvModelEventManager::Bench
