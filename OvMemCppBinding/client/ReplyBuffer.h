#ifndef OVMEMCPPBINDING_CLIENT_REPLYBUFFER_H
#define OVMEMCPPBINDING_CLIENT_REPLYBUFFER_H

#include <cstddef>
#include <memory>
#include <string>

namespace Orvane::Net::OvModelEventManager::Client {

// The bytes of a reply while they arrive. Grows by doubling, so the cost of a
// reply is linear in its length.
class ReplyBuffer {
public:
    // THROWS: std::bad_alloc, as append does.
    ReplyBuffer();

    // Appends a copy of `length` bytes.
    void append(const char* bytes, std::size_t length);

    // A copy of everything appended so far.
    std::string text() const;

private:
    struct Release {
        void operator()(char* block) const;
    };

    std::size_t capacity;
    std::size_t total;
    std::unique_ptr<char, Release> block;  // of the C heap, for realloc
};

}  // namespace Orvane::Net::OvModelEventManager::Client

#endif
