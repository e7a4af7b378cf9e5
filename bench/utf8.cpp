// Text of the process's code page as UTF-8.

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <unicode/ucnv.h>

#include "OvMemCppBinding/util/Utf8Conversion.h"
#include "bench/Measure.h"

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

constexpr std::int64_t MiB = 1024 * 1024;

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter opened(const char* name) {
    UErrorCode error = U_ZERO_ERROR;
    return Converter(ucnv_open(name, &error), &ucnv_close);
}

// Lines as in a header block.
std::string textOf(const benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    std::string text;
    while (text.size() < length) {
        text += "Log-Correlation-ID=OvMEMConnection.registerClient\r\n";
    }
    text.resize(length);
    return text;
}

void ours(benchmark::State& state) {
    const std::string text = textOf(state);
    measure(state, [&] {
        return Util::toUtf8(text.data(), static_cast<int>(text.size()));
    });
}

// The same two steps in the same pieces; what is kept are the converters and
// the buffers.
void kept(benchmark::State& state) {
    const std::string text = textOf(state);
    const Converter from = opened(nullptr);
    const Converter to = opened("UTF-8");
    std::vector<UChar> units(std::min<std::size_t>(text.size(), 20480));
    std::vector<char> bytes(units.size() * 3 / 2);
    measure(state, [&] {
        std::string converted;
        const char* source = text.data();
        const char* const sourceEnd = source + text.size();
        ucnv_reset(from.get());
        ucnv_reset(to.get());
        UErrorCode outer = U_ZERO_ERROR;
        do {
            outer = U_ZERO_ERROR;
            UChar* unit = units.data();
            ucnv_toUnicode(from.get(), &unit, unit + units.size(), &source,
                           sourceEnd, nullptr, true, &outer);
            const UChar* rest = units.data();
            UErrorCode inner = U_ZERO_ERROR;
            do {
                inner = U_ZERO_ERROR;
                char* byte = bytes.data();
                ucnv_fromUnicode(to.get(), &byte, byte + bytes.size(), &rest,
                                 unit, nullptr, outer == U_ZERO_ERROR, &inner);
                converted.append(bytes.data(), byte);
            } while (inner == U_BUFFER_OVERFLOW_ERROR);
        } while (outer == U_BUFFER_OVERFLOW_ERROR);
        return converted;
    });
}

// What ICU offers for the whole task.
void oneCall(benchmark::State& state) {
    const std::string text = textOf(state);
    measure(state, [&] {
        std::string converted(text.size() * 3, '\0');
        UErrorCode error = U_ZERO_ERROR;
        const std::int32_t length = ucnv_convert(
            "UTF-8", ucnv_getDefaultName(), converted.data(),
            static_cast<std::int32_t>(converted.size()), text.data(),
            static_cast<std::int32_t>(text.size()), &error);
        converted.resize(static_cast<std::size_t>(length));
        return converted;
    });
}

BENCHMARK(ours)
    ->Name("utf8/ours")
    ->Arg(300)
    ->Arg(MiB)
    ->Arg(2 * MiB)
    ->Arg(4 * MiB);
BENCHMARK(kept)->Name("utf8/kept")->Arg(300)->Arg(MiB);
BENCHMARK(oneCall)->Name("utf8/one_call")->Arg(300)->Arg(MiB);

}  // namespace

}  // namespace Orvane::Net::OvModelEventManager::Bench
