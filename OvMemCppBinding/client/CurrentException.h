#ifndef OVMEMCPPBINDING_CLIENT_CURRENTEXCEPTION_H
#define OVMEMCPPBINDING_CLIENT_CURRENTEXCEPTION_H

#include <string>

#include "OvMemCppBinding/Export.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Client {

// Says in words what is being handled. For a catch (...):
//
//     } catch (...) {
//         std::cerr << describeCurrentException() << "\n";
//     }
//
// Knows whatever can escape from this library, and answers with class, type
// code (if the class has one), text, and on a line of its own what to do:
//
//     OvMEMConnectionException (0): Connection refused
//     What to do: check that the service can be reached, then try again.
//
// The text of the exception may have several lines; what to do is the last. In
// texts of the XML library, '?' stands for what is not ASCII. Outside a handler
// the answer is "No exception is being handled.".
//
// Ownership: deletes the exception that getSharedClients throws by pointer
// (docs/irregularities.md#pointer-throw), and any other OvMEMProtocolException
// that was thrown so; it must come from new. A null pointer takes its place for
// whoever catches it after this call. A handler that has taken the pointer
// before the call must not delete it afterwards.
//
// THROWS: std::bad_alloc. Threads: any.
OVMEM_EXPORT std::string describeCurrentException();

}  // namespace Client
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
