#ifndef EMULATOR_OVMEMBINDING_EXCHANGE_H
#define EMULATOR_OVMEMBINDING_EXCHANGE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
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
// wherever one can begin, and the unfinished exchange is forgotten. In the
// middle of a body a new header block looks like more of the body. So where the
// last part of a body is a whole header block, receive answers 19 once more: a
// client that began a new request sends the body of that one, and what came
// before is forgotten; a client whose body just ends like that has nothing more
// to send, and its request is done as it stands. But a header block of a put of
// the same client begins a new request in any case, since a put may have no
// body.
//
// What a client got and could not be taken out of its queue is tried again with
// the next request; if that fails, too, the next request is refused, so that
// the client hears that it will get the same events again.
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

    // A request whose body ends with what may be the next request.
    struct Doubt {
        RequestHeader header;
        HostBytes body;
    };

    void beginBody() noexcept;

    // Then that part is the header block of the exchange from now on, and what
    // it was until now is in doubt.
    bool takeLastPartAsHeaderBlock();
    void settleDoubt() noexcept;
    void settle(EventManager& manager);
    void append(std::string_view text, std::size_t limit, const char* what);
    void startReply(EventManager& manager, std::string_view body);
    std::int32_t nextChunk(char* buffer);

    // What was received of many events need not be held twice.
    void giveBackReceived() noexcept;

    Limits limits;
    State state = State::idle;
    HostBytes request;         // the header block, the body or both
    std::size_t lastPart = 0;  // of the body: where it begins
    std::optional<Doubt> doubt;
    RequestHeader header;
    Reply reply;
    std::optional<Consumption> owed;  // by a complete that failed
    std::size_t received = 0;         // bytes of the reply
    std::size_t givenBack = 0;        // of these, to the system
};

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
