#ifndef EMULATOR_OVMEMBINDING_EXCHANGE_H
#define EMULATOR_OVMEMBINDING_EXCHANGE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "emulator/OvMemBinding/HostBytes.h"
#include "emulator/manager/EventManager.h"
#include "emulator/manager/Limits.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// One exchange after the other on one thread: where the request and its reply
// have got to, and what may come next.
//
// A streamed request:
//
//     sendPart(header block)  endOfSend
//     receive: 19             sendPart(body) ...  endOfSend
//     receive: 20             here the request has been done
//     receive: n ... -1       complete
//
// A request in one piece:
//
//     send(header block and body)  endOfSend
//     receive: n ... -1            complete
//
// A client that gives up half way says nothing. So a new request is taken
// wherever one can begin, and the unfinished exchange is forgotten; only in
// the middle of a body sendPart cannot tell a new header block from more of
// the body.
//
// THROWS: Refusal (out of order) for a call that does not fit; the exchange
// is then as it was. Any other exception leaves it where no call but a new
// request fits, once the caller has called abandon.
class Exchange {
public:
    static constexpr std::int32_t sendBody = 19;
    static constexpr std::int32_t replyFollows = 20;
    static constexpr std::int32_t endOfReply = -1;
    static constexpr std::size_t chunkSize = 16384;

    // The request is kept on `heap`.
    explicit Exchange(HostHeap heap = {}, Limits limits = {});

    // A whole request.
    void send(std::string_view text);

    // A part of the header block or of the body.
    void sendPart(std::string_view text);

    void endOfSend();

    // A status of the handshake, or the length of the next piece of the reply,
    // which is written to `buffer`, or -1.
    //
    // REQUIRES: room for chunkSize bytes.
    std::int32_t receive(EventManager& manager, char* buffer);

    // The client has the whole reply: what it got leaves its queue.
    void complete(EventManager& manager);

    // Forgets the exchange and gives its memory back.
    void abandon() noexcept;

private:
    enum class State {
        idle,
        sendingHeader,
        headerSent,
        sendingBody,  // asked for; perhaps nothing sent yet
        bodySent,
        sendingWhole,
        wholeSent,
        replying,
        replied
    };

    void append(std::string_view text, std::size_t limit, const char* what);
    void startReply(EventManager& manager, std::string_view body);
    std::int32_t nextChunk(char* buffer);

    Limits limits;
    State state = State::idle;
    HostBytes request;  // the header block, the body or both
    RequestHeader header;
    Reply reply;
    std::size_t received = 0;  // bytes of the reply
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
