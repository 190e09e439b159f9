#include "stand-ins/data-access/journal.h"

#include <sys/mman.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "system/deleted_by.h"

namespace {

// The change of the journal wants the file to itself, and isn't worth more: a program that reads
// beside us for longer leaves the journal as it is.
constexpr Clock::duration kLongestWaitForChange = std::chrono::seconds(1);

constexpr size_t kPage = 4096;

// Executes a PRAGMA journal_mode; tells whether the journal is the write-ahead one now.
int32_t journalMode(sqlite3* connection, const char* sql, bool& isWriteAhead) {
    const auto look = [](void* is, int, char** values, char**) {
        *static_cast<bool*>(is) = values[0] != nullptr && std::strcmp(values[0], "wal") == 0;
        return 0;
    };
    return primaryCode(sqlite3_exec(connection, sql, look, &isWriteAhead, nullptr));
}

// SQLite finds out too late: it changes the journal, and the first use of it fails. So the file of
// the turns, which is beside the database, is mapped. Where there is none, nothing is known, and
// the database stays as it is.
enum class SharedMemory { kWorks, kFails, kUnknown };

int32_t trySharedMemory(int file, SharedMemory& memory) {
    memory = SharedMemory::kUnknown;
    if (file < 0) {
        return SQLITE_OK;
    }
    void* const mapped = mmap(nullptr, kPage, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped != MAP_FAILED) {
        munmap(mapped, kPage);
        memory = SharedMemory::kWorks;
        return SQLITE_OK;
    }
    memory = SharedMemory::kFails;
    return errno == ENOMEM || errno == EAGAIN || errno == ENFILE ? SQLITE_NOMEM : SQLITE_OK;
}

int32_t useWriteAheadJournal(sqlite3* connection) {
    // Not waited for by SQLite's busy handler.
    const Moments moments(kLongestWaitForChange);
    bool isWriteAhead = false;
    int32_t result = SQLITE_OK;
    do {
        result = journalMode(connection, "PRAGMA journal_mode = WAL", isWriteAhead);
    } while (result == SQLITE_BUSY && moments.pass());
    return result == SQLITE_BUSY ? SQLITE_OK : result;
}

// Makes a database whose journal can't be used here usable. Not on the connection that is to use
// it: it would be spoilt by the first look into a database with a write-ahead journal. Who has the
// database to itself needs no shared memory for that journal.
int32_t leaveWriteAheadJournal(const char* database) {
    for (const bool toItself : {false, true}) {
        sqlite3* opened = nullptr;
        int32_t result =
            primaryCode(sqlite3_open_v2(database, &opened, SQLITE_OPEN_READWRITE, nullptr));
        const std::unique_ptr<sqlite3, DeletedBy<sqlite3_close>> connection(opened);
        if (result == SQLITE_OK && toItself) {
            result = execute(opened, "PRAGMA locking_mode = EXCLUSIVE");
        }
        bool isWriteAhead = false;
        if (result == SQLITE_OK) {
            result = journalMode(opened,
                                 toItself ? "PRAGMA journal_mode = DELETE" : "PRAGMA journal_mode",
                                 isWriteAhead);
        }
        if (result == SQLITE_OK || result == SQLITE_BUSY || result == SQLITE_NOMEM || toItself) {
            return result;
        }
    }
    return SQLITE_OK;
}

}  // namespace

int32_t chooseJournal(Connection& connection) {
    SharedMemory memory = SharedMemory::kUnknown;
    if (const int32_t result = trySharedMemory(connection.turns->processes.descriptor(), memory)) {
        return result;
    }
    if (memory == SharedMemory::kFails) {
        return leaveWriteAheadJournal(sqlite3_db_filename(connection.get(), "main"));
    }
    bool isWriteAhead = false;
    const int32_t result = journalMode(connection.get(), "PRAGMA journal_mode", isWriteAhead);
    if (result != SQLITE_OK || isWriteAhead || memory == SharedMemory::kUnknown) {
        return result;
    }
    return useWriteAheadJournal(connection.get());
}
