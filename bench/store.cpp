// Events put and got through the emulator, beside SQLite alone. What counts
// here is the time on the clock: a commit waits for the disk.

#include <cstdint>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/Checksum.h"
#include "bench/Emulator.h"
#include "bench/RawSqlite.h"
#include "bench/StoreFolder.h"

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

enum Synchronous : std::int64_t { normal, full };

constexpr const char* sender = "sender";
constexpr std::int64_t gotAtOnce = 10000;

const std::string event = [] {
    std::string text(1023, 'e');
    return text + "\n";
}();

const char* name(std::int64_t synchronous) {
    return synchronous == full ? "FULL" : "NORMAL";
}

std::string receiver(std::int64_t number) {
    return "receiver-" + std::to_string(number);
}

void registerAll(Emulator& emulator, std::int64_t receivers) {
    emulator.registerClient(sender);
    for (std::int64_t i = 0; i < receivers; ++i) {
        emulator.registerClient(receiver(i));
    }
}

void putMany(Emulator& emulator, const std::string& text, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) {
        emulator.putEvents(sender, text);
    }
}

void putAll(benchmark::State& state, Emulator& emulator) {
    for (auto _ : state) {
        emulator.putEvents(sender, event);
    }
}

// With state.range(1) clients besides the sender.
void put(benchmark::State& state) {
    const StoreFolder folder;
    {
        Emulator emulator(folder.file(), "NORMAL");
        registerAll(emulator, state.range(1));
    }
    Emulator emulator(folder.file(), name(state.range(0)));
    emulator.putEvents(sender, event);
    std::string got;
    emulator.getEvents(receiver(0), got);
    state.counters["checksum"] = checksum(got);
    putAll(state, emulator);
}

void putRaw(benchmark::State& state) {
    const StoreFolder folder;
    RawSqlite raw(folder.file(), name(state.range(0)));
    raw.put(event);
    state.counters["checksum"] = checksum(raw.all());
    for (auto _ : state) {
        raw.put(event);
    }
}

// With state.range(0) events waiting; a store of that many is made once.
void putWaiting(benchmark::State& state) {
    static const StoreFolder folder;
    static std::int64_t waiting = 0;
    Emulator emulator(folder.file(), "NORMAL");
    if (waiting == 0) {
        registerAll(emulator, 1);
    }
    putMany(emulator, "waiting\n", state.range(0) - waiting);
    waiting = state.range(0);
    putAll(state, emulator);
}

// All that is queued, and out of the queue with it: once, since then it is
// gone.
void get(benchmark::State& state) {
    const StoreFolder folder;
    {
        Emulator emulator(folder.file(), "NORMAL");
        registerAll(emulator, 1);
        putMany(emulator, event, gotAtOnce);
    }
    Emulator emulator(folder.file(), name(state.range(0)));
    std::string got;
    got.reserve(event.size() * gotAtOnce);
    for (auto _ : state) {
        emulator.getEvents(receiver(0), got);
    }
    state.counters["checksum"] = checksum(got);
    state.counters["events"] = static_cast<double>(gotAtOnce);
}

void getRaw(benchmark::State& state) {
    const StoreFolder folder;
    RawSqlite raw(folder.file(), "NORMAL");
    for (std::int64_t i = 0; i < gotAtOnce; ++i) {
        raw.put(event);
    }
    std::string got;
    for (auto _ : state) {
        got = raw.all();
    }
    state.counters["checksum"] = checksum(got);
    state.counters["events"] = static_cast<double>(gotAtOnce);
}

BENCHMARK(put)
    ->Name("store/put")
    ->Args({full, 1})
    ->Args({normal, 1})
    ->Args({normal, 10})
    ->Args({normal, 1000})
    ->UseRealTime();
BENCHMARK(putRaw)->Name("store/put_raw")->Arg(full)->Arg(normal)->UseRealTime();
BENCHMARK(putWaiting)->Name("store/put_waiting")->Arg(400000)->UseRealTime();
BENCHMARK(get)
    ->Name("store/get")
    ->Arg(full)
    ->Arg(normal)
    ->Iterations(1)
    ->UseRealTime();
BENCHMARK(getRaw)->Name("store/get_raw")->Iterations(1)->UseRealTime();

}  // namespace

}  // namespace Orvane::Net::OvModelEventManager::Bench
