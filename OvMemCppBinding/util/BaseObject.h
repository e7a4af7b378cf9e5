#ifndef OVMEMCPPBINDING_UTIL_BASEOBJECT_H
#define OVMEMCPPBINDING_UTIL_BASEOBJECT_H

#include <set>
#include <string>

#include "OvMemCppBinding/Export.h"

namespace Orvane {
namespace Net {
namespace OvModelEventManager {
namespace Util {

class XmlStream;

// The base of every schema object: its XML namespace, a reference count, a
// clone protocol and the beginning of its XML output.
//
// Ownership: an object begins with count 0 and belongs to its maker. Once
// ref() has been called it belongs to its holders: each calls unref() when
// done, and the call that brings the count to exactly 0 deletes the object.
//
//     SharedClientIDs* ids = new SharedClientIDs;
//     ids->ref();    // 1
//     ids->unref();  // 0: deleted
//
// An object on the stack, or held by a smart pointer, is never given to ref
// and unref.
//
// Threads: the count is a plain integer; share an object among threads only
// under a lock of your own.
class OVMEM_EXPORT BaseObject {
public:
    // Copies the count along with the namespace
    // (docs/irregularities.md#copied-reference-count). clone() is the copy
    // that begins with count 0.
    BaseObject(const BaseObject& other);
    BaseObject& operator=(const BaseObject& other);

protected:
    // First of the virtual functions: their order is part of the binary
    // interface.
    virtual ~BaseObject();

public:
    // Reference count.

    void ref();

    // An object that was never given to ref() survives, with count -1.
    void unref();

    int askRefCount() const;

    // Cloning.

    // A new object with count 0; the caller owns it.
    BaseObject* clone();

    // What a schema object provides.

    // A new copy of this object, made with its copy constructor; never null.
    virtual BaseObject* reallyClone() = 0;

    // Inserts every namespace URI that the object's XML uses.
    virtual void getNamespaces(std::set<std::string>& namespaces) const = 0;

protected:
    BaseObject();

    // A null `namespaceURI` counts as the empty text.
    BaseObject(const char* namespaceURI);

    // Inserts the start tag of this object, without its '>', into `stream`.
    // If it is the first of the document, makes the object's namespaces known
    // to the stream before. True if it was the first. `callerName` is not
    // used.
    //
    // THROWS: std::bad_alloc when the stream does not take the whole text, for
    // want of memory or because it was not good() before.
    bool outputXMLBase(XmlStream& stream, const std::string& elementName,
                       const char* callerName) const;

    std::string namespaceURI;  // of the object's element

private:
    void addRef();
    void removeRef();

    int refCount;  // 0 after construction; may fall below 0
};

}  // namespace Util
}  // namespace OvModelEventManager
}  // namespace Net
}  // namespace Orvane

#endif
