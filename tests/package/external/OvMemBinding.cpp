// A transport that answers every request with the same document, into which it
// writes the value of the header "Logged-By", if the request has one.

#include "OvMemCppBinding/platform/OvMemBinding.h"

#include <cstring>
#include <string>

namespace {

std::string request;
bool replied = false;
int asked = 0;  // times that the client has asked for a status

std::string loggedBy() {
    const std::string name = "\nLogged-By=";
    const std::size_t begin = request.find(name);
    if (begin == std::string::npos)
        return "nobody";
    const std::size_t value = begin + name.size();
    return request.substr(value, request.find('\r', value) - value);
}

std::string reply() {
    return "<ids><sharedClients>external-transport</sharedClients>"
           "<sharedClients>" +
           loggedBy() + "</sharedClients></ids>";
}

}  // namespace

int32_t OvMem_Init(OvMemAllocate, OvMemRelease) {
    return 0;
}

int32_t OvMem_Term() {
    return 0;
}

int32_t OvMem_Send(const char* text) {
    return OvMem_SendNoAck(text);
}

int32_t OvMem_SendNoAck(const char* text) {
    request += text;
    return 1;
}

int32_t OvMem_SendEOF() {
    return 0;
}

int32_t OvMem_Receive(char* buffer) {
    if (asked < 2)
        return asked++ == 0 ? 19 : 20;
    if (replied)
        return -1;
    replied = true;
    const std::string text = reply();
    std::memcpy(buffer, text.data(), text.size());
    return static_cast<int32_t>(text.size());
}

int32_t OvMem_Complete() {
    request.clear();
    replied = false;
    asked = 0;
    return 0;
}

int32_t OvMem_GetLastError(const char** text) {
    *text = "the external transport knows no error";
    return 0;
}
