#include "OvMemCppBinding/client/Exceptions.h"

namespace Orvane::Net::OvModelEventManager::Client {

Exception::Exception(int typeCode, const std::string& text)
    : reserved(0), type(typeCode), message(text) {}

Exception::Exception(const std::string& text) : Exception(0, text) {}

Exception::Exception(const Exception& other)
    : reserved(other.reserved), type(other.type), message(other.message) {}

Exception& Exception::operator=(const Exception& other) {
    reserved = other.reserved;
    type = other.type;
    message = other.message;
    return *this;
}

Exception::~Exception() = default;

int Exception::getType() const {
    return type;
}

const std::string& Exception::getMessage() const {
    return message;
}

OvMEMException::OvMEMException(int typeCode, const std::string& text)
    : Exception(typeCode, text) {}

OvMEMException::OvMEMException(const std::string& text) : Exception(text) {}

OvMEMException::OvMEMException(const OvMEMException& other) = default;

OvMEMException& OvMEMException::operator=(const OvMEMException& other) =
    default;

OvMEMException::~OvMEMException() = default;

OvMEMConnectionException::OvMEMConnectionException(int typeCode,
                                                   const std::string& text)
    : OvMEMException(typeCode, text) {}

OvMEMConnectionException::OvMEMConnectionException(const std::string& text)
    : OvMEMException(text) {}

OvMEMConnectionException::OvMEMConnectionException(
    const OvMEMConnectionException& other) = default;

OvMEMConnectionException& OvMEMConnectionException::operator=(
    const OvMEMConnectionException& other) = default;

OvMEMConnectionException::~OvMEMConnectionException() = default;

OvMEMProtocolException::OvMEMProtocolException(int typeCode,
                                               const std::string& text)
    : OvMEMException(typeCode, text) {}

OvMEMProtocolException::OvMEMProtocolException(const std::string& text)
    : OvMEMException(text) {}

OvMEMProtocolException::OvMEMProtocolException(
    const OvMEMProtocolException& other) = default;

OvMEMProtocolException& OvMEMProtocolException::operator=(
    const OvMEMProtocolException& other) = default;

OvMEMProtocolException::~OvMEMProtocolException() = default;

OvMEMRuntimeException::OvMEMRuntimeException(int typeCode,
                                             const std::string& text)
    : OvMEMException(typeCode, text) {}

OvMEMRuntimeException::OvMEMRuntimeException(const std::string& text)
    : OvMEMException(text) {}

OvMEMRuntimeException::OvMEMRuntimeException(
    const OvMEMRuntimeException& other) = default;

OvMEMRuntimeException& OvMEMRuntimeException::operator=(
    const OvMEMRuntimeException& other) = default;

OvMEMRuntimeException::~OvMEMRuntimeException() = default;

OvMEMUnrecognisedException::OvMEMUnrecognisedException(int typeCode,
                                                       const std::string& text)
    : OvMEMException(typeCode, text) {}

OvMEMUnrecognisedException::OvMEMUnrecognisedException(const std::string& text)
    : OvMEMException(text) {}

OvMEMUnrecognisedException::OvMEMUnrecognisedException(
    const OvMEMUnrecognisedException& other) = default;

OvMEMUnrecognisedException& OvMEMUnrecognisedException::operator=(
    const OvMEMUnrecognisedException& other) = default;

OvMEMUnrecognisedException::~OvMEMUnrecognisedException() = default;

}  // namespace Orvane::Net::OvModelEventManager::Client
