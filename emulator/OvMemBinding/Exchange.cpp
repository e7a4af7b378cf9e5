#include "emulator/OvMemBinding/Exchange.h"

#include <utility>

#include "emulator/OvMemBinding/SpentPages.h"
#include "emulator/manager/Refusal.h"
#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// So much of a reply is received before it is given back, to save system calls.
constexpr std::size_t givenBackAtOnce = 1024 * 1024;

Refusal outOfOrder(const char* text) {
    return Refusal(Status::outOfOrder, text);
}

void requireLimit(std::size_t size, std::size_t limit, const char* what) {
    if (size > limit) {
        throw Refusal(Status::malformed, std::string("The ") + what +
                                             " is longer than " +
                                             std::to_string(limit) +
                                             " bytes. Send a shorter one.");
    }
}

}  // namespace

Exchange::Exchange(HostHeap hostHeap, Limits requestLimits)
    : limits(requestLimits), request(std::move(hostHeap)) {}

void Exchange::send(std::string_view text) {
    abandon();
    append(text, limits.headerBlock + limits.body, "request");
    state = State::sendingWhole;
}

void Exchange::sendPart(std::string_view text) {
    if (state == State::sendingBody) {
        lastPart = request.view().size();
        append(text, limits.body, "body");
        return;
    }
    if (state != State::sendingHeader) {
        abandon();
        state = State::sendingHeader;
    }
    append(text, limits.headerBlock, "header block");
}

void Exchange::endOfSend() {
    switch (state) {
        case State::sendingHeader:
            state = State::headerSent;
            return;
        case State::sendingBody:
            state = State::bodySent;
            return;
        case State::sendingWhole:
            state = State::wholeSent;
            return;
        default:
            throw outOfOrder(
                "There is nothing to end: nothing is being sent on this "
                "thread. Call OvMem_Send or OvMem_SendNoAck before "
                "OvMem_SendEOF.");
    }
}

std::int32_t Exchange::receive(EventManager& manager, char* buffer) {
    switch (state) {
        case State::headerSent:
            header = RequestHeader::parse(request.view());
            beginBody();
            return sendBody;
        case State::bodySent:
            if (doubt && request.view().empty()) {
                settleDoubt();
            } else if (takeLastPartAsHeaderBlock()) {
                return sendBody;
            }
            startReply(manager, request.view());
            return replyFollows;
        case State::wholeSent: {
            const auto whole = WholeRequest::split(request.view());
            requireLimit(whole.headerBlock.size(), limits.headerBlock,
                         "header block");
            requireLimit(whole.body.size(), limits.body, "body");
            header = RequestHeader::parse(whole.headerBlock);
            startReply(manager, whole.body);
            return nextChunk(buffer);
        }
        case State::replying:
            return nextChunk(buffer);
        case State::replied:
            throw outOfOrder(
                "There is nothing more to receive: the reply has been read to "
                "its end. Call OvMem_Complete, then send the next request.");
        case State::idle:
            throw outOfOrder(
                "There is nothing to receive: no request was sent on this "
                "thread. Send one before OvMem_Receive.");
        default:
            throw outOfOrder(
                "There is nothing to receive: what is being sent was not "
                "ended. Call OvMem_SendEOF before OvMem_Receive.");
    }
}

void Exchange::complete(EventManager& manager) {
    if (state != State::replied) {
        throw outOfOrder(
            "There is nothing to complete: no reply was read to its end on "
            "this thread. Call OvMem_Receive until it answers -1, then "
            "OvMem_Complete.");
    }
    if (reply.consumption) {
        owed = std::move(reply.consumption);
        manager.complete(*owed);
        owed.reset();
    }
    abandon();
}

void Exchange::abandon() noexcept {
    state = State::idle;
    request.clear();
    doubt.reset();
    reply = Reply();
    received = 0;
    givenBack = 0;
}

void Exchange::beginBody() noexcept {
    request.clear();
    lastPart = 0;
    state = State::sendingBody;
}

// The part that may be a request is kept as a part of the body, too.
bool Exchange::takeLastPartAsHeaderBlock() {
    const std::string_view part = request.view().substr(lastPart);
    if (!part.ends_with("\r\n\r\n") || part.size() > limits.headerBlock) {
        return false;
    }
    RequestHeader next;
    try {
        next = RequestHeader::parse(part);
    } catch (const Refusal&) {
        return false;
    }
    doubt = Doubt{std::exchange(header, std::move(next)), std::move(request)};
    beginBody();
    return true;
}

// Without a body. A client that puts nothing has none to send, and is likelier
// than one whose events end in the header block of a put of its own.
void Exchange::settleDoubt() noexcept {
    if (header.operation != Operation::putEvents ||
        header.caller != doubt->header.caller) {
        header = std::move(doubt->header);
        request = std::move(doubt->body);
    }
    doubt.reset();
}

// What the client heard is that its last get succeeded.
void Exchange::settle(EventManager& manager) {
    if (!owed) {
        return;
    }
    try {
        manager.complete(*owed);
        owed.reset();
    } catch (const StoreError& error) {
        owed.reset();
        throw StoreError(
            "The events of the last getEvents could not be taken out of the "
            "queue, and the next getEvents brings them again. This request "
            "was not carried out. " +
            std::string(error.what()));
    }
}

void Exchange::append(std::string_view text, std::size_t limit,
                      const char* what) {
    requireLimit(request.view().size() + text.size(), limit, what);
    request.append(text);
}

void Exchange::startReply(EventManager& manager, std::string_view body) {
    settle(manager);
    reply = manager.answer(header, body);
    request.clear();
    state = State::replying;
}

std::int32_t Exchange::nextChunk(char* buffer) {
    const std::string_view rest =
        std::string_view(*reply.text).substr(received);
    if (rest.empty()) {
        state = State::replied;
        return endOfReply;
    }
    const std::size_t length = rest.copy(buffer, chunkSize);
    received += length;
    giveBackReceived();
    return static_cast<std::int32_t>(length);
}

// The text of events is this reply's own; a list of clients may serve others.
// What was received is never read again, whatever becomes of the exchange.
void Exchange::giveBackReceived() noexcept {
    if (reply.consumption && received - givenBack >= givenBackAtOnce) {
        giveBackPages(std::string_view(*reply.text)
                          .substr(givenBack, received - givenBack));
        givenBack = received;
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
