#include "OvMemCppBinding/client/Utf8ConversionException.h"

namespace Orvane::Net::OvModelEventManager::Client {

Utf8ConversionException::Utf8ConversionException(int typeCode,
                                                 const std::string& text)
    : OvMEMException(typeCode, text) {}

Utf8ConversionException::Utf8ConversionException(const std::string& text)
    : OvMEMException(text) {}

Utf8ConversionException::Utf8ConversionException(
    const Utf8ConversionException& other) = default;

Utf8ConversionException& Utf8ConversionException::operator=(
    const Utf8ConversionException& other) = default;

Utf8ConversionException::~Utf8ConversionException() = default;

}  // namespace Orvane::Net::OvModelEventManager::Client
