#include "OvMemCppBinding/util/XmlStream.h"
#include "fuzz/Fuzz.h"

// The search for a root namespace and for a tag in any text. Of the input, the
// first line is the key and the rest the document.

namespace {

using Orvane::Net::OvModelEventManager::Util::XmlStream;

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
    const std::string root = XmlStream::getRootNamespace(document);
    Fuzz::require(document.find(root) != std::string::npos,
                  "the namespace stands there");
    Fuzz::require(root.find('"') == std::string::npos,
                  "a quote ends a namespace");
    scanFor(document, key, true);
    scanFor(document, key, false);
    return 0;
}
