#include <vector>

#include <unicode/ucnv.h>

#include "OvMemCppBinding/util/Utf8Conversion.h"
#include "fuzz/Fuzz.h"

// Conversion of any bytes between the default code page and UTF-8, against
// ICU's conversion in one step. The first byte of the input says how often the
// rest is repeated, so that a small input reaches the limits of the buffers.

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;

constexpr std::size_t bufferSize = 20480;
constexpr std::size_t longest = 1U << 16U;

std::string inOneStep(const char* to, const char* from,
                      const std::string& text) {
    std::vector<char> target(text.size() * 8 + 64);
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = ucnv_convert(
        to, from, target.data(), static_cast<int32_t>(target.size()),
        text.data(), static_cast<int32_t>(text.size()), &error);
    Fuzz::require(static_cast<std::size_t>(length) <= target.size(),
                  "the target is large enough");
    return std::string(target.data(), static_cast<std::size_t>(length));
}

// A NUL ends what one pass through the buffers produced, so texts with one are
// only converted.
void compare(const std::string& converted, const std::string& expected) {
    Fuzz::require(
        expected.find('\0') != std::string::npos || converted == expected,
        "the conversion in one step gives the same");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string once = size == 0 ? "" : Fuzz::textOf(data + 1, size - 1);
    std::string text;
    for (unsigned i = 0; size > 0 && i <= data[0] && text.size() < longest;
         ++i) {
        text += once;
    }
    // The last character of a long text is dropped when it is cut.
    if (text.size() > bufferSize) {
        text += '\n';
    }
    const int length = static_cast<int>(text.size());
    const char* codePage = ucnv_getDefaultName();
    compare(toUtf8(text.data(), length), inOneStep("UTF-8", codePage, text));
    compare(fromUtf8(text.data(), length), inOneStep(codePage, "UTF-8", text));
    return 0;
}
