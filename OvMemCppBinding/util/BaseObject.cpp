#include "OvMemCppBinding/util/BaseObject.h"

#include <new>

#include "OvMemCppBinding/util/XmlStream.h"

namespace Orvane::Net::OvModelEventManager::Util {

BaseObject::BaseObject() : refCount(0) {}

BaseObject::BaseObject(const char* uri)
    : namespaceURI(uri == nullptr ? "" : uri), refCount(0) {}

// Deliberate: copies take the count along.
// See docs/irregularities.md#copied-reference-count.
BaseObject::BaseObject(const BaseObject& other) = default;

BaseObject& BaseObject::operator=(const BaseObject& other) = default;

BaseObject::~BaseObject() = default;

void BaseObject::ref() {
    ++refCount;
}

void BaseObject::addRef() {
    ref();
}

void BaseObject::unref() {
    --refCount;
    if (refCount == 0)
        delete this;
}

void BaseObject::removeRef() {
    unref();
}

int BaseObject::askRefCount() const {
    return refCount;
}

BaseObject* BaseObject::clone() {
    BaseObject* copy = reallyClone();
    copy->refCount = 0;
    return copy;
}

bool BaseObject::outputXMLBase(XmlStream& stream,
                               const std::string& elementName,
                               const char*) const {
    const bool first = stream.isFirstElement();
    if (first) {
        std::set<std::string> namespaces;
        getNamespaces(namespaces);
        stream.addNamespaces(namespaces);
    }
    stream << stream.startElement(namespaceURI, elementName);
    // Without memory a stream says nothing and cuts the text short.
    if (!stream.good())
        throw std::bad_alloc();
    return first;
}

}  // namespace Orvane::Net::OvModelEventManager::Util
