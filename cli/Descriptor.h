#ifndef CLI_DESCRIPTOR_H
#define CLI_DESCRIPTOR_H

#include <utility>

#include <unistd.h>

namespace ovmem::cli {

// Owns an open file descriptor, or none.
class Descriptor {
public:
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    // Negative if there is none: opening it failed.
    int get() const { return number; }

    // Closes it now. False if the file reports a failure, for instance of a
    // write before.
    bool close() {
        const int closing = std::exchange(number, -1);
        return closing < 0 || ::close(closing) == 0;
    }

private:
    int number;
};

}  // namespace ovmem::cli

#endif
