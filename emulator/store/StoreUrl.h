#ifndef EMULATOR_STORE_STOREURL_H
#define EMULATOR_STORE_STOREURL_H

#include <memory>
#include <optional>
#include <string>

#include "emulator/store/EventStore.h"
#include "emulator/store/SqliteOptions.h"

namespace Orvane::Net::OvModelEventManager::Emulator {

// A store is named by one URL:
//
//     sqlite:PATH[?OPTION[&OPTION...]]
//         synchronous=NORMAL|FULL
//         access=OWNER|GROUP
//     memory:[?OPTION[&OPTION...]]
//
// Options of both:
//
//     portion=BYTES
//     dedupe=correlation
//     lease=SECONDS
//     limit-events=N
//     limit-bytes=N
//     limit-age=SECONDS
//
// No option may be given twice.

// What a URL says: the options of a SQLite store, or nothing for one in
// memory. A relative path becomes absolute, so that a later change of the
// working directory moves nothing.
//
// THROWS: StoreError for any other URL.
std::optional<SqliteOptions> parseStoreUrl(const std::string& url);

// The URL in OVMEM_STORE; without one, a file in the user's state folder:
// sqlite:${XDG_STATE_HOME:-$HOME/.local/state}/ovmem/events.db
//
// THROWS: StoreError when no variable says where that is.
std::string storeUrlOfEnvironment();

// The store of a URL, not yet opened.
//
// THROWS: StoreError.
std::unique_ptr<EventStore> openStore(const std::string& url);

}  // namespace Orvane::Net::OvModelEventManager::Emulator

#endif
