#include "bench/Reply.h"

namespace Orvane::Net::OvModelEventManager::Bench {

std::vector<std::string> identifiers(std::size_t count) {
    constexpr std::size_t digits = 8;
    std::vector<std::string> ids;
    ids.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        ids.push_back("plant-7/pump-" +
                      std::string(digits - number.size(), '0') + number);
    }
    return ids;
}

std::string reply(std::size_t count) {
    std::string text = "\n<ns0:sharedClientIDs xmlns:ns0=\"";
    text += schemaNamespace;
    text += "\">";
    for (const std::string& id : identifiers(count)) {
        text += "<ns0:sharedClients>" + id + "</ns0:sharedClients>";
    }
    return text + "</ns0:sharedClientIDs>";
}

}  // namespace Orvane::Net::OvModelEventManager::Bench
