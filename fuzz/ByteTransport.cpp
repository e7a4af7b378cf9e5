#include "fuzz/ByteTransport.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "OvMemCppBinding/platform/LogCorrelation.h"
#include "OvMemCppBinding/platform/OvMemBinding.h"

namespace Fuzz {

namespace {

ByteTransport* installed = nullptr;

constexpr std::array<std::int32_t, 24> statuses{
    0,     1,     2,     19,      20,    21,    1001,  1002,
    1003,  16384, 16385, INT_MAX, -1,    -2,    -751,  -2996,
    -2998, -3001, -3002, -3010,   -3016, -3017, -3099, INT_MIN};

}  // namespace

ByteTransport::ByteTransport(std::string answers) : bytes(std::move(answers)) {
    installed = this;
}

ByteTransport::~ByteTransport() {
    installed = nullptr;
}

ByteTransport& ByteTransport::current() {
    if (installed == nullptr) {
        std::abort();
    }
    return *installed;
}

// Half of all bytes stand for success.
std::int32_t ByteTransport::status(std::int32_t ordinary) {
    const unsigned byte = takeByte(UCHAR_MAX);
    return byte < 128 ? statuses[byte % statuses.size()] : ordinary;
}

std::int32_t ByteTransport::receive(char* buffer) {
    if (!replying) {
        return handshake();
    }
    const unsigned kind = takeByte(0);
    if (kind < 16) {
        return -1;
    }
    if (kind < 32) {
        return statuses[kind % statuses.size()];
    }
    // Up to 255 bytes of the input, of the upper kinds many times over.
    const std::string piece = bytes.substr(at, takeByte(0));
    at = std::min(bytes.size(), at + piece.size());
    std::size_t length = 0;
    for (unsigned repeat = kind < 224 ? 1 : 60;
         repeat > 0 && length + piece.size() <= 16384; --repeat) {
        std::memcpy(buffer + length, piece.data(), piece.size());
        length += piece.size();
    }
    return static_cast<std::int32_t>(length);
}

std::int32_t ByteTransport::handshake() {
    const unsigned kind = takeByte(20) % 8;
    if (kind < 3) {
        return 19;
    }
    replying = true;
    return kind < 6 ? 20 : std::min(status(0), 0);
}

std::int32_t ByteTransport::lastError(const char** text) {
    const unsigned kind = takeByte(0);
    message = takeText();
    *text = kind % 2 == 0 ? message.c_str() : nullptr;
    return kind % 4 < 2 ? 0 : -1;
}

std::string ByteTransport::takeText() {
    const std::string text = bytes.substr(at, takeByte(0) % 32);
    at = std::min(bytes.size(), at + text.size());
    return text;
}

unsigned ByteTransport::takeByte(unsigned otherwise) {
    return at < bytes.size() ? static_cast<unsigned char>(bytes[at++])
                             : otherwise;
}

}  // namespace Fuzz

using Fuzz::ByteTransport;

int32_t OvMem_Init(OvMemAllocate, OvMemRelease) {
    return ByteTransport::current().status(0);
}

int32_t OvMem_Term() {
    return ByteTransport::current().status(0);
}

int32_t OvMem_Send(const char* text) {
    return ByteTransport::current().status(
        static_cast<int32_t>(std::strlen(text) % 2));
}

int32_t OvMem_SendNoAck(const char* text) {
    return ByteTransport::current().status(
        1 + static_cast<int32_t>(std::strlen(text) % 2));
}

int32_t OvMem_SendEOF() {
    return ByteTransport::current().status(0);
}

int32_t OvMem_Receive(char* buffer) {
    return ByteTransport::current().receive(buffer);
}

int32_t OvMem_Complete() {
    return ByteTransport::current().status(0);
}

int32_t OvMem_GetLastError(const char** text) {
    return ByteTransport::current().lastError(text);
}

namespace Orvane::Common::Logging {

const char* const LogCorrelation::HTTP_HEADER_REQUEST_ID = "Request-ID";
const char* const LogCorrelation::HTTP_HEADER_SESSION_ID = "Session-ID";
const char* const LogCorrelation::HTTP_HEADER_USER_ACTION = "Caller-Action";

// Whoever asks it is about to send a request.
LogCorrelation* LogCorrelation::get() {
    static LogCorrelation theOne;
    ByteTransport::current().beginHandshake();
    return &theOne;
}

std::string LogCorrelation::getRequestID() const {
    return ByteTransport::current().takeText();
}

std::string LogCorrelation::getSessionID() const {
    return ByteTransport::current().takeText();
}

std::string LogCorrelation::getUserAction() const {
    return ByteTransport::current().takeText();
}

}  // namespace Orvane::Common::Logging
