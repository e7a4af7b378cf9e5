#include "tests/emulator/Alteration.h"

#include <algorithm>
#include <vector>

namespace OvMemTest {

namespace {

constexpr std::size_t firstPages = 12;
constexpr std::size_t sector = 512;

std::string at(std::size_t place) {
    return " at " + std::to_string(place);
}

}  // namespace

std::string Alteration::apply(std::string& bytes) {
    switch (random() % 8) {
        case 0: {
            const std::size_t where = place(bytes);
            bytes[where] =
                static_cast<char>(bytes[where] ^ (1 << random() % 8));
            return "a bit" + at(where);
        }
        case 1: {
            const std::size_t where = place(bytes);
            bytes[where] = static_cast<char>(random());
            return "a byte" + at(where);
        }
        case 2: {
            const std::size_t where = place(bytes);
            const std::size_t end =
                std::min(bytes.size(), where + 1 + random() % 200);
            for (std::size_t i = where; i < end; ++i) {
                bytes[i] = static_cast<char>(random());
            }
            return "bytes" + at(where) + " to" + at(end);
        }
        case 3: {
            const std::size_t one = page(bytes);
            const std::size_t other = page(bytes);
            std::swap_ranges(&bytes[one], &bytes[one] + layout.stride(),
                             &bytes[other]);
            return "pages exchanged" + at(one) + " and" + at(other);
        }
        case 4: {
            const std::size_t where = page(bytes);
            std::fill_n(&bytes[where], layout.stride(), '\0');
            return "a page emptied" + at(where);
        }
        case 5: {
            const std::size_t where =
                random() % 2 == 0 ? random() % bytes.size() : page(bytes);
            bytes.resize(where);
            return "cut" + at(where);
        }
        case 6:
            return putBack(bytes, sector);
        default:
            return putBack(bytes, layout.stride());
    }
}

std::size_t Alteration::place(const std::string& bytes) {
    const std::size_t first = std::min(
        bytes.size(), layout.fileHeader + firstPages * layout.stride());
    return random() % (random() % 2 == 0 ? first : bytes.size());
}

std::size_t Alteration::page(const std::string& bytes) {
    const std::size_t all =
        (bytes.size() - layout.fileHeader) / layout.stride();
    const std::size_t first = std::min(all, firstPages);
    const std::size_t number = random() % (random() % 2 == 0 ? first : all);
    return layout.fileHeader + number * layout.stride();
}

std::string Alteration::putBack(std::string& bytes, std::size_t unit) {
    const std::size_t size = std::min(bytes.size(), older.size());
    std::vector<std::size_t> changed;
    std::size_t first = 0;
    for (std::size_t where = unit == sector ? 0 : layout.fileHeader;
         where + unit <= size; where += unit) {
        if (bytes.compare(where, unit, older, where, unit) != 0) {
            changed.push_back(where);
            first += where < firstPages * layout.stride() ? 1 : 0;
        }
    }
    if (changed.empty()) {
        return "nothing";
    }
    const bool early = first > 0 && random() % 2 == 0;
    const std::size_t where =
        changed.at(random() % (early ? first : changed.size()));
    bytes.replace(where, unit, older, where, unit);
    return std::to_string(unit) + " earlier bytes" + at(where);
}

}  // namespace OvMemTest
