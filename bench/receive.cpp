// A reply taken in, chunk by chunk.

#include <cstdint>
#include <string>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "OvMemCppBinding/platform/OvMemBinding.h"
#include "bench/InstantTransport.h"
#include "bench/Measure.h"

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

constexpr std::int64_t KiB = 1024;
constexpr std::int64_t MiB = 1024 * KiB;

constexpr const char* request = "request";

// A reply of state.range(0) bytes in chunks of state.range(1) bytes.
void setReplyOf(const benchmark::State& state) {
    std::string text(InstantTransport::largestChunk, ' ');
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = static_cast<char>('a' + i % 26);
    }
    const auto length = static_cast<std::size_t>(state.range(0));
    const std::size_t times = length / text.size();
    InstantTransport::setReply(std::move(text), times,
                               static_cast<std::size_t>(state.range(1)));
}

void ours(benchmark::State& state) {
    setReplyOf(state);
    measure(state, [] {
        Client::OvMEMRequest exchange;
        exchange.setRequestBody(request);
        return exchange.sendAndReceive();
    });
}

// Nobody knows the length of a reply beforehand; who did, could do this.
void reserved(benchmark::State& state) {
    setReplyOf(state);
    const auto length = static_cast<std::size_t>(state.range(0));
    measure(state, [length] {
        OvMem_Send(request);
        OvMem_SendEOF();
        std::string received;
        received.reserve(length);
        char buffer[InstantTransport::largestChunk];
        for (std::int32_t n; (n = OvMem_Receive(buffer)) >= 0;) {
            received.append(buffer, static_cast<std::size_t>(n));
        }
        OvMem_Complete();
        return received;
    });
}

BENCHMARK(ours)
    ->Name("receive/ours")
    ->ArgsProduct({{64 * KiB, MiB, 4 * MiB, 64 * MiB},
                   {16 * KiB, 4 * KiB, 512}})
    ->Args({8 * MiB, 16 * KiB})
    ->Args({16 * MiB, 16 * KiB})
    ->Args({32 * MiB, 16 * KiB});
BENCHMARK(reserved)
    ->Name("receive/reserved")
    ->ArgsProduct({{64 * KiB, MiB, 4 * MiB, 64 * MiB},
                   {16 * KiB, 4 * KiB, 512}});
BENCHMARK(ours)
    ->Name("receive/ours")
    ->Args({512 * MiB, 16 * KiB})
    ->Iterations(1);

}  // namespace

}  // namespace Orvane::Net::OvModelEventManager::Bench
