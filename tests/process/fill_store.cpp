// Fills a store of the emulator faster than programs could:
//
//     fill_store PATH events COUNT BYTES
//     fill_store PATH clients COUNT BYTES
//
// Both write to the file PATH, under the only server in it.
//
// events: queues so many texts of that length for every client; each is a line.
// clients: adds so many clients with names of that length. They begin with
//     numbers: "000001...", "000002...".

#include <cstdint>
#include <cstdio>
#include <string>

#include <SQLiteCpp/SQLiteCpp.h>

#include "tests/emulator/SealedRows.h"

namespace {

// One transaction for all of them: a put has one of its own.
void addEvents(SQLite::Database& database, int count, std::size_t bytes) {
    const std::int64_t server =
        database.execAndGet("SELECT id FROM server").getInt64();
    const std::int64_t next =
        database.execAndGet("SELECT next FROM server").getInt64();
    const std::int64_t start =
        database.execAndGet("SELECT bytes FROM server").getInt64();
    SQLite::Statement add(database,
                          "INSERT INTO event "
                          "(server, number, sender, origin, checksum, start, "
                          "time, body) "
                          "VALUES (?1, ?2, CAST('' AS BLOB), 0, 0, ?3, 0, ?4)");
    const auto length = static_cast<std::int64_t>(bytes);
    const std::string event = std::string(bytes - 1, 'x') + "\n";
    for (std::int64_t number = next; number < next + count; ++number) {
        add.bind(1, server);
        add.bind(2, number);
        add.bind(3, start + (number - next) * length);
        add.bindNoCopy(4, event.data(), static_cast<int>(event.size()));
        add.exec();
        add.reset();
    }
    database.exec("UPDATE server SET next = next + " + std::to_string(count) +
                  ", bytes = bytes + " + std::to_string(count * length));
}

// A registration answers with the whole list: so many would take minutes.
void addClients(SQLite::Database& database, int count, std::size_t bytes) {
    SQLite::Statement add(database,
                          "INSERT INTO client (server, name, cursor, checksum) "
                          "SELECT id, ?1, next - 1, 0 FROM server");
    for (int i = 1; i <= count; ++i) {
        std::string name = std::to_string(i);
        name.insert(0, 6 - name.size(), '0');
        name.resize(bytes, 'x');
        add.bindNoCopy(1, name.data(), static_cast<int>(name.size()));
        add.exec();
        add.reset();
    }
    database.exec("UPDATE server SET epoch = epoch + 1");
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 5) {
        std::fputs("usage: fill_store PATH events|clients COUNT BYTES\n",
                   stderr);
        return 2;
    }
    const std::string what = arguments[2];
    const int number = std::stoi(arguments[3]);
    const std::size_t bytes = std::stoul(arguments[4]);
    SQLite::Database database(arguments[1], SQLite::OPEN_READWRITE);
    SQLite::Transaction transaction(database);
    (what == "events" ? addEvents : addClients)(database, number, bytes);
    transaction.commit();
    OvMemTest::sealRows(database);
    return 0;
}
