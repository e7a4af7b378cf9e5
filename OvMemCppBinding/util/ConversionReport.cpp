#include "OvMemCppBinding/util/ConversionReport.h"

#include <cstdint>

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

std::string orEmpty(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

// "UTF-8 (UTF-8, ibm-1208, ...)"
std::string nameWithAliases(UConverter* converter) {
    UErrorCode ignored = U_ZERO_ERROR;
    const char* name = ucnv_getName(converter, &ignored);
    const std::uint16_t count = ucnv_countAliases(name, &ignored);
    std::string text = orEmpty(name) + " (";
    for (std::uint16_t i = 0; i < count; ++i) {
        if (i > 0)
            text += ", ";
        text += orEmpty(ucnv_getAlias(name, i, &ignored));
    }
    return text + ")";
}

}  // namespace

std::string composeConversionReport(UConverter* converter, UErrorCode error,
                                    bool toUnicode) {
    if (U_SUCCESS(error))
        return std::string();
    const std::string name = nameWithAliases(converter);
    const std::string report =
        toUnicode ? "An error occured converting " + name + " to Unicode.\n"
                  : "An error occured converting Unicode to " + name + ".\n";
    return report + u_errorName(error) + "\n";
}

}  // namespace Orvane::Net::OvModelEventManager::Util
