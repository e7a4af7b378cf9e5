#include "bench/InstantTransport.h"

#include <utility>

#include "OvMemCppBinding/platform/OvMemBinding.h"

namespace {

constexpr int32_t sendBody = 19;
constexpr int32_t replyFollows = 20;
constexpr int32_t endOfReply = -1;

std::string replyText;
std::size_t replyTimes = 0;
std::size_t chunkSize = 0;

// The exchange under way.
int handshakes = 0;
std::size_t position = 0;  // in the text
std::size_t finished = 0;  // times that the text has been handed out

bool recording = false;
std::string recorded;

}  // namespace

namespace Orvane::Net::OvModelEventManager::Bench {

void InstantTransport::setReply(std::string text, std::size_t times,
                                std::size_t chunk) {
    replyText = std::move(text);
    replyTimes = times;
    chunkSize = chunk;
}

void InstantTransport::record(bool on) {
    recording = on;
}

std::string InstantTransport::takeRecorded() {
    return std::exchange(recorded, std::string());
}

}  // namespace Orvane::Net::OvModelEventManager::Bench

int32_t OvMem_Init(OvMemAllocate, OvMemRelease) {
    return 0;
}

int32_t OvMem_Term(void) {
    return 0;
}

int32_t OvMem_Send(const char* text) {
    handshakes = 2;  // the body is in the text
    return OvMem_SendNoAck(text);
}

int32_t OvMem_SendNoAck(const char* text) {
    if (recording) {
        recorded += text;
    }
    return 1;
}

int32_t OvMem_SendEOF(void) {
    return 0;
}

int32_t OvMem_Receive(char* buffer) {
    if (handshakes < 2) {
        return handshakes++ == 0 ? sendBody : replyFollows;
    }
    if (finished == replyTimes) {
        return endOfReply;
    }
    const std::size_t length = replyText.copy(buffer, chunkSize, position);
    position += length;
    if (position == replyText.size()) {
        position = 0;
        ++finished;
    }
    return static_cast<int32_t>(length);
}

int32_t OvMem_Complete(void) {
    handshakes = 0;
    position = 0;
    finished = 0;
    return 0;
}

int32_t OvMem_GetLastError(const char** text) {
    *text = nullptr;
    return 0;
}
