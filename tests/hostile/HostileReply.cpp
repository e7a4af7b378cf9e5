#include "tests/hostile/HostileReply.h"

#include <ostream>

namespace OvMemTest {

const std::size_t memoryLimit = OVMEM_HOSTILE_MEMORY_LIMIT;
const std::size_t many = OVMEM_HOSTILE_MANY;

std::ostream& operator<<(std::ostream& stream, const Fate& fate) {
    return stream << (fate.text.empty() ? "accepted\n" : fate.text) << "("
                  << fate.files << " files, " << fate.sockets << " sockets)";
}

std::vector<HostileReply> hostileReplies() {
    std::vector<HostileReply> all;
    for (const auto& table :
         {entityReplies(), encodingReplies(), characterReplies(),
          syntaxReplies(), floodReplies()}) {
        all.insert(all.end(), table.begin(), table.end());
    }
    return all;
}

std::string identifier(const std::string& text) {
    return "<r><sharedClients>" + text + "</sharedClients></r>";
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
