#include "OvMemCppBinding/util/XmlStream.h"

#include <string_view>

#include "OvMemCppBinding/util/ValueText.h"

namespace Orvane::Net::OvModelEventManager::Util {

namespace {

constexpr std::string_view declaration = "<?xml";
constexpr std::string_view xmlns = "xmlns";
constexpr std::string_view valueBegin = "=\"";

// The prefix that the document declares for the URI written at `uri`; empty
// for a default namespace and for a URI that no declaration stands before.
std::string declaredPrefix(const std::string& document, std::size_t uri) {
    if (uri < xmlns.size() + valueBegin.size())
        return std::string();
    const std::size_t prefixEnd = uri - valueBegin.size();
    const std::size_t declared =
        document.rfind(xmlns, prefixEnd - xmlns.size());
    if (declared == std::string::npos)
        return std::string();
    std::size_t prefix = declared + xmlns.size();
    if (document[prefix] == ':')
        ++prefix;
    return prefix < prefixEnd ? document.substr(prefix, prefixEnd - prefix)
                              : std::string();
}

}  // namespace

XmlStream::XmlStream() : prefixCounter(0), firstElement(true) {}

XmlStream::~XmlStream() = default;

bool XmlStream::isFirstElement() const {
    return firstElement;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface is given.
void XmlStream::addNamespaces(std::set<std::string> uris) {
    for (const std::string& uri : uris)
        addNamespace(uri);
}

bool XmlStream::addNamespace(const std::string& uri) {
    if (prefixes.find(uri) != prefixes.end())
        return false;
    prefixes[uri] = "ns" + toString(prefixCounter);
    ++prefixCounter;
    return true;
}

void XmlStream::popNamespaceScope(const std::string& uri) {
    if (scopeFlags.empty())
        return;
    const bool introduced = scopeFlags.back();
    scopeFlags.pop_back();
    if (introduced)
        prefixes.erase(uri);
}

std::string XmlStream::getPrefix(const std::string& uri) const {
    const auto found = prefixes.find(uri);
    return found == prefixes.end() ? std::string() : found->second;
}

std::string XmlStream::startElement(const std::string& uri,
                                    const std::string& name) {
    std::string tag = "\n<" + qualifiedName(uri, name);
    if (firstElement) {
        for (const auto& [declaredUri, prefix] : prefixes)
            tag += attribute("xmlns:" + prefix, declaredUri);
        firstElement = false;
    }
    return tag;
}

std::string XmlStream::startElement(
    const std::string& uri, const std::string& name,
    const std::vector<std::pair<std::string, std::string>>& attributes) {
    std::string tag = startElement(uri, name);
    for (const auto& [attributeName, value] : attributes)
        tag += attribute(attributeName, value);
    return tag + closeStartTag(false);
}

std::string XmlStream::attribute(const std::string& name,
                                 const std::string& value) {
    return " " + name + "=\"" + value + "\"";
}

std::string XmlStream::closeStartTag(bool empty) {
    return empty ? "/>" : ">";
}

std::string XmlStream::endElement(const std::string& uri,
                                  const std::string& name) {
    return "</" + qualifiedName(uri, name) + ">";
}

std::string XmlStream::qualifiedName(const std::string& uri,
                                     const std::string& name) const {
    if (name.find(':') != std::string::npos)
        return name;
    const std::string prefix = getPrefix(uri);
    return prefix.empty() ? name : prefix + ":" + name;
}

std::string XmlStream::getRootNamespace(const std::string& document) {
    std::size_t root = document.find('<');
    if (root == std::string::npos)
        return std::string();
    // Deliberate: index 1, not root + 1.
    // See docs/irregularities.md#declaration-is-skipped-from-index-one.
    if (document.compare(root, declaration.size(), declaration) == 0)
        root = document.find('<', 1);
    if (root == std::string::npos)
        return std::string();

    const std::size_t name = root + 1;
    const std::size_t space = document.find(' ', name);
    if (document.find('>', name) < space)
        return std::string();
    const std::string tag = document.substr(name, space - name);
    const std::size_t colon = tag.find(':');
    std::string sought(xmlns);
    if (colon != std::string::npos)
        sought.append(":").append(tag, 0, colon);
    sought += valueBegin;

    const std::size_t attribute = document.find(sought, name);
    if (attribute == std::string::npos)
        return std::string();
    const std::size_t value = attribute + sought.size();
    return document.substr(value, document.find('"', value) - value);
}

std::size_t XmlStream::findElementTag(const std::string& document,
                                      const std::string& key, bool startTag) {
    const std::size_t caret = key.find('^');
    const std::string uri = key.substr(0, caret);
    const std::string local =
        caret == std::string::npos ? key : key.substr(caret + 1);

    std::string tag = startTag ? "<" : "</";
    const std::size_t uriText = document.find(uri);
    if (!uri.empty() && uriText != std::string::npos) {
        const std::string prefix = declaredPrefix(document, uriText);
        if (!prefix.empty())
            tag += prefix + ":";
    }
    // Deliberate: a longer name that begins alike is a match, too.
    // See docs/irregularities.md#first-match-wins.
    return document.find(tag + local);
}

}  // namespace Orvane::Net::OvModelEventManager::Util
