#include <cmath>
#include <cstring>
#include <locale>
#include <sstream>

#include "OvMemCppBinding/util/ValueText.h"
#include "fuzz/Fuzz.h"

// Any text read as a number, against a stream; and any number written and read
// back. The first eight bytes of the input are that number too.

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;

template <typename Value>
Value fromStream(const std::string& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    Value value = 0;
    stream >> value;
    return value;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Fuzz::textOf(data, size);
    Fuzz::require(toInt(text) == fromStream<int>(text),
                  "toInt reads as a stream");
    Fuzz::require(toDouble(text) == fromStream<double>(text),
                  "toDouble reads as a stream");
    Fuzz::require(toFloat(text) == fromStream<float>(text),
                  "toFloat reads as a stream");
    Fuzz::require(toBool(text) == (text == "true" || text == "1"),
                  "toBool knows two texts");

    double number = 0;
    std::memcpy(&number, data, size < sizeof number ? 0 : sizeof number);
    if (std::isfinite(number)) {
        Fuzz::require(toDouble(toString(number)) == number,
                      "a double comes back");
        const auto narrow = static_cast<float>(number);
        Fuzz::require(
            !std::isfinite(narrow) || toFloat(toString(narrow)) == narrow,
            "a float comes back");
    }
    int whole = 0;
    std::memcpy(&whole, data, size < sizeof whole ? 0 : sizeof whole);
    Fuzz::require(toInt(toString(whole)) == whole, "an int comes back");
    return 0;
}
