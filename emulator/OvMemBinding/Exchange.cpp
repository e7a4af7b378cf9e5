#include "emulator/OvMemBinding/Exchange.h"

#include <utility>

#include "emulator/manager/Refusal.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

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
            request.clear();
            state = State::sendingBody;
            return sendBody;
        case State::bodySent:
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
        manager.complete(*reply.consumption);
    }
    abandon();
}

void Exchange::abandon() noexcept {
    state = State::idle;
    request.clear();
    reply = Reply();
    received = 0;
}

void Exchange::append(std::string_view text, std::size_t limit,
                      const char* what) {
    requireLimit(request.view().size() + text.size(), limit, what);
    request.append(text);
}

void Exchange::startReply(EventManager& manager, std::string_view body) {
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
    return static_cast<std::int32_t>(length);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
