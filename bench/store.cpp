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
constexpr const char* witness = "witness";

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

void putMany(Emulator& emulator, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) {
        emulator.putEvents(sender, event);
    }
}

// The witness gets what is put from now on, and with it shows that every event
// that was measured is there.
void measurePuts(benchmark::State& state, Emulator& emulator) {
    emulator.registerClient(witness);
    for (auto _ : state) {
        emulator.putEvents(sender, event);
    }
    std::string got;
    emulator.getEvents(witness, got);
    state.counters["checksum"] = checksum(got);
}

// With state.range(1) clients besides the sender; the last is the witness.
void put(benchmark::State& state) {
    const StoreFolder folder;
    {
        Emulator emulator(folder.file(), "NORMAL");
        registerAll(emulator, state.range(1) - 1);
    }
    Emulator emulator(folder.file(), name(state.range(0)));
    measurePuts(state, emulator);
}

void putRaw(benchmark::State& state) {
    const StoreFolder folder;
    RawSqlite raw(folder.file(), name(state.range(0)));
    for (auto _ : state) {
        raw.put(event);
    }
    std::string got;
    raw.getAll(got);
    state.counters["checksum"] = checksum(got);
}

// With 2 clients besides the sender: the witness, and one for which
// state.range(0) events are waiting. A store of that many is made once.
void putWaiting(benchmark::State& state) {
    static const StoreFolder folder;
    static bool filled = false;
    Emulator emulator(folder.file(), "NORMAL");
    if (!filled) {
        registerAll(emulator, 1);
        putMany(emulator, state.range(0));
        filled = true;
    }
    measurePuts(state, emulator);
}

// Room for all that is got, so that nobody's time goes into making it.
std::string roomFor(std::int64_t events) {
    std::string room;
    room.reserve(event.size() * static_cast<std::size_t>(events));
    return room;
}

void tellGot(benchmark::State& state, const std::string& got) {
    state.counters["checksum"] = checksum(got);
    state.counters["events"] = static_cast<double>(got.size() / event.size());
}

// All state.range(1) events that are queued, and out of the queue with them:
// once, since then they are gone.
void get(benchmark::State& state) {
    const StoreFolder folder;
    {
        Emulator emulator(folder.file(), "NORMAL");
        registerAll(emulator, 1);
        putMany(emulator, state.range(1));
    }
    Emulator emulator(folder.file(), name(state.range(0)));
    // The first to write makes a new log, and waits for the disk to have it.
    emulator.registerClient(witness);
    std::string got = roomFor(state.range(1));
    for (auto _ : state) {
        emulator.getEvents(receiver(0), got);
    }
    tellGot(state, got);
}

void getRaw(benchmark::State& state) {
    const StoreFolder folder;
    {
        RawSqlite raw(folder.file(), "NORMAL");
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            raw.put(event);
        }
    }
    RawSqlite raw(folder.file(), "NORMAL");
    std::string got = roomFor(state.range(0));
    for (auto _ : state) {
        raw.getAll(got);
    }
    tellGot(state, got);
}

// As many puts each, so that all that are compared store the same.
constexpr benchmark::IterationCount fullPuts = 200;
constexpr benchmark::IterationCount normalPuts = 2000;

BENCHMARK(put)
    ->Name("store/put")
    ->Args({full, 1})
    ->Iterations(fullPuts)
    ->UseRealTime();
BENCHMARK(put)
    ->Name("store/put")
    ->Args({normal, 1})
    ->Args({normal, 2})
    ->Args({normal, 10})
    ->Args({normal, 1000})
    ->Iterations(normalPuts)
    ->UseRealTime();
BENCHMARK(putRaw)
    ->Name("store/put_raw")
    ->Arg(full)
    ->Iterations(fullPuts)
    ->UseRealTime();
BENCHMARK(putRaw)
    ->Name("store/put_raw")
    ->Arg(normal)
    ->Iterations(normalPuts)
    ->UseRealTime();
BENCHMARK(putWaiting)
    ->Name("store/put_waiting")
    ->Arg(400000)
    ->Iterations(normalPuts)
    ->UseRealTime();
BENCHMARK(get)
    ->Name("store/get")
    ->Args({full, 10000})
    ->Args({normal, 10000})
    ->Args({normal, 5000})
    ->Args({normal, 20000})
    ->Iterations(1)
    ->UseRealTime();
BENCHMARK(getRaw)
    ->Name("store/get_raw")
    ->Arg(10000)
    ->Iterations(1)
    ->UseRealTime();

}  // namespace

}  // namespace Orvane::Net::OvModelEventManager::Bench
