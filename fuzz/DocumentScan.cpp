#include "OvMemCppBinding/util/XmlStream.h"
#include "fuzz/Fuzz.h"

// The search for a root namespace, against one by hand, and for a tag in any
// text. Of the input, the first line is the key and the rest the document.

namespace {

using Orvane::Net::OvModelEventManager::Util::XmlStream;

// The root's namespace, looked for a character at a time.
std::string namespaceByHand(const std::string& text) {
    std::size_t at = 0;
    while (at < text.size() && text[at] != '<')
        ++at;
    if (at < text.size() && text.substr(at, 5) == "<?xml") {
        at = 1;
        while (at < text.size() && text[at] != '<')
            ++at;
    }
    if (at >= text.size())
        return std::string();
    std::string name;
    std::size_t end = ++at;
    while (end < text.size() && text[end] != ' ' && text[end] != '>')
        name += text[end++];
    if (end < text.size() && text[end] == '>')
        return std::string();
    const std::size_t colon = name.find(':');
    const std::string declaration =
        colon == std::string::npos ? "xmlns=\""
                                   : "xmlns:" + name.substr(0, colon) + "=\"";
    std::string uri;
    while (at < text.size() &&
           text.compare(at, declaration.size(), declaration) != 0)
        ++at;
    if (at < text.size())
        at += declaration.size();
    while (at < text.size() && text[at] != '"')
        uri += text[at++];
    return uri;
}

void scanFor(const std::string& document, const std::string& key,
             bool startTag) {
    const std::size_t at = XmlStream::findElementTag(document, key, startTag);
    const std::string opening = startTag ? "<" : "</";
    const std::string uri = key.substr(0, key.find('^'));
    const std::string local = key.substr(key.find('^') + 1);
    Fuzz::require(document.find(uri) != std::string::npos ||
                      at == document.find(opening + local),
                  "a tag of an unknown namespace has no prefix");
    if (at != std::string::npos) {
        Fuzz::require(document.compare(at, opening.size(), opening) == 0,
                      "a tag begins there");
        Fuzz::require(
            document.find(local, at + opening.size()) != std::string::npos,
            "the name stands in it");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string document = Fuzz::textOf(data, size);
    const std::string key = Fuzz::takeUntil(document, '\n');
    Fuzz::require(
        XmlStream::getRootNamespace(document) == namespaceByHand(document),
        "the namespace is the one found by hand");
    scanFor(document, key, true);
    scanFor(document, key, false);
    return 0;
}
