#include "tests/emulator/SealedRows.h"

#include <cstdint>
#include <string>

#include "emulator/store/EventChecksum.h"
#include "emulator/store/StoreRows.h"

namespace OvMemTest {

using namespace Orvane::Net::OvModelEventManager::Emulator;

namespace {

void sealEvents(SQLite::Database& store) {
    SQLite::Statement events(
        store,
        "SELECT rowid, server, number, sender, start, time, body FROM event");
    SQLite::Statement seal(
        store, "UPDATE event SET origin = ?2, checksum = ?3 WHERE rowid = ?1");
    while (events.executeStep()) {
        const std::string sender = events.getColumn(3).getString();
        const std::int64_t origin = originChecksum(
            {events.getColumn(1).getInt64(), events.getColumn(2).getInt64(),
             sender, events.getColumn(4).getInt64(),
             events.getColumn(5).getInt64()});
        seal.bind(1, events.getColumn(0).getInt64());
        seal.bind(2, origin);
        seal.bind(3, eventChecksum(origin, events.getColumn(6).getString()));
        seal.exec();
        seal.reset();
    }
}

std::int64_t sealClients(SQLite::Database& store, std::int64_t server) {
    SQLite::Statement clients(
        store, "SELECT name, cursor FROM client WHERE server = ?1");
    SQLite::Statement seal(store,
                           "UPDATE client SET checksum = ?3 "
                           "WHERE server = ?1 AND name = ?2");
    clients.bind(1, server);
    std::int64_t members = 0;
    while (clients.executeStep()) {
        const std::string name = clients.getColumn(0).getString();
        seal.bind(1, server);
        seal.bind(2, name.data(), static_cast<int>(name.size()));
        seal.bind(
            3, clientChecksum(server, name, clients.getColumn(1).getInt64()));
        seal.exec();
        seal.reset();
        members = plus(members, memberMark(name));
    }
    return members;
}

}  // namespace

void sealRows(SQLite::Database& store) {
    SQLite::Transaction transaction(store);
    sealEvents(store);
    SQLite::Statement servers(store,
                              "SELECT id, next, epoch, bytes, name "
                              "FROM server");
    SQLite::Statement seal(
        store, "UPDATE server SET members = ?2, checksum = ?3 WHERE id = ?1");
    while (servers.executeStep()) {
        const std::int64_t id = servers.getColumn(0).getInt64();
        const ServerRow row{id, servers.getColumn(1).getInt64(),
                            servers.getColumn(2).getInt64(),
                            servers.getColumn(3).getInt64(),
                            sealClients(store, id)};
        seal.bind(1, row.id);
        seal.bind(2, row.members);
        seal.bind(3, row.checksum(servers.getColumn(4).getString()));
        seal.exec();
        seal.reset();
    }
    transaction.commit();
}

}  // namespace OvMemTest
