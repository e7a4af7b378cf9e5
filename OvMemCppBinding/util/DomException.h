#ifndef OVMEMCPPBINDING_UTIL_DOMEXCEPTION_H
#define OVMEMCPPBINDING_UTIL_DOMEXCEPTION_H

#include <string>

#include "OvMemCppBinding/Export.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Util {

// The one exception of the XML layer: a reply was not well-formed XML, or did
// not have the expected shape.
//
// It carries a text, often of several lines with a line feed at the end, and
// nothing else. It belongs to no family: neither the client's Exception nor
// std::exception catches it.
//
// Thrown by value, caught by reference. Threads: a plain value.
class OVMEM_EXPORT DomException {
public:
    DomException();
    DomException(const std::string& message);
    DomException(const DomException& other);
    DomException& operator=(const DomException& other);
    virtual ~DomException();

    // Replaces the text.
    virtual void setMessage(const std::string& message);

    // The text, byte for byte as given. Valid while this object lives.
    virtual const std::string& getMessage();

private:
    std::string message;
};

}  // namespace Util
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
