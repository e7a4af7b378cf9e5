#ifndef BENCH_EMULATOR_H
#define BENCH_EMULATOR_H

#include <cstddef>
#include <string>

namespace Orvane::Net::OvModelEventManager::Bench {

// The emulator, started over a SQLite store, and spoken to as the library
// speaks to it: through the eight functions of the transport.
class Emulator {
public:
    // `synchronous` is FULL or NORMAL.
    Emulator(const std::string& storeFile, const std::string& synchronous);
    ~Emulator();
    Emulator(const Emulator&) = delete;
    Emulator& operator=(const Emulator&) = delete;

    // One whole exchange each. The answer is the number of bytes replied.
    // THROWS: std::runtime_error when the transport refuses.

    std::size_t registerClient(const std::string& clientId);
    std::size_t putEvents(const std::string& clientId,
                          const std::string& events);

    // Appends what was queued.
    std::size_t getEvents(const std::string& clientId, std::string& events);
};

}  // namespace Orvane::Net::OvModelEventManager::Bench

#endif
