#ifndef OVMEMCPPBINDING_CLIENT_OVMEMREQUEST_H
#define OVMEMCPPBINDING_CLIENT_OVMEMREQUEST_H

#include <istream>
#include <map>
#include <memory>
#include <string>

namespace Orvane::Net::OvModelEventManager::Client {

// One request to the service and its reply: headers, and either a body text or
// a stream to read the body from.
//
// Lives for one operation: construct, set headers, set the body or the stream,
// sendAndReceive once, destroy. docs/wire-format.md draws the exchange.
//
// Ownership: texts are copied; the request stream is borrowed. As a header, or
// as the body, a null text counts as the empty text.
//
// Threads: one at a time.
//
// THROWS: what throwTransportError throws, where a status of the transport is
// an error and is neither ignored nor returned: see each operation. After an
// exception OvMem_Complete has not been called, so the service may hand out the
// same reply again.
class OvMEMRequest {
public:
    OvMEMRequest();
    ~OvMEMRequest();
    OvMEMRequest(const OvMEMRequest&) = delete;
    OvMEMRequest& operator=(const OvMEMRequest&) = delete;

    // Content.

    // A name that is already present keeps its first value.
    void setHeader(const char* name, const char* value);

    // REQUIRES: `stream` outlives the exchange.
    void setRequestStream(std::istream* stream);

    // With a body that is not empty, the request goes out as one text.
    void setRequestBody(const char* text);

    void clearHeaders();

    // Lines of name, "=" and value, sorted by name, closed by an empty line.
    // A value of exactly "null" is written as an empty one.
    std::string buildHeaderBlock() const;

    // Exchange.

    // The whole exchange; returns the reply, byte for byte. Ignores what
    // OvMem_SendEOF answers behind the headers, and what OvMem_Complete
    // answers. Never returns on a handshake status that has no meaning
    // (docs/irregularities.md#endless-handshake).
    //
    // THROWS: OvMEMProtocolException when there is neither body nor stream,
    // before anything is sent, and when a chunk of the reply exceeds the
    // receive buffer; OvMEMRuntimeException when the headers cannot be
    // converted to UTF-8.
    std::string sendAndReceive();

    // Its steps, for whoever needs them one by one.

    // Calls OvMem_SendNoAck, OvMem_SendEOF; ignores what the latter answers.
    //
    // THROWS: OvMEMRuntimeException when the headers cannot be converted.
    void sendHeaders();

    // Streams the body; returns what OvMem_Receive then answers, errors too.
    // Calls OvMem_SendNoAck for each chunk, OvMem_SendEOF, OvMem_Receive.
    //
    // THROWS: OvMEMProtocolException without a stream.
    int sendStream();

    // Returns what OvMem_SendEOF answers, errors too. Calls OvMem_Send,
    // OvMem_SendEOF.
    //
    // THROWS: for a null text, which is not sent, as for the status -3002.
    int sendText(const char* text);

    // Errors.

    // What the transport says about its last error, or why there is no text.
    // Calls OvMem_GetLastError, and takes any answer.
    std::string getLastErrorMessage();

    // The exception that docs/errors.md gives for `status`, always. Calls
    // OvMem_GetLastError.
    [[noreturn]] void throwTransportError(int status);

private:
    void requireStream() const;
    int streamRequest();
    std::string receiveReply();

    std::unique_ptr<char[]> receiveBuffer;  // filled by OvMem_Receive
    std::istream replyStream;               // without a buffer; never read
    std::istream* requestStream;            // borrowed; may be null
    std::map<std::string, std::string> headers;
    std::string body;
};

}  // namespace Orvane::Net::OvModelEventManager::Client

#endif
