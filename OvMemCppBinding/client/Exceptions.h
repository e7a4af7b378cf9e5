#ifndef OVMEMCPPBINDING_CLIENT_EXCEPTIONS_H
#define OVMEMCPPBINDING_CLIENT_EXCEPTIONS_H

#include <string>

#include "OvMemCppBinding/Export.h"

// The failures of the client layer, as one small family of value types.
//
// How to catch. By reference, most specific first:
//
//     Exception
//       +-- OvMEMException
//             +-- OvMEMConnectionException, OvMEMProtocolException,
//                 OvMEMRuntimeException, OvMEMUnrecognisedException
//
// The XML layer's DomException is outside this family and needs a handler of
// its own.
//
// What it carries. A type code and a text. The code is 0 but for two cases:
// -1 for a failed status check and -2 for an operation that needs a
// registered client. The status of the transport chooses the class and is
// never the code. The text is the transport's, or one of those in
// docs/errors.md.
//
// Irregular, on purpose. Without a registered client,
// OvMEMConnection::getSharedClients throws a pointer that the catcher deletes
// (docs/irregularities.md#pointer-throw), and unregisterClient throws the
// client exceptions as a plain Exception
// (docs/irregularities.md#plain-exception).
//
// What it is not. No class has a virtual function and none derives from
// std::exception; the interface is fixed so. Catch that pointer as an
// OvMEMProtocolException* and delete it as such, never through a pointer to a
// base class.
//
// Threads: plain values that share nothing.
//
// Every class bears the export mark because a handler in the application
// matches by type information, which must be the library's own.

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Client {

// The root of the family. Thrown as such by unregisterClient only.
class OVMEM_EXPORT Exception {
public:
    // Both parts as given.
    Exception(int type, const std::string& message);
    // Type code 0.
    Exception(const std::string& message);
    Exception(const Exception& other);
    Exception& operator=(const Exception& other);
    ~Exception();

    int getType() const;

    // Valid while this object lives.
    const std::string& getMessage() const;

private:
    int reserved;         // copied, never read: keeps the layout
    int type;             // 0 unless a constructor received one
    std::string message;  // as a constructor received it
};

// The constructors of the classes below are declared one by one, not
// inherited, so that each exists as an exported symbol.

// The common base of everything but the plain Exception; never thrown itself.
class OVMEM_EXPORT OvMEMException : public Exception {
public:
    OvMEMException(int type, const std::string& message);
    OvMEMException(const std::string& message);
    OvMEMException(const OvMEMException& other);
    OvMEMException& operator=(const OvMEMException& other);
    ~OvMEMException();
};

// Thrown when the service cannot be reached or a connection to it broke, and
// by getStatus in place of every client exception. The caller can try again
// later.
class OVMEM_EXPORT OvMEMConnectionException : public OvMEMException {
public:
    OvMEMConnectionException(int type, const std::string& message);
    OvMEMConnectionException(const std::string& message);
    OvMEMConnectionException(const OvMEMConnectionException& other);
    OvMEMConnectionException& operator=(const OvMEMConnectionException& other);
    ~OvMEMConnectionException();
};

// Thrown when a request was not accepted as it stands, or could not be formed:
// for instance by an operation that needs a registered client. The caller can
// fix the request, or register again; as things are, it will fail again. Also
// thrown for a transport that writes past its buffer, which nobody can fix from
// within the process.
class OVMEM_EXPORT OvMEMProtocolException : public OvMEMException {
public:
    OvMEMProtocolException(int type, const std::string& message);
    OvMEMProtocolException(const std::string& message);
    OvMEMProtocolException(const OvMEMProtocolException& other);
    OvMEMProtocolException& operator=(const OvMEMProtocolException& other);
    ~OvMEMProtocolException();
};

// Thrown when the transport or a conversion failed on its own account. The
// caller can try again; if it persists, the platform needs attention.
class OVMEM_EXPORT OvMEMRuntimeException : public OvMEMException {
public:
    OvMEMRuntimeException(int type, const std::string& message);
    OvMEMRuntimeException(const std::string& message = std::string());
    OvMEMRuntimeException(const OvMEMRuntimeException& other);
    OvMEMRuntimeException& operator=(const OvMEMRuntimeException& other);
    ~OvMEMRuntimeException();
};

// Thrown for a transport status that is not in the table of docs/errors.md.
// The caller can report the text; it is the transport's own.
class OVMEM_EXPORT OvMEMUnrecognisedException : public OvMEMException {
public:
    OvMEMUnrecognisedException(int type, const std::string& message);
    OvMEMUnrecognisedException(const std::string& message);
    OvMEMUnrecognisedException(const OvMEMUnrecognisedException& other);
    OvMEMUnrecognisedException& operator=(
        const OvMEMUnrecognisedException& other);
    ~OvMEMUnrecognisedException();
};

}  // namespace Client
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
