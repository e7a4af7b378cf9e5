#include "OvMemCppBinding/util/ValueText.h"

#include <locale>
#include <sstream>

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

constexpr int digitsAfterPoint = 17;

const std::locale& classicLocale() {
    static const std::locale classic("C");
    return classic;
}

// Out of memory, a stream throws instead of cutting the text short.
template <typename Stream>
void throwWhenBad(Stream& stream) {
    stream.exceptions(std::ios_base::badbit);
}

template <typename Value>
std::string write(std::ostringstream& stream, Value value) {
    throwWhenBad(stream);
    stream << value;
    return stream.str();
}

template <typename Value>
Value read(std::istringstream& stream) {
    throwWhenBad(stream);
    Value value{};
    stream >> value;
    return value;
}

template <typename Value>
Value readClassic(const std::string& text) {
    if (text.empty())
        return Value{};
    std::istringstream stream(text);
    stream.imbue(classicLocale());
    return read<Value>(stream);
}

}  // namespace

std::string toString(const bool& value) {
    return value ? "1" : "0";
}

std::string toString(const int& value) {
    std::ostringstream stream;
    return write(stream, value);
}

std::string toString(const double& value) {
    std::ostringstream stream;
    stream.imbue(classicLocale());
    stream.precision(digitsAfterPoint);
    stream.setf(std::ios_base::scientific, std::ios_base::floatfield);
    return write(stream, value);
}

std::string toString(const float& value) {
    return toString(static_cast<double>(value));
}

std::string toString(const std::string& value) {
    return value;
}

bool toBool(const std::string& text) {
    return text == "true" || text == "1";
}

int toInt(const std::string& text) {
    if (text.empty())
        return 0;
    std::istringstream stream(text);
    return read<int>(stream);
}

double toDouble(const std::string& text) {
    return readClassic<double>(text);
}

float toFloat(const std::string& text) {
    return readClassic<float>(text);
}

}  // namespace Orvane::Net::OvModelEventManager::Util
