#ifndef FUZZ_BYTETRANSPORT_H
#define FUZZ_BYTETRANSPORT_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace Fuzz {

// A transport and a logging library that answer from bytes: each call takes
// the next byte for its status, a piece of a reply a second one for its length
// and then its content. Without any bytes left they behave, and end a reply.
//
// During a handshake no status is answered that would make it last for ever.
//
// Plays for a whole process; the latest one is asked.
class ByteTransport {
public:
    explicit ByteTransport(std::string answers);
    ~ByteTransport();
    ByteTransport(const ByteTransport&) = delete;
    ByteTransport& operator=(const ByteTransport&) = delete;

    // For the functions of the transport alone.

    static ByteTransport& current();
    std::int32_t status(std::int32_t ordinary);
    std::int32_t receive(char* buffer);
    std::int32_t lastError(const char** text);
    void beginHandshake() { replying = false; }
    std::string takeText();

private:
    unsigned takeByte(unsigned otherwise);
    std::int32_t handshake();

    std::string bytes;
    std::size_t at = 0;
    bool replying = false;
    std::string message;
};

}  // namespace Fuzz

#endif
