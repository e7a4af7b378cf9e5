#include "OvMemCppBinding/util/Utf8Conversion.h"

#include <algorithm>

#include "OvMemCppBinding/client/Utf8ConversionException.h"
#include "OvMemCppBinding/util/ConversionReport.h"

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

constexpr std::uint64_t maxUnicodeCapacity = 20480;
constexpr std::uint64_t maxByteCapacity = 30720;
constexpr double bytesPerUnit = 1.5;

void requireOpened(UErrorCode error) {
    if (U_FAILURE(error)) {
        throw Client::Utf8ConversionException(
            std::string("Error opening converter ") + u_errorName(error) +
            "\n");
    }
}

// One conversion: from bytes of `from` through UTF-16 to bytes of `to`.
std::string convert(UnicodeConverter& work, UConverter* from, UConverter* to,
                    const char* bytes, int length) {
    const char* source = bytes;
    const char* const sourceEnd = bytes + std::max(length, 0);
    UChar* const units = work.unicodeBuffer.get();
    char* const piece = work.byteBuffer.get();
    const auto unicodeCapacity =
        static_cast<std::ptrdiff_t>(work.unicodeCapacity);
    const auto byteCapacity = static_cast<std::ptrdiff_t>(work.byteCapacity);

    std::string converted;
    UErrorCode error1 = U_ZERO_ERROR;
    do {
        error1 = U_ZERO_ERROR;
        UChar* unitsEnd = units;
        ucnv_toUnicode(from, &unitsEnd, units + unicodeCapacity, &source,
                       sourceEnd, nullptr,
                       sourceEnd - source <= unicodeCapacity, &error1);
        *unitsEnd = 0;
        const bool lastPass = error1 != U_BUFFER_OVERFLOW_ERROR;

        const UChar* unit = units;
        UErrorCode error2 = U_ZERO_ERROR;
        do {
            error2 = U_ZERO_ERROR;
            char* pieceEnd = piece;
            // A surrogate pair may straddle two passes; only the last one may
            // take its first half for a broken one.
            ucnv_fromUnicode(to, &pieceEnd, piece + byteCapacity, &unit,
                             unitsEnd, nullptr, lastPass, &error2);
            *pieceEnd = '\0';
            // Deliberate: a NUL ends the piece.
            // See docs/irregularities.md#nul-ends-a-converted-piece.
            converted += piece;
        } while (error2 == U_BUFFER_OVERFLOW_ERROR);
        // Deliberate: the converters stand in this order in both directions.
        // See docs/irregularities.md#reports-in-one-order.
        reportConversionError(work.utf8Converter.get(), error2, false);
    } while (error1 == U_BUFFER_OVERFLOW_ERROR);
    reportConversionError(work.defaultConverter.get(), error1, true);
    return converted;
}

}  // namespace

UnicodeConverter::UnicodeConverter(bool wideByteBuffer, std::size_t length)
    : unicodeCapacity(maxUnicodeCapacity), byteCapacity(maxByteCapacity) {
    if (length < maxUnicodeCapacity) {
        unicodeCapacity = length;
        byteCapacity = static_cast<std::uint64_t>(static_cast<double>(length) *
                                                  bytesPerUnit);
    }
    unicodeBuffer =
        std::make_unique_for_overwrite<UChar[]>(unicodeCapacity + 1);
    if (!wideByteBuffer)
        byteCapacity = unicodeCapacity;
    byteBuffer = std::make_unique_for_overwrite<char[]>(byteCapacity + 1);
    unicodeBuffer[0] = 0;
    byteBuffer[0] = '\0';

    UErrorCode error = U_ZERO_ERROR;
    defaultConverter.reset(ucnv_open(nullptr, &error));
    requireOpened(error);
    utf8Converter.reset(ucnv_open("UTF-8", &error));
    requireOpened(error);
}

void UnicodeConverter::release() {
    defaultConverter.reset();
    utf8Converter.reset();
    unicodeBuffer.reset();
    byteBuffer.reset();
}

void UnicodeConverter::Close::operator()(UConverter* converter) const {
    ucnv_close(converter);
}

std::string toUtf8(const char* bytes, int length) {
    UnicodeConverter work(true, static_cast<std::size_t>(length));
    return convert(work, work.defaultConverter.get(), work.utf8Converter.get(),
                   bytes, length);
}

std::string fromUtf8(const char* bytes, int length) {
    UnicodeConverter work(false, static_cast<std::size_t>(length));
    return convert(work, work.utf8Converter.get(), work.defaultConverter.get(),
                   bytes, length);
}

// Deliberate: the report goes nowhere.
// See docs/irregularities.md#conversion-errors-are-dropped.
void reportConversionError(UConverter* converter, UErrorCode error,
                           bool toUnicode) {
    static_cast<void>(composeConversionReport(converter, error, toUnicode));
}

}  // namespace Orvane::Net::OvModelEventManager::Util
