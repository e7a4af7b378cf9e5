#include "OvMemCppBinding/client/Exceptions.h"

namespace Orvane::Net::OvModelEventManager::Client {

Exception::Exception(int typeCode, const std::string& text)
    : reserved(0), type(typeCode), message(text) {}

Exception::Exception(const std::string& text) : Exception(0, text) {}

Exception::Exception(const Exception& other) = default;

Exception& Exception::operator=(const Exception& other) = default;

Exception::~Exception() = default;

int Exception::getType() const {
    return type;
}

const std::string& Exception::getMessage() const {
    return message;
}

OvMEMException::OvMEMException(int type, const std::string& message)
    : Exception(type, message) {}

OvMEMException::OvMEMException(const std::string& message)
    : Exception(message) {}

OvMEMException::OvMEMException(const OvMEMException& other) = default;

OvMEMException& OvMEMException::operator=(const OvMEMException& other) =
    default;

OvMEMException::~OvMEMException() = default;

OvMEMConnectionException::OvMEMConnectionException(int type,
                                                   const std::string& message)
    : OvMEMException(type, message) {}

OvMEMConnectionException::OvMEMConnectionException(const std::string& message)
    : OvMEMException(message) {}

OvMEMConnectionException::OvMEMConnectionException(
    const OvMEMConnectionException& other) = default;

OvMEMConnectionException& OvMEMConnectionException::operator=(
    const OvMEMConnectionException& other) = default;

OvMEMConnectionException::~OvMEMConnectionException() = default;

OvMEMProtocolException::OvMEMProtocolException(int type,
                                               const std::string& message)
    : OvMEMException(type, message) {}

OvMEMProtocolException::OvMEMProtocolException(const std::string& message)
    : OvMEMException(message) {}

OvMEMProtocolException::OvMEMProtocolException(
    const OvMEMProtocolException& other) = default;

OvMEMProtocolException& OvMEMProtocolException::operator=(
    const OvMEMProtocolException& other) = default;

OvMEMProtocolException::~OvMEMProtocolException() = default;

OvMEMRuntimeException::OvMEMRuntimeException(int type,
                                             const std::string& message)
    : OvMEMException(type, message) {}

OvMEMRuntimeException::OvMEMRuntimeException(const std::string& message)
    : OvMEMException(message) {}

OvMEMRuntimeException::OvMEMRuntimeException(
    const OvMEMRuntimeException& other) = default;

OvMEMRuntimeException& OvMEMRuntimeException::operator=(
    const OvMEMRuntimeException& other) = default;

OvMEMRuntimeException::~OvMEMRuntimeException() = default;

OvMEMUnrecognisedException::OvMEMUnrecognisedException(
    int type, const std::string& message)
    : OvMEMException(type, message) {}

OvMEMUnrecognisedException::OvMEMUnrecognisedException(
    const std::string& message)
    : OvMEMException(message) {}

OvMEMUnrecognisedException::OvMEMUnrecognisedException(
    const OvMEMUnrecognisedException& other) = default;

OvMEMUnrecognisedException& OvMEMUnrecognisedException::operator=(
    const OvMEMUnrecognisedException& other) = default;

OvMEMUnrecognisedException::~OvMEMUnrecognisedException() = default;

}  // namespace Orvane::Net::OvModelEventManager::Client
