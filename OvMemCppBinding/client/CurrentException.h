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
// the texts of the XML library's own exceptions, "xercesc::...", '?' stands for
// each UTF-16 unit that is not ASCII; every other text is given as it is.
// Outside a handler the answer is "No exception is being handled.".
//
// Ownership: only looks. The OvMEMProtocolException that getSharedClients
// throws by pointer (docs/irregularities.md#pointer-throw) belongs, before this
// call and after it, to whoever catches the pointer, who deletes it:
//
//     } catch (OvMEMProtocolException* pointer) {
//         std::cerr << describeCurrentException() << "\n";
//         delete pointer;
//     } catch (...) {
//
// A catch (...) cannot delete it. At the end of main that does no harm: the
// process loses one small object as it ends. Elsewhere each such exception
// costs its object.
//
// THROWS: std::bad_alloc. Threads: any; one exception may be described as often
// as you like, also on several threads at once, until it is deleted.
OVMEM_EXPORT std::string describeCurrentException();

}  // namespace Client
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
