#include "tests/faults/FailingHeap.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

#include "tests/support/ScriptedTransport.h"

// Nothing here may take memory from the heap while requests are counted.

namespace OvMemTest {

namespace {

struct Held {
    void* block;
    std::uint64_t request;
};

struct Stack {
    std::uint64_t request;
    int depth;
    std::array<void*, 48> frames;
};

constexpr unsigned tableBits = 15;
constexpr std::size_t tableSize = 1U << tableBits;
constexpr std::size_t stackCount = 256;

bool counting = false;
bool inside = false;  // a hook's own work, which is left alone
FailingHeap::Plan currentPlan;
std::uint64_t requestCount = 0;
std::uint64_t refusedCount = 0;
std::uint64_t heldCount = 0;
std::array<Held, tableSize> table;  // by address, open addressing
std::array<Stack, stackCount> stacks;
std::size_t stacksWatched = 0;

std::size_t slotOf(const void* block) {
    return (reinterpret_cast<std::uintptr_t>(block) >> 4U) *
               0x9E3779B97F4A7C15U >>
           (64U - tableBits);
}

Held* find(const void* block) {
    std::size_t slot = slotOf(block);
    while (table[slot].block != nullptr && table[slot].block != block) {
        slot = (slot + 1) % tableSize;
    }
    return &table[slot];
}

// Moves up what would no longer be found behind an empty slot.
void erase(Held* entry) {
    auto hole = static_cast<std::size_t>(entry - table.data());
    for (std::size_t next = (hole + 1) % tableSize;
         table[next].block != nullptr; next = (next + 1) % tableSize) {
        const std::size_t home = slotOf(table[next].block);
        if ((next - home) % tableSize >= (next - hole) % tableSize) {
            table[hole] = table[next];
            hole = next;
        }
    }
    table[hole] = {};
}

bool applies() {
    return counting && !inside && !ScriptedTransport::working();
}

Stack* watchedStack(std::uint64_t request) {
    const auto end =
        stacks.begin() + static_cast<std::ptrdiff_t>(stacksWatched);
    const auto found =
        std::lower_bound(stacks.begin(), end, request,
                         [](const Stack& stack, std::uint64_t number) {
                             return stack.request < number;
                         });
    return found != end && found->request == request ? &*found : nullptr;
}

std::string demangled(const char* symbol) {
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    int status = 0;
    const std::unique_ptr<char, Free> name(
        abi::__cxa_demangle(symbol, nullptr, nullptr, &status));
    return status == 0 ? name.get() : symbol;
}

std::string lookUp(void* frame) {
    Dl_info info{};
    if (dladdr(frame, &info) == 0 || info.dli_fname == nullptr) {
        return "?:?";
    }
    return std::filesystem::path(info.dli_fname).filename().string() + ":" +
           (info.dli_sname == nullptr ? "?" : demangled(info.dli_sname));
}

// To look up an address takes long.
const std::string& describe(void* frame) {
    static std::map<void*, std::string> known;
    const auto [entry, unknown] = known.try_emplace(frame);
    if (unknown) {
        entry->second = lookUp(frame);
    }
    return entry->second;
}

}  // namespace

FailingHeap::Scope::Scope(Plan plan) {
    if (heldCount > 0) {
        table.fill({});
        heldCount = 0;
    }
    currentPlan = plan;
    requestCount = 0;
    refusedCount = 0;
    counting = true;
}

FailingHeap::Scope::~Scope() {
    counting = false;
}

std::uint64_t FailingHeap::requests() {
    return requestCount;
}

std::uint64_t FailingHeap::refused() {
    return refusedCount;
}

std::vector<std::uint64_t> FailingHeap::held() {
    std::vector<std::uint64_t> requests;
    if (heldCount > 0) {
        for (const Held& entry : table) {
            if (entry.block != nullptr) {
                requests.push_back(entry.request);
            }
        }
        std::sort(requests.begin(), requests.end());
    }
    return requests;
}

void FailingHeap::watch(const std::vector<std::uint64_t>& requests) {
    std::array<void*, 1> warmUp;
    ::backtrace(warmUp.data(), 1);
    stacksWatched = std::min(requests.size(), stackCount);
    for (std::size_t i = 0; i < stacksWatched; ++i) {
        stacks[i].request = requests[i];
        stacks[i].depth = 0;
    }
}

std::vector<std::string> FailingHeap::stackOf(std::uint64_t request) {
    std::vector<std::string> names;
    if (const Stack* stack = watchedStack(request)) {
        for (int i = 0; i < stack->depth; ++i) {
            names.push_back(
                describe(stack->frames[static_cast<std::size_t>(i)]));
        }
    }
    return names;
}

bool FailingHeap::refuses() {
    if (!applies()) {
        return false;
    }
    ++requestCount;
    const bool refused =
        currentPlan.failAt != 0 &&
        (currentPlan.andAllAfter ? requestCount >= currentPlan.failAt
                                 : requestCount == currentPlan.failAt);
    refusedCount += refused ? 1 : 0;
    return refused;
}

void FailingHeap::taken(void* block) {
    if (block == nullptr || !applies()) {
        return;
    }
    inside = true;
    *find(block) = {block, requestCount};
    if (++heldCount > tableSize / 2) {
        std::abort();
    }
    if (Stack* stack = watchedStack(requestCount)) {
        stack->depth = ::backtrace(stack->frames.data(),
                                   static_cast<int>(stack->frames.size()));
    }
    inside = false;
}

void FailingHeap::givenBack(void* block) {
    if (block == nullptr || heldCount == 0) {
        return;
    }
    Held* entry = find(block);
    if (entry->block != nullptr) {
        erase(entry);
        --heldCount;
    }
}

}  // namespace OvMemTest
