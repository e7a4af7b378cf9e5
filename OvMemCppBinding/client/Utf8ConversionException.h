#ifndef OVMEMCPPBINDING_CLIENT_UTF8CONVERSIONEXCEPTION_H
#define OVMEMCPPBINDING_CLIENT_UTF8CONVERSIONEXCEPTION_H

#include <string>

#include "OvMemCppBinding/client/Exceptions.h"

namespace Orvane::Net::OvModelEventManager::Client {

// Thrown when a text cannot be converted to or from UTF-8 at all. A request
// replaces it before it reaches the application, so it is not exported.
class Utf8ConversionException : public OvMEMException {
public:
    Utf8ConversionException(int type, const std::string& message);
    Utf8ConversionException(const std::string& message);
    Utf8ConversionException(const Utf8ConversionException& other);
    Utf8ConversionException& operator=(const Utf8ConversionException& other);
    ~Utf8ConversionException();
};

}  // namespace Orvane::Net::OvModelEventManager::Client

#endif
