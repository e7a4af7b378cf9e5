#ifndef TESTS_SUPPORT_SCRIPTEDTRANSPORT_H
#define TESTS_SUPPORT_SCRIPTEDTRANSPORT_H

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "OvMemCppBinding/platform/OvMemBinding.h"

namespace OvMemTest {

// A transport that answers from a script and remembers how it was called.
//
//     ScriptedTransport transport(failure);
//     transport.receive(19).receive(20).reply("<r/>");
//     ... the code under test ...
//     EXPECT_EQ(transport.takeCalls(), (Calls{"OvMem_SendNoAck(\"...\")",
//     ...}));
//
// The script holds, for each of the eight functions, its answers in the order
// of its calls. A call beyond the script gets the ordinary answer: 0, and 1
// from OvMem_SendNoAck; OvMem_Receive and OvMem_GetLastError have none, so
// that such a call is a failure.
//
// Failures go to the callback of the constructor, which may be called from the
// destructor: for a call that nobody scripted, for an answer that nobody
// fetched and for calls that nobody looked at. No exception is thrown, since
// the caller would have to pass it through C functions.
//
// Lifetime: plays the transport for the thread that constructed it until its
// destruction; then the one before it, if any, does so again. A call on a
// thread without one ends the process.
class ScriptedTransport {
public:
    using Failure = std::function<void(const std::string&)>;
    using Calls = std::vector<std::string>;

    explicit ScriptedTransport(Failure failure);
    ~ScriptedTransport();
    ScriptedTransport(const ScriptedTransport&) = delete;
    ScriptedTransport& operator=(const ScriptedTransport&) = delete;

    // The script.

    ScriptedTransport& init(std::int32_t status);
    ScriptedTransport& term(std::int32_t status);
    ScriptedTransport& send(std::int32_t status);
    ScriptedTransport& sendNoAck(std::int32_t status);
    ScriptedTransport& sendEof(std::int32_t status);
    ScriptedTransport& complete(std::int32_t status);

    // OvMem_Receive fills its whole buffer, with `bytes` and then with 0xA5.
    ScriptedTransport& receive(std::int32_t status, std::string bytes = {});

    // OvMem_GetLastError stores `text`, which stays valid until the next call.
    ScriptedTransport& lastError(std::int32_t status,
                                 std::optional<std::string> text);

    // A piece of a reply, with its length for a status.
    ScriptedTransport& chunk(std::string bytes);

    // A whole reply in pieces of up to 16384 bytes, and its end.
    ScriptedTransport& reply(const std::string& bytes);

    // A whole reply of which nothing is held: what OvMem_Receive answers when
    // its script is at an end comes from `source`, a piece for each call, until
    // there is none.
    using Source = std::function<std::optional<std::string>()>;
    ScriptedTransport& replyFrom(Source source);

    // Drops the answers that are left.
    void clear();

    // The record.

    // All calls since the last time it was asked, as they would be written:
    // OvMem_SendNoAck("a=b\r\n\r\n"). See Quoted.h for what stands in quotes.
    Calls takeCalls();

    // Adds a line of somebody else's, for the order among both.
    void record(std::string call);

    // Writes each call to this file descriptor as it happens, one a line.
    void traceTo(int fileDescriptor);

    // Reports what is left of the script and unseen of the record, as the
    // destructor does.
    void verify();

    // True while a double itself runs on this thread: an allocation that fails
    // on purpose leaves it alone.
    static bool working();

private:
    friend struct ScriptedTransportCall;

    enum Function {
        initFunction,
        termFunction,
        sendFunction,
        sendNoAckFunction,
        sendEofFunction,
        receiveFunction,
        completeFunction,
        lastErrorFunction,
        functionCount
    };

    struct Answer {
        std::int32_t status;
        std::optional<std::string> text;
    };

    ScriptedTransport& add(Function function, Answer answer);
    Answer next(Function function, const std::string& arguments);
    Answer nextOfReply();

    Failure failure;
    std::array<std::deque<Answer>, functionCount> script;
    Source replySource;  // empty when there is nothing to come from it
    Calls calls;
    std::string lastErrorText;
    int traceDescriptor;
    ScriptedTransport* previous;
};

}  // namespace OvMemTest

#endif
