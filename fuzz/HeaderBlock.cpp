#include <map>

#include "OvMemCppBinding/client/OvMEMRequest.h"
#include "fuzz/Fuzz.h"

// A header block of any names and values, against one written by hand. Of the
// input, each two lines are a name and its value; a line ends at its NUL too.

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Orvane::Net::OvModelEventManager::Client::OvMEMRequest request;
    std::map<std::string, std::string> headers;
    for (std::string lines = Fuzz::textOf(data, size); !lines.empty();) {
        const std::string name = Fuzz::takeUntil(lines, '\n').c_str();
        const std::string value = Fuzz::takeUntil(lines, '\n').c_str();
        request.setHeader(name.c_str(), value.c_str());
        headers.try_emplace(name, value);
    }
    std::string block;
    for (const auto& [name, value] : headers) {
        block += name + "=" + (value == "null" ? "" : value) + "\r\n";
    }
    Fuzz::require(request.buildHeaderBlock() == block + "\r\n",
                  "the block is as by hand");
    request.clearHeaders();
    Fuzz::require(request.buildHeaderBlock() == "\r\n",
                  "clearing leaves the end alone");
    return 0;
}
