#include "tests/faults/ReplyDocument.h"

#include <map>
#include <stdexcept>

#include "tests/support/Quoted.h"
#include "tests/support/Thrown.h"

namespace OvMemTest {

namespace {

const std::string head = "<r><sharedClients>x1</sharedClients>";
const std::string tail = "<sharedClients>y2</sharedClients></r>";

std::string filledUp(std::string text) {
    text.resize(1100, ' ');
    return text;
}

std::string withoutBlanks(std::string text) {
    std::erase(text, ' ');
    return text;
}

// What the XML library says of a document that was cut, by what is left of it
// without its blanks: the column and the message.
struct Complaint {
    int column;
    std::string message;
};

Complaint unended(int column) {
    return {column, "expected end of tag 'sharedClients'"};
}

Complaint nameless(int column) {
    return {column, "element name expected"};
}

const std::map<std::string, Complaint> complaints{
    {tail, {34, "comment or processing instruction expected"}},
    {"<" + tail, nameless(2)},
    {"<r" + tail, {3, "unterminated start tag 'r'"}},
    {"<r><sharedClients>" + tail, unended(54)},
    {"<r><sharedClients>x" + tail, unended(55)},
    {"<r><sharedClients>x1" + tail, unended(56)},
    {"<r><sharedClients>x1<" + tail, nameless(22)},
    {head, {1102, "invalid character 0x0"}},
    {head + "<", nameless(1102)},
    {head + "<s", {1103, "unexpected end of input"}},
    {head + "<sharedClients>y2<", nameless(1119)},
    {head + "<sharedClients>y2</", unended(1120)},
    {head + "<sharedClients>y2</s", unended(1120)},
    {head + "<sharedClients>y2</sh", unended(1120)},
};

Complaint complaintAbout(const std::string& reply) {
    const std::string document = withoutBlanks(reply);
    if (document.empty()) {
        return {static_cast<int>(reply.size()) + 1,
                "invalid document structure"};
    }
    const auto complaint = complaints.find(document);
    if (complaint == complaints.end()) {
        throw std::logic_error("unforeseen document " + inQuotes(document));
    }
    return complaint->second;
}

}  // namespace

std::string firstReplyChunk() {
    return filledUp(head);
}

std::string secondReplyChunk() {
    return filledUp(tail);
}

std::vector<std::string> identifiersIn(const std::string& reply) {
    if (withoutBlanks(reply) == head + tail) {
        return {"x1", "y2"};
    }
    const auto [column, message] = complaintAbout(reply);
    throw Thrown{"DomException", 0,
                 "Fatal Error: parsing: From-String: line 1, char " +
                     std::to_string(column) + "\nMessage: " + message + "\n"};
}

}  // namespace OvMemTest
