#include "tests/hostile/HostileReply.h"

#include <functional>
#include <ostream>

#include "tests/support/Quoted.h"

namespace OvMemTest {

const std::size_t memoryLimit = OVMEM_HOSTILE_MEMORY_LIMIT;
const std::size_t many = OVMEM_HOSTILE_MANY;

std::ostream& operator<<(std::ostream& stream, const Fate& fate) {
    return stream << (fate.text.empty() ? "accepted\n" : fate.text)
                  << "(identifiers: " << fate.identifiers << "; " << fate.files
                  << " files, " << fate.sockets << " sockets)";
}

std::string inWords(const std::vector<std::string>& identifiers) {
    std::string words;
    std::size_t bytes = 0;
    for (const std::string& identifier : identifiers) {
        words += (words.empty() ? "" : ", ") + inQuotes(identifier);
        bytes += identifier.size();
    }
    if (words.size() <= 100) {
        return words;
    }
    return std::to_string(identifiers.size()) + " of " + std::to_string(bytes) +
           " bytes, hash " + std::to_string(std::hash<std::string>()(words));
}

std::vector<HostileReply> hostileReplies() {
    std::vector<HostileReply> all;
    for (const auto& table :
         {entityReplies(), encodingReplies(), characterReplies(),
          syntaxReplies(), floodReplies(), nameReplies()}) {
        all.insert(all.end(), table.begin(), table.end());
    }
    return all;
}

std::string identifier(const std::string& text) {
    return "<r><sharedClients>" + text + "</sharedClients></r>";
}

Fate accepting(const std::vector<std::string>& identifiers) {
    return {"", inWords(identifiers)};
}

Fate fatal(int line, int column, const std::string& message) {
    return {"Fatal Error: parsing: From-String: line " + std::to_string(line) +
            ", char " + std::to_string(column) + "\nMessage: " + message +
            "\n"};
}

Fate missing() {
    return {"XML Document 'From String' does not exist.\n"};
}

Fate unexpected(const std::string& child) {
    return {"Unexpected node name: " + child};
}

Fate libraryLimit() {
    return {"XmlPlatformGuard: the XML library may hold no more than " +
            std::to_string(memoryLimit) + " bytes"};
}

Fate treeLimit() {
    return {"XmlPlatformGuard: the tree of a document may hold no more than " +
            std::to_string(memoryLimit) + " bytes"};
}

Fate depthLimit() {
    return {
        "XmlPlatformGuard: a document may be nested no deeper than 1000 "
        "elements"};
}

Fate timeLimit() {
    return {
        "XmlPlatformGuard: the XML library may take no more than 750 ms of "
        "processor time for a document"};
}

Fate asking(Fate fate, int files, int sockets) {
    fate.files = files;
    fate.sockets = sockets;
    return fate;
}

HostileReply alike(const std::string& name, const std::string& document,
                   const Fate& fate) {
    return {name, {{document}}, fate, fate};
}

}  // namespace OvMemTest
