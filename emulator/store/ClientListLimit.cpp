#include "emulator/store/ClientListLimit.h"

#include <cstddef>

#include "OvMemCppBinding/util/XmlEscape.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr std::size_t mostBytes = 60000000;
constexpr std::size_t bytesOfAClient = 400;

// The reader gets an escaped character alone, and what follows it as another
// piece of text. Each piece costs 64 bytes beside its text, and escaping makes
// a character longer by at least three bytes.
constexpr std::size_t bytesOfAnEscapedByte = 44;

std::size_t price(const std::string& id) {
    const std::size_t escaped = Util::escape(id).size();
    return bytesOfAClient + id.size() +
           bytesOfAnEscapedByte * (escaped - id.size());
}

}  // namespace

ClientListTooLong::ClientListTooLong()
    : StoreError(
          "The list of the server's clients would become too long to be "
          "read.") {}

void requireReadable(const std::vector<std::string>& clients) {
    std::size_t total = 0;
    for (const std::string& id : clients) {
        total += price(id);
    }
    if (total > mostBytes) {
        throw ClientListTooLong();
    }
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
