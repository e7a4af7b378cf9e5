#include "tests/support/ScriptedTransport.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <unistd.h>

#include "tests/support/Quoted.h"

namespace OvMemTest {

namespace {

constexpr std::size_t bufferSize = 16384;
constexpr char unwritten = static_cast<char>(0xA5);

constexpr std::array names{
    "OvMem_Init",    "OvMem_Term",    "OvMem_Send",     "OvMem_SendNoAck",
    "OvMem_SendEOF", "OvMem_Receive", "OvMem_Complete", "OvMem_GetLastError"};

thread_local ScriptedTransport* installedTransport = nullptr;
thread_local bool atWork = false;

}  // namespace

// The way of the eight functions to the script.
struct ScriptedTransportCall {
    using Transport = ScriptedTransport;

    ScriptedTransportCall() {
        if (installedTransport == nullptr) {
            std::fputs("The transport was called without a script.\n", stderr);
            std::abort();
        }
        atWork = true;
    }
    ~ScriptedTransportCall() { atWork = false; }
    ScriptedTransportCall(const ScriptedTransportCall&) = delete;
    ScriptedTransportCall& operator=(const ScriptedTransportCall&) = delete;

    std::int32_t init(OvMemAllocate allocate, OvMemRelease release) {
        const std::string allocator =
            allocate == &std::malloc ? "malloc" : "not malloc";
        const std::string releaser =
            release == &std::free ? "free" : "not free";
        return status(Transport::initFunction, allocator + ", " + releaser);
    }

    std::int32_t term() { return status(Transport::termFunction, {}); }
    std::int32_t sendEof() { return status(Transport::sendEofFunction, {}); }
    std::int32_t complete() { return status(Transport::completeFunction, {}); }

    std::int32_t send(const char* text) {
        return status(Transport::sendFunction, argument(text));
    }

    std::int32_t sendNoAck(const char* text) {
        return status(Transport::sendNoAckFunction, argument(text));
    }

    std::int32_t receive(char* buffer) {
        const auto answer =
            installedTransport->next(Transport::receiveFunction, {});
        const std::string bytes = answer.text.value_or("");
        if (bytes.size() > bufferSize) {
            installedTransport->failure("OvMem_Receive was scripted to write " +
                                        std::to_string(bytes.size()) +
                                        " bytes");
            return answer.status;
        }
        std::fill_n(buffer, bufferSize, unwritten);
        std::memcpy(buffer, bytes.data(), bytes.size());
        return answer.status;
    }

    std::int32_t lastError(const char** stored) {
        auto answer =
            installedTransport->next(Transport::lastErrorFunction, {});
        if (*stored != nullptr) {
            installedTransport->failure(
                "OvMem_GetLastError was not handed a null");
        }
        if (answer.text) {
            installedTransport->lastErrorText = std::move(*answer.text);
            *stored = installedTransport->lastErrorText.c_str();
        }
        return answer.status;
    }

private:
    static std::string argument(const char* text) {
        return text == nullptr ? "null" : inQuotes(text);
    }

    std::int32_t status(Transport::Function function,
                        const std::string& arguments) {
        return installedTransport->next(function, arguments).status;
    }
};

ScriptedTransport::ScriptedTransport(Failure failureCallback)
    : failure(std::move(failureCallback)),
      traceDescriptor(-1),
      previous(installedTransport) {
    installedTransport = this;
}

ScriptedTransport::~ScriptedTransport() {
    verify();
    installedTransport = previous;
}

ScriptedTransport& ScriptedTransport::add(Function function, Answer answer) {
    script[function].push_back(std::move(answer));
    return *this;
}

ScriptedTransport& ScriptedTransport::init(std::int32_t status) {
    return add(initFunction, {status, {}});
}

ScriptedTransport& ScriptedTransport::term(std::int32_t status) {
    return add(termFunction, {status, {}});
}

ScriptedTransport& ScriptedTransport::send(std::int32_t status) {
    return add(sendFunction, {status, {}});
}

ScriptedTransport& ScriptedTransport::sendNoAck(std::int32_t status) {
    return add(sendNoAckFunction, {status, {}});
}

ScriptedTransport& ScriptedTransport::sendEof(std::int32_t status) {
    return add(sendEofFunction, {status, {}});
}

ScriptedTransport& ScriptedTransport::complete(std::int32_t status) {
    return add(completeFunction, {status, {}});
}

ScriptedTransport& ScriptedTransport::receive(std::int32_t status,
                                              std::string bytes) {
    return add(receiveFunction, {status, std::move(bytes)});
}

ScriptedTransport& ScriptedTransport::lastError(
    std::int32_t status, std::optional<std::string> text) {
    return add(lastErrorFunction, {status, std::move(text)});
}

ScriptedTransport& ScriptedTransport::chunk(std::string bytes) {
    const auto length = static_cast<std::int32_t>(bytes.size());
    return receive(length, std::move(bytes));
}

ScriptedTransport& ScriptedTransport::reply(const std::string& bytes) {
    for (std::size_t at = 0; at < bytes.size(); at += bufferSize) {
        chunk(bytes.substr(at, bufferSize));
    }
    return receive(-1);
}

ScriptedTransport& ScriptedTransport::replyFrom(Source source) {
    replySource = std::move(source);
    return *this;
}

void ScriptedTransport::clear() {
    replySource = {};
    for (auto& answers : script) {
        answers.clear();
    }
}

ScriptedTransport::Calls ScriptedTransport::takeCalls() {
    return std::exchange(calls, {});
}

void ScriptedTransport::record(std::string call) {
    if (traceDescriptor >= 0) {
        const std::string line = call + "\n";
        if (::write(traceDescriptor, line.data(), line.size()) < 0) {
            failure("A call could not be traced: " + call);
        }
    }
    calls.push_back(std::move(call));
}

void ScriptedTransport::traceTo(int fileDescriptor) {
    traceDescriptor = fileDescriptor;
}

void ScriptedTransport::verify() {
    for (std::size_t function = 0; function < functionCount; ++function) {
        for (const Answer& answer : script[function]) {
            failure(std::string("Nobody fetched the answer ") +
                    std::to_string(answer.status) + " of " + names[function]);
        }
    }
    if (replySource) {
        failure("Nobody fetched the end of the reply");
    }
    for (const std::string& call : takeCalls()) {
        failure("Nobody looked at the call " + call);
    }
    clear();
}

bool ScriptedTransport::working() {
    return atWork;
}

ScriptedTransport::Answer ScriptedTransport::next(
    Function function, const std::string& arguments) {
    const std::string call = names[function] + ("(" + arguments) + ")";
    record(call);
    auto& answers = script[function];
    if (!answers.empty()) {
        Answer answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }
    if (function == receiveFunction && replySource) {
        return nextOfReply();
    }
    if (function == receiveFunction || function == lastErrorFunction) {
        failure("Nobody scripted an answer to " + call);
        return {-1, {}};
    }
    return {function == sendNoAckFunction ? 1 : 0, {}};
}

ScriptedTransport::Answer ScriptedTransport::nextOfReply() {
    auto bytes = replySource();
    if (!bytes) {
        replySource = {};
        return {-1, {}};
    }
    const auto length = static_cast<std::int32_t>(bytes->size());
    return {length, std::move(bytes)};
}

}  // namespace OvMemTest

using OvMemTest::ScriptedTransportCall;

int32_t OvMem_Init(OvMemAllocate allocate, OvMemRelease release) {
    return ScriptedTransportCall().init(allocate, release);
}

int32_t OvMem_Term() {
    return ScriptedTransportCall().term();
}

int32_t OvMem_Send(const char* text) {
    return ScriptedTransportCall().send(text);
}

int32_t OvMem_SendNoAck(const char* text) {
    return ScriptedTransportCall().sendNoAck(text);
}

int32_t OvMem_SendEOF() {
    return ScriptedTransportCall().sendEof();
}

int32_t OvMem_Receive(char* buffer) {
    return ScriptedTransportCall().receive(buffer);
}

int32_t OvMem_Complete() {
    return ScriptedTransportCall().complete();
}

int32_t OvMem_GetLastError(const char** text) {
    return ScriptedTransportCall().lastError(text);
}
