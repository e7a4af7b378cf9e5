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
// Ownership: texts are copied; the request stream is borrowed. A null text
// counts as the empty text.
//
// Threads: one at a time.
//
// THROWS: what throwTransportError throws, from every call that reaches the
// transport. After an exception OvMem_Complete has not been called, so the
// service may hand out the same reply again.
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

    // The whole exchange; returns the reply, byte for byte.
    //
    // THROWS: OvMEMProtocolException when there is neither body nor stream;
    // OvMEMRuntimeException when the headers cannot be converted to UTF-8.
    std::string sendAndReceive();

    // Its steps, for whoever needs them one by one.

    // Calls OvMem_SendNoAck, OvMem_SendEOF.
    void sendHeaders();

    // Streams the body; returns what OvMem_Receive then answers. Calls
    // OvMem_SendNoAck for each chunk, OvMem_SendEOF, OvMem_Receive.
    int sendStream();

    // Returns what OvMem_SendEOF answers. Calls OvMem_Send, OvMem_SendEOF.
    int sendText(const char* text);

    // Errors.

    // Calls OvMem_GetLastError.
    std::string getLastErrorMessage();

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
