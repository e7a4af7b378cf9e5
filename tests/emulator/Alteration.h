#ifndef TESTS_EMULATOR_ALTERATION_H
#define TESTS_EMULATOR_ALTERATION_H

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace OvMemTest {

// How the pages of a file lie: a header, then pages, each with one of its own.
struct PageLayout {
    std::size_t fileHeader = 0;
    std::size_t pageHeader = 0;

    std::size_t stride() const { return pageHeader + 4096; }
};

// Alters a file once, at random, as disks and careless programs do: a bit, a
// byte or a run of bytes, two pages exchanged, one page emptied, the file cut,
// or a sector or a page as it was earlier.
//
// Every other alteration concerns the first dozen pages, where the least is
// kept of what matters most.
class Alteration {
public:
    // `earlier` is the same file at an earlier moment.
    Alteration(std::uint64_t seed, PageLayout pages, const std::string& earlier)
        : random(seed), layout(pages), older(earlier) {}

    // Says what it did.
    std::string apply(std::string& bytes);

private:
    std::size_t place(const std::string& bytes);
    std::size_t page(const std::string& bytes);
    std::string putBack(std::string& bytes, std::size_t unit);

    std::mt19937_64 random;
    const PageLayout layout;
    const std::string& older;
};

}  // namespace OvMemTest

#endif
