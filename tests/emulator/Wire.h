#ifndef TESTS_EMULATOR_WIRE_H
#define TESTS_EMULATOR_WIRE_H

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace OvMemTest {

// Drives the eight functions as the client library does.

// A header block, sorted as the client's.
std::string headerBlock(const std::string& operation,
                        const std::string& serverId,
                        const std::string& clientId);

// What came of an exchange: the status that ended it (-1 after a whole reply),
// what was read of the reply, and the text of OvMem_GetLastError.
struct Outcome {
    std::int32_t status = 0;
    std::string reply;
    std::string error;

    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome);

// An exchange without OvMem_Complete, up to the end of the reply or the first
// error.
Outcome streamedExchange(const std::string& block,
                         const std::vector<std::string>& bodyParts);
Outcome wholeExchange(const std::string& request);

// A streamed exchange with OvMem_Complete after a whole reply.
Outcome request(const std::string& operation, const std::string& serverId,
                const std::string& clientId, const std::string& body = "");

// The text of OvMem_GetLastError, "(none)" for null.
std::string lastError();

// The document that lists `ids`.
std::string sharedClients(const std::vector<std::string>& ids);

}  // namespace OvMemTest

#endif
