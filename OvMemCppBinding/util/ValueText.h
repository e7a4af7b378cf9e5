#ifndef OVMEMCPPBINDING_UTIL_VALUETEXT_H
#define OVMEMCPPBINDING_UTIL_VALUETEXT_H

#include <string>

#include "OvMemCppBinding/Export.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Util {

// Values as the text of XML elements and attributes, and back.
//
// Floating-point numbers are written and read in the classic "C" locale,
// whatever the global locale; an int uses the global locale of the moment
// (docs/irregularities.md#int-uses-the-global-locale).
//
// All functions may be called from any thread. None reports an error: a text
// that does not begin with a number reads as 0, one out of range as the finite
// value nearest to it. THROWS: std::bad_alloc.

// Writing.

// "1" or "0".
OVMEM_EXPORT std::string toString(const bool& value);

// Decimal: "-7".
OVMEM_EXPORT std::string toString(const int& value);

// Scientific with 17 digits after the point, so that a finite value reads back
// unchanged: 0.5 gives "5.00000000000000000e-01". What is not finite gives
// "inf", "-inf", "nan" or "-nan", and reads back as 0
// (docs/irregularities.md#not-finite-reads-as-zero).
OVMEM_EXPORT std::string toString(const double& value);

// Widened and written as a double: 0.1f gives "1.00000001490116119e-01".
OVMEM_EXPORT std::string toString(const float& value);

// The text itself. Nothing is escaped.
OVMEM_EXPORT std::string toString(const std::string& value);

// A string literal would otherwise choose the bool overload.
std::string toString(const char*) = delete;

// Reading.

// True for exactly "true" and "1"; every other text is false.
OVMEM_EXPORT bool toBool(const std::string& text);

// These skip leading white space and ignore what follows the number: "12abc"
// reads as 12. The empty text reads as 0. An "e" behind a floating-point number
// belongs to it, as an exponent, and spoils it without one: toDouble("12em")
// is 0.
OVMEM_EXPORT int toInt(const std::string& text);
OVMEM_EXPORT double toDouble(const std::string& text);
OVMEM_EXPORT float toFloat(const std::string& text);

}  // namespace Util
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
