#include "emulator/store/CommitNotes.h"

#include <array>
#include <new>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include "emulator/store/Checksum.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

// Behind the line by which the gate remembers that there is a store. No note
// lies across the end of a sector, so none is torn.
constexpr off_t firstSector = 512;
constexpr std::uint64_t sectors = 64;
constexpr std::size_t notesOfSector = 16;

constexpr std::size_t acceptedAtMost = 1024;

constexpr std::int64_t anyStart = 0;

struct Note {
    std::int64_t key = 0;
    std::int64_t value = 0;
    std::int64_t start = 0;  // of the machine, in which it holds
    std::int64_t checksum = 0;

    std::int64_t sum() const {
        return Checksum(7).add(key).add(value).add(start).value();
    }
};

static_assert(sizeof(Note) * notesOfSector == 512);

// The notes among which one with this key is to be found.
struct Sector {
    Sector(int file, std::int64_t key) noexcept
        : place(firstSector +
                static_cast<off_t>(static_cast<std::uint64_t>(key) % sectors *
                                   sizeof(notes))) {
        static_cast<void>(::pread(file, notes.data(), sizeof(notes), place) ==
                          0);
    }

    std::size_t indexOf(std::int64_t key) const noexcept {
        std::size_t index = 0;
        while (index < notes.size() && notes.at(index).key != key) {
            ++index;
        }
        return index;
    }

    const off_t place;
    std::array<Note, notesOfSector> notes{};
};

std::int64_t keyOf(const std::string& server) {
    return Checksum(5).add(server).value();
}

std::int64_t keyOf(const Identity& who) {
    return Checksum(6).add(who.serverId).add(who.clientId).value();
}

// The same from one start of the machine to the next; anyStart if unknown.
std::int64_t thisStart() noexcept {
    static const std::int64_t start = [] {
        std::array<char, 64> text{};
        const int file =
            ::open("/proc/sys/kernel/random/boot_id", O_RDONLY | O_CLOEXEC);
        if (file < 0) {
            return anyStart;
        }
        const ssize_t size = ::read(file, text.data(), text.size());
        ::close(file);
        if (size <= 0) {
            return anyStart;
        }
        return Checksum(8)
            .add(std::string_view(text.data(), static_cast<std::size_t>(size)))
            .value();
    }();
    return start;
}

std::optional<std::int64_t> read(int file, std::int64_t key) noexcept {
    const Sector sector(file, key);
    const std::size_t index = sector.indexOf(key);
    if (index == sector.notes.size()) {
        return std::nullopt;
    }
    const Note& note = sector.notes.at(index);
    if (note.checksum != note.sum() ||
        (note.start != anyStart && note.start != thisStart())) {
        return std::nullopt;
    }
    return note.value;
}

// In the place of an earlier note of the same key, else in a free one, else in
// one that the key decides.
void write(int file, std::int64_t key, std::int64_t value,
           Synchronous synchronous) noexcept {
    Note note{key, value, anyStart, 0};
    if (synchronous == Synchronous::normal) {
        note.start = thisStart();
        if (note.start == anyStart) {
            return;
        }
    }
    note.checksum = note.sum();
    const Sector sector(file, key);
    std::size_t index = sector.indexOf(key);
    if (index == notesOfSector) {
        index = sector.indexOf(0);
    }
    if (index == notesOfSector) {
        index = static_cast<std::uint64_t>(key) / sectors % notesOfSector;
    }
    const off_t place = sector.place + static_cast<off_t>(index * sizeof(Note));
    static_cast<void>(::pwrite(file, &note, sizeof(note), place) ==
                      sizeof(note));
}

}  // namespace

CommitNotes::Noted CommitNotes::of(const Identity& who) const {
    const std::int64_t client = keyOf(who);
    if (accepted.contains(client)) {
        return {};
    }
    const int file = ::open(gate.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0) {
        return {};
    }
    const Noted noted{read(file, keyOf(who.serverId)), read(file, client)};
    ::close(file);
    return noted;
}

void CommitNotes::accept(const Identity& who) noexcept {
    if (accepted.size() >= acceptedAtMost) {
        accepted.clear();
    }
    try {
        accepted.insert(keyOf(who));
    } catch (const std::bad_alloc&) {
        // The notes are read again next time.
    }
}

void CommitNotes::noteServer(int file, const std::string& server,
                             const ServerRow& row) const noexcept {
    write(file, keyOf(server), progress(row), synchronous);
}

void CommitNotes::noteClient(int file, const Identity& who,
                             std::int64_t cursor) const noexcept {
    write(file, keyOf(who), cursor, synchronous);
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
