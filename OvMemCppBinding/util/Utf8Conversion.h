#ifndef OVMEMCPPBINDING_UTIL_UTF8CONVERSION_H
#define OVMEMCPPBINDING_UTIL_UTF8CONVERSION_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <unicode/ucnv.h>

// Conversion between the default code page of the process, as ICU knows it,
// and UTF-8.
//
// Both conversions pass through UTF-16 in two buffers of bounded size. Input
// that a code page cannot express is not an error: the result holds whatever
// the converters put in its place. A NUL in the output ends the piece that one
// pass through the buffers produced.
//
// Threads: each call has converters and buffers of its own.
//
// THROWS: Client::Utf8ConversionException when a converter cannot be opened;
// std::bad_alloc.

namespace Orvane::Net::OvModelEventManager::Util {

// The converters and buffers of one conversion.
class UnicodeConverter {
public:
    // Sized for an input of `length` bytes, up to a fixed limit. A wide byte
    // buffer has room for 1.5 bytes a UTF-16 unit, another one for 1.
    UnicodeConverter(bool wideByteBuffer, std::size_t length);

    // Closes and frees everything; may be called again.
    void release();

private:
    struct Close {
        void operator()(UConverter* converter) const;
    };

public:
    std::uint64_t unicodeCapacity;  // in units, without the terminator
    std::uint64_t byteCapacity;     // in bytes, without the terminator
    std::unique_ptr<UChar[]> unicodeBuffer;
    std::unique_ptr<char[]> byteBuffer;
    std::unique_ptr<UConverter, Close> defaultConverter;
    std::unique_ptr<UConverter, Close> utf8Converter;
};

// Text of the default code page as UTF-8.
std::string toUtf8(const char* bytes, int length);

// UTF-8 as text of the default code page.
std::string fromUtf8(const char* bytes, int length);

// Composes what went wrong in a conversion, and drops it: a conversion returns
// what it could convert and reports nothing.
void reportConversionError(UConverter* converter, UErrorCode error,
                           bool toUnicode);

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
