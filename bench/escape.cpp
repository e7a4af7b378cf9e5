// A text made safe for XML, and back.

#include <memory>
#include <string>

#include <libxml/entities.h>
#include <libxml/tree.h>

#include "OvMemCppBinding/util/XmlEscape.h"
#include "bench/Measure.h"

namespace Orvane::Net::OvModelEventManager::Bench {

namespace {

constexpr std::int64_t MiB = 1024 * 1024;

// state.range(0) characters, of which state.range(1) in a hundred are special,
// without any order: those that libxml2 writes in the same way.
std::string textOf(const benchmark::State& state) {
    constexpr std::string_view specials = "&<>\"";
    std::string text(static_cast<std::size_t>(state.range(0)), ' ');
    std::uint32_t random = 1;
    for (char& character : text) {
        random = random * 1664525 + 1013904223;
        const std::uint32_t drawn = random >> 16;
        character = drawn % 100 < state.range(1)
                        ? specials[drawn % specials.size()]
                        : static_cast<char>('a' + drawn % 26);
    }
    return text;
}

struct XmlFree {
    void operator()(xmlChar* text) const { xmlFree(text); }
};

using XmlText = std::unique_ptr<xmlChar, XmlFree>;

std::uint32_t checksum(const XmlText& text) {
    return Bench::checksum(
        std::string_view(reinterpret_cast<const char*>(text.get())));
}

void escapeOurs(benchmark::State& state) {
    const std::string text = textOf(state);
    measure(state, [&] { return Util::escape(text); });
}

void escapeLibxml2(benchmark::State& state) {
    const std::string text = textOf(state);
    measure(state, [&] {
        return XmlText(xmlEncodeSpecialChars(
            nullptr, reinterpret_cast<const xmlChar*>(text.c_str())));
    });
}

void unescapeOurs(benchmark::State& state) {
    const std::string text = textOf(state);
    const std::string escaped = Util::escape(text);
    if (Util::unescape(escaped) != text) {
        state.SkipWithError("unescape does not give back what escape took");
        return;
    }
    measure(state, [&] { return Util::unescape(escaped); });
}

// Has the checksum of what `unescape` makes of it.
struct Copy {
    std::string escaped;
};

std::uint32_t checksum(const Copy& copy) {
    return Bench::checksum(Util::unescape(copy.escaped));
}

void unescapeCopy(benchmark::State& state) {
    const std::string escaped = Util::escape(textOf(state));
    measure(state, [&] { return Copy{escaped}; });
}

BENCHMARK(escapeOurs)
    ->Name("escape/ours")
    ->ArgsProduct({{MiB}, {0, 1, 10, 100}})
    ->ArgsProduct({{2 * MiB, 4 * MiB}, {0, 1, 10, 100}});
BENCHMARK(escapeLibxml2)
    ->Name("escape/libxml2")
    ->ArgsProduct({{MiB}, {0, 1, 10, 100}});
BENCHMARK(unescapeOurs)
    ->Name("unescape/ours")
    ->ArgsProduct({{MiB}, {0, 1, 10, 100}})
    ->ArgsProduct({{2 * MiB, 4 * MiB}, {0, 1, 10, 100}});
BENCHMARK(unescapeCopy)
    ->Name("unescape/copy")
    ->ArgsProduct({{MiB}, {0, 1, 10, 100}})
    ->ArgsProduct({{2 * MiB, 4 * MiB}, {0}});

}  // namespace

}  // namespace Orvane::Net::OvModelEventManager::Bench
