#include "OvMemCppBinding/util/DomException.h"

namespace Orvane::Net::OvModelEventManager::Util {

DomException::DomException() = default;

DomException::DomException(const std::string& text) : message(text) {}

DomException::DomException(const DomException& other) = default;

DomException& DomException::operator=(const DomException& other) = default;

DomException::~DomException() = default;

void DomException::setMessage(const std::string& text) {
    message = text;
}

const std::string& DomException::getMessage() {
    return message;
}

}  // namespace Orvane::Net::OvModelEventManager::Util
