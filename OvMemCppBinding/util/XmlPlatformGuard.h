#ifndef OVMEMCPPBINDING_UTIL_XMLPLATFORMGUARD_H
#define OVMEMCPPBINDING_UTIL_XMLPLATFORMGUARD_H

#include <cstddef>
#include <memory>
#include <string>

#include "OvMemCppBinding/Export.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Util {

// Keeps the XML parser platform alive and on a short leash: for applications
// that do not trust their service, and for those that destroy connections
// while others live.
//
//     int main() {
//         XmlPlatformGuard guard;
//         OvMEMConnection connection;
//         ...
//     }
//
// As long as it lives:
//   - the platform stays: the first connection destroyed no longer ends it,
//     and constructing a connection costs next to nothing;
//   - the XML library opens no network connection, and no file but regular
//     files below the folder it was given, if any;
//   - a document with a DTD is refused, and with it every entity of its own
//     (after clearenv(), a document type that declares nothing and names no
//     other document, such as `<!DOCTYPE r>`, is accepted);
//   - the XML library holds no more memory than it was granted, on top of what
//     the platform itself takes, and the tree of a document no more than as
//     much again; what a parse that fails took goes back as a whole;
//   - a document nested deeper than 1000 elements is refused, since the time
//     that the XML library takes grows with the square of the depth;
//   - a parse that takes more than 750 ms of processor time is refused; for
//     each further 16 MiB that are granted it may take another 750 ms;
//   - where the XML library would end the process, it throws DomException.
//
// Whatever a reply does then ends as a DomException; docs/errors.md lists the
// texts, SECURITY.md says what it costs and what it does not protect from.
//
// It sets no feature of any reader: what a document within these limits means
// is the same with and without it. Our own readers have a memory manager for
// each parse and, until the guard ends, an advanced document handler and a
// lexical handler besides the usual handlers.
//
// Ownership: one for a process, held by the application from before its first
// connection to after its last. The platform is the process's: another user of
// the XML library in it is under the same rules as to files, network and
// memory. Its DTDs are refused through the environment variable
// XERCES_DISABLE_DTD, which child processes inherit. Our own parses do not
// depend on that variable, but for the exception above.
//
// Threads: construct and destroy it while no other thread uses the XML library
// or the environment. Under it, connections may be used on several threads at
// once, each on one; construct and destroy them one at a time.
class OVMEM_EXPORT XmlPlatformGuard {
public:
    // Opens no files. `memoryLimit` is in bytes.
    //
    // THROWS: DomException when the platform runs already, for its memory
    // could not be limited any more, and when it failed to start earlier;
    // std::bad_alloc, and what the XML library throws when it cannot start now.
    explicit XmlPlatformGuard(std::size_t memoryLimit = 16u * 1024u * 1024u);

    // Opens regular files below `folder` only, links followed.
    //
    // THROWS: as above; DomException when `folder` is not a folder.
    explicit XmlPlatformGuard(const std::string& folder,
                              std::size_t memoryLimit = 16u * 1024u * 1024u);

    // Lets the platform go. Connections that still live keep it until the
    // first of them is destroyed, without network, files and more memory as
    // before; DTDs, depth, time and size of a tree are no longer limited.
    ~XmlPlatformGuard();

private:
    XmlPlatformGuard(const XmlPlatformGuard&) = delete;
    XmlPlatformGuard& operator=(const XmlPlatformGuard&) = delete;

    class Platform;
    std::unique_ptr<Platform> platform;
};

}  // namespace Util
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
