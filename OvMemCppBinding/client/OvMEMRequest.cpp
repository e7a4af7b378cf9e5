#include "OvMemCppBinding/client/OvMEMRequest.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <thread>

#include "OvMemCppBinding/client/Exceptions.h"
#include "OvMemCppBinding/client/ReplyBuffer.h"
#include "OvMemCppBinding/client/TransportError.h"
#include "OvMemCppBinding/client/Utf8ConversionException.h"
#include "OvMemCppBinding/client/WireFormat.h"
#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "OvMemCppBinding/util/Utf8Conversion.h"

namespace Orvane::Net::OvModelEventManager::Client {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds firstWait = 1ms;
constexpr std::chrono::milliseconds longestWait = 1s;

const char* orEmpty(const char* text) {
    return text == nullptr ? "" : text;
}

// The copy that is sent ends with a NUL, which the bytes read do not.
int sendChunk(const char* bytes, std::size_t length) {
    const auto chunk = std::make_unique_for_overwrite<char[]>(length + 1);
    std::copy_n(bytes, length, chunk.get());
    chunk[length] = '\0';
    return OvMem_SendNoAck(chunk.get());
}

int streamBody(std::istream& stream) {
    char bytes[WireFormat::bodyChunkSize];
    int status = 0;
    std::streamsize length = 0;
    do {
        stream.read(bytes, sizeof bytes);
        length = stream.gcount();
        if (length > 0)
            status = sendChunk(bytes, static_cast<std::size_t>(length));
    } while (!stream.eof() && length > 0 && status > 0);
    return status;
}

std::string convertToUtf8(const std::string& block) {
    if (block.size() > std::numeric_limits<int>::max())
        throw Utf8ConversionException("Header block too long to convert");
    return Util::toUtf8(block.data(), static_cast<int>(block.size()));
}

[[noreturn]] void throwConversionFailure() {
    throw OvMEMRuntimeException(
        "Exception occurred while converting to UTF-8 bytes.");
}

}  // namespace

OvMEMRequest::OvMEMRequest()
    : receiveBuffer(std::make_unique_for_overwrite<char[]>(
          WireFormat::receiveBufferSize)),
      replyStream(nullptr),
      requestStream(nullptr) {}

OvMEMRequest::~OvMEMRequest() = default;

void OvMEMRequest::setHeader(const char* name, const char* value) {
    headers.emplace(orEmpty(name), orEmpty(value));
}

void OvMEMRequest::setRequestStream(std::istream* stream) {
    requestStream = stream;
}

void OvMEMRequest::setRequestBody(const char* text) {
    body = orEmpty(text);
}

void OvMEMRequest::clearHeaders() {
    headers.clear();
}

std::string OvMEMRequest::buildHeaderBlock() const {
    std::string block;
    block.reserve(WireFormat::usualHeaderBlockSize);
    for (const auto& [name, value] : headers) {
        block += name;
        block += '=';
        // Deliberate: a textual null means nothing.
        // See docs/irregularities.md#null-is-sent-as-empty.
        if (value != WireFormat::nullValue)
            block += value;
        block += WireFormat::lineEnd;
    }
    block += WireFormat::lineEnd;
    return block;
}

std::string OvMEMRequest::sendAndReceive() try {
    const int status = body.empty()
                           ? streamRequest()
                           : sendText((buildHeaderBlock() + body).c_str());
    if (status < 0)
        throwTransportError(status);
    return receiveReply();
} catch (const Utf8ConversionException&) {
    throwConversionFailure();
}

void OvMEMRequest::sendHeaders() try {
    const std::string block = convertToUtf8(buildHeaderBlock());
    const int status = OvMem_SendNoAck(block.c_str());
    if (status < 0)
        throwTransportError(status);
    OvMem_SendEOF();
} catch (const Utf8ConversionException&) {
    throwConversionFailure();
}

int OvMEMRequest::sendStream() {
    requireStream();
    int status = streamBody(*requestStream);
    if (status < 0)
        throwTransportError(status);
    status = OvMem_SendEOF();
    if (status < 0)
        throwTransportError(status);
    return OvMem_Receive(receiveBuffer.get());
}

int OvMEMRequest::sendText(const char* text) {
    if (text == nullptr)
        throwTransportError(WireFormat::statusNoText);
    const int status = OvMem_Send(text);
    if (status < 0)
        throwTransportError(status);
    return OvMem_SendEOF();
}

std::string OvMEMRequest::getLastErrorMessage() {
    return lastTransportErrorMessage();
}

void OvMEMRequest::throwTransportError(int status) {
    Client::throwTransportError(status);
}

void OvMEMRequest::requireStream() const {
    if (requestStream == nullptr)
        throw OvMEMProtocolException("Failed to read the request stream.");
}

// Deliberate: on a positive status that is neither 19 nor 20 the handshake
// never ends. See docs/irregularities.md#endless-handshake. The volatile keeps
// that loop well defined; the sleeps, each twice as long as the one before it,
// keep it from taking the processor time of others.
int OvMEMRequest::streamRequest() {
    requireStream();
    sendHeaders();
    std::chrono::milliseconds wait = firstWait;
    volatile int status = OvMem_Receive(receiveBuffer.get());
    while (status > 0 && status != WireFormat::statusSendNoBody) {
        if (status == WireFormat::statusSendBody) {
            status = sendStream();
        } else {
            std::this_thread::sleep_for(wait);
            wait = std::min(2 * wait, longestWait);
        }
    }
    return status;
}

std::string OvMEMRequest::receiveReply() {
    std::string reply;
    {
        ReplyBuffer received;
        for (;;) {
            const int length = OvMem_Receive(receiveBuffer.get());
            if (length == WireFormat::statusEndOfReply)
                break;
            if (length < 0)
                throwTransportError(length);
            const auto size = static_cast<std::size_t>(length);
            if (size > WireFormat::receiveBufferSize)
                throw OvMEMProtocolException(WireFormat::oversizedChunk);
            received.append(receiveBuffer.get(), size);
        }
        reply = received.text();
    }
    OvMem_Complete();
    return reply;
}

}  // namespace Orvane::Net::OvModelEventManager::Client
