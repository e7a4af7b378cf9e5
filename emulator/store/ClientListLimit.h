#ifndef EMULATOR_STORE_CLIENTLISTLIMIT_H
#define EMULATOR_STORE_CLIENTLISTLIMIT_H

#include <string>
#include <vector>

#include "emulator/store/StoreError.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// One more client would make the list of a server too long.
class ClientListTooLong : public StoreError {
public:
    ClientListTooLong();
};

// Clients read the list of all the others with each of their calls. If it
// became longer than they can read, whoever registered last would lock out
// everybody else. So there is a limit, which is kept where a client is added:
// what they need to read the list, as an XmlPlatformGuard counts it, may come
// to 60000000 bytes. For each client that is 400 bytes, its identity, and 44
// bytes for each byte by which its identity grows when it is escaped.
//
// That is room for 140,000 identities of 20 bytes, or for 990 of 60,000. The
// tool grants 64 MiB.
//
// THROWS: ClientListTooLong.
void requireReadable(const std::vector<std::string>& clients);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
