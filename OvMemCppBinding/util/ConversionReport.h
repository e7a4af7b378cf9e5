#ifndef OVMEMCPPBINDING_UTIL_CONVERSIONREPORT_H
#define OVMEMCPPBINDING_UTIL_CONVERSIONREPORT_H

#include <string>

#include <unicode/ucnv.h>

namespace Orvane::Net::OvModelEventManager::Util {

// The report of a conversion error, two lines; empty if `error` is a success
// or a warning. `converter` is borrowed.
std::string composeConversionReport(UConverter* converter, UErrorCode error,
                                    bool toUnicode);

}  // namespace Orvane::Net::OvModelEventManager::Util

#endif
