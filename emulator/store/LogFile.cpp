#include "emulator/store/LogFile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

namespace Orvane::Net::OvModelEventManager::Emulator {

namespace {

constexpr int logHeader = 32;        // bytes
constexpr std::size_t logSalt = 16;  // where it is
constexpr std::size_t indexLength = 16;
constexpr std::size_t indexSalt = 32;
constexpr std::size_t saltSize = 8;
constexpr int indexRegion = 32768;

sqlite3_file* fileOf(SQLite::Database& database, int which) {
    sqlite3_file* file = nullptr;
    ::sqlite3_file_control(database.getHandle(), "main", which, &file);
    return file && file->pMethods ? file : nullptr;
}

}  // namespace

// SQLite writes the same random salt into the header of a log and into its
// index. Its own mapping is read, since closing another descriptor of the file
// would take its locks away.
bool isLogOfIndex(SQLite::Database& database) {
    sqlite3_file* const file = fileOf(database, SQLITE_FCNTL_FILE_POINTER);
    sqlite3_file* const log = fileOf(database, SQLITE_FCNTL_JOURNAL_POINTER);
    void volatile* region = nullptr;
    if (!file || !log || file->pMethods->iVersion < 2 ||
        file->pMethods->xShmMap(file, 0, indexRegion, 0, &region) !=
            SQLITE_OK ||
        !region) {
        return true;
    }
    std::array<char, 48> index{};
    std::memcpy(index.data(), const_cast<const void*>(region), index.size());
    std::uint32_t frames = 0;
    std::memcpy(&frames, index.data() + indexLength, sizeof(frames));
    if (frames == 0) {
        return true;
    }
    std::array<char, logHeader> header{};
    return log->pMethods->xRead(log, header.data(), logHeader, 0) ==
               SQLITE_OK &&
           std::memcmp(header.data() + logSalt, index.data() + indexSalt,
                       saltSize) == 0;
}

bool writeBackLog(SQLite::Database& database) {
    database.setBusyTimeout(0);
    SQLite::Statement checkpoint(database, "PRAGMA wal_checkpoint(PASSIVE)");
    return checkpoint.executeStep() && checkpoint.getColumn(0).getInt() == 0 &&
           checkpoint.getColumn(1).getInt() == checkpoint.getColumn(2).getInt();
}

}  // namespace Orvane::Net::OvModelEventManager::Emulator
