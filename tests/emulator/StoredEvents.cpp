#include "tests/emulator/StoredEvents.h"

#include <cstdint>

#include <SQLiteCpp/SQLiteCpp.h>

#include "tests/emulator/SealedRows.h"

namespace OvMemTest {

void storeEvents(const std::string& path, int count, const std::string& body) {
    SQLite::Database file(path, SQLite::OPEN_READWRITE, 10000);
    SQLite::Transaction transaction(file);
    const std::int64_t first =
        file.execAndGet("SELECT next FROM server WHERE id = 1").getInt64();
    const std::int64_t start =
        file.execAndGet("SELECT bytes FROM server WHERE id = 1").getInt64();
    const auto size = static_cast<std::int64_t>(body.size());
    SQLite::Statement event(file,
                            "INSERT INTO event VALUES (1, ?1, "
                            "CAST('pump' AS BLOB), 0, 0, ?2, 0, ?3)");
    event.bindNoCopy(3, body.data(), static_cast<int>(body.size()));
    for (int i = 0; i < count; ++i) {
        event.bind(1, first + i);
        event.bind(2, start + i * size);
        event.exec();
        event.reset();
    }
    const std::string next = std::to_string(first + count);
    file.exec("UPDATE server SET next = " + next + ", bytes = " +
              std::to_string(start + count * size) + " WHERE id = 1");
    file.exec("UPDATE client SET cursor = " + next +
              " - 1 WHERE server = 1 AND name = CAST('pump' AS BLOB)");
    transaction.commit();
    sealRows(file);
}

}  // namespace OvMemTest
