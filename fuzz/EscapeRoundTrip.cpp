#include <map>

#include "OvMemCppBinding/util/XmlEscape.h"
#include "fuzz/Fuzz.h"

// Escaping and unescaping any text, against the plainest way to do so.

namespace {

using namespace Orvane::Net::OvModelEventManager::Util;

const std::map<char, std::string> forms{
    {'\t', "&#9;"}, {'\n', "&#10;"},  {'"', "&quot;"}, {'%', "&#x25;"},
    {'&', "&amp;"}, {'\'', "&apos;"}, {'<', "&lt;"},   {'>', "&gt;"}};

std::string plainEscape(const std::string& text) {
    std::string escaped;
    for (const char byte : text) {
        escaped += forms.contains(byte) ? forms.at(byte) : std::string(1, byte);
    }
    return escaped;
}

std::string plainUnescape(std::string text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        for (const auto& [byte, form] : forms) {
            if (text.compare(at, form.size(), form) == 0) {
                text.replace(at, form.size(), 1, byte);
                break;
            }
        }
    }
    return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Fuzz::textOf(data, size);
    Fuzz::require(escape(text) == plainEscape(text),
                  "escape does as the plain one");
    Fuzz::require(unescape(text) == plainUnescape(text),
                  "unescape does as the plain one");
    Fuzz::require(unescape(escape(text)) == text, "unescape undoes escape");
    return 0;
}
