#ifndef BENCH_MEASURE_H
#define BENCH_MEASURE_H

#include <type_traits>

#include <benchmark/benchmark.h>

#include "bench/Allocations.h"
#include "bench/Checksum.h"

namespace Orvane::Net::OvModelEventManager::Bench {

// The result of work that makes nothing. Its checksum comes from elsewhere.
struct Nothing {};

// Measures `work`, a function without parameters that returns what it made.
// The time includes the destruction of that. Before, runs it once for its
// checksum and once for its allocations.
template <typename Work>
void measure(benchmark::State& state, Work work) {
    using Result = std::invoke_result_t<Work>;
    const Result first = work();
    if constexpr (!std::is_same_v<Result, Nothing>) {
        state.counters["checksum"] = checksum(first);
    }

    const Allocations before = allocationsSoFar();
    static_cast<void>(work());
    const Allocations after = allocationsSoFar();
    state.counters["allocations"] = static_cast<double>(after.all - before.all);
    state.counters["allocations_outside_xml"] = static_cast<double>(
        after.outsideXmlLibrary() - before.outsideXmlLibrary());

    for (auto _ : state) {
        Result result = work();
        benchmark::DoNotOptimize(result);
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Bench

#endif
