#include "stand-ins/data-access/set_up.h"

#include <sys/mman.h>

#include <cerrno>
#include <new>

namespace {

// The journal can only be changed while nobody else uses the file. It isn't worth a longer wait:
// the database also works with the journal that it has.
constexpr Clock::duration kLongestWaitForChange = std::chrono::seconds(1);

constexpr size_t kPage = 4096;

// The journal is copied into the database after so many pages. It stays short because each process
// that opens the database reads it.
constexpr int kPagesOfJournal = 100;

// Whether files of this file system can be mapped shared, tried with the file of the turns. SQLite
// itself only finds out after it has changed the journal. Without a file of the turns the answer is
// unknown, and the journal stays as it is.
enum class SharedMemory { Works, Fails, Unknown, NotNow };

SharedMemory trySharedMemory(int file) {
    if (file < 0) {
        return SharedMemory::Unknown;
    }
    void* const mapped = mmap(nullptr, kPage, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped != MAP_FAILED) {
        munmap(mapped, kPage);
        return SharedMemory::Works;
    }
    const bool mayWorkLater = errno == ENOMEM || errno == EAGAIN || errno == ENFILE;
    return mayWorkLater ? SharedMemory::NotNow : SharedMemory::Fails;
}

int32_t useWriteAheadJournal(sqlite3* connection) {
    // SQLite doesn't call the busy handler for this.
    const int32_t result = Moments(kLongestWaitForChange).whileIs(SQLITE_BUSY, [&] {
        return execute(connection, "PRAGMA journal_mode = WAL");
    });
    return result == SQLITE_BUSY ? SQLITE_OK : result;
}

// Converts a database with a write-ahead journal, which can't be used here. An exclusive connection
// can, because it needs no shared memory. It is a second connection: the first one would be
// unusable after it has read such a database.
int32_t leaveWriteAheadJournal(const char* database) {
    for (const bool toItself : {false, true}) {
        sqlite3* opened = nullptr;
        int32_t result =
            primaryCode(sqlite3_open_v2(database, &opened, SQLITE_OPEN_READWRITE, nullptr));
        const Handle connection(opened);
        if (result == SQLITE_OK && toItself) {
            result = execute(opened, "PRAGMA locking_mode = EXCLUSIVE");
        }
        if (result == SQLITE_OK) {
            result =
                execute(opened, toItself ? "PRAGMA journal_mode = DELETE" : "PRAGMA journal_mode");
        }
        if (result == SQLITE_OK || result == SQLITE_BUSY || result == SQLITE_NOMEM || toItself) {
            return result;
        }
    }
    return SQLITE_OK;
}

int32_t chooseJournal(Connection& connection) {
    const SharedMemory memory = trySharedMemory(connection.turns->processes.descriptor());
    if (memory == SharedMemory::NotNow) {
        return SQLITE_NOMEM;
    }
    if (memory == SharedMemory::Fails) {
        return leaveWriteAheadJournal(sqlite3_db_filename(connection.get(), "main"));
    }
    return memory == SharedMemory::Works ? useWriteAheadJournal(connection.get()) : SQLITE_OK;
}

int32_t setUp(Connection& connection) try {
    sqlite3* const handle = connection.get();
    int enforced = 0;
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_FKEY, 1, &enforced);
    int32_t result = enforced == 1 ? chooseJournal(connection) : SQLITE_ERROR;
    // With the write-ahead journal, EXTRA is the same as FULL. With a rollback journal it also
    // syncs the folder; otherwise the removed journal can reappear after a power loss and undo a
    // commit. A journal that has grown beyond the size limit is truncated to it.
    for (const char* const sql :
         {"PRAGMA synchronous = EXTRA", "PRAGMA journal_size_limit = 524288"}) {
        result = result == SQLITE_OK ? execute(handle, sql) : result;
    }
    if (result == SQLITE_OK) {
        result = primaryCode(sqlite3_wal_autocheckpoint(handle, kPagesOfJournal));
    }
    connection.transactions.prepareStatements();
    connection.noteJournal();
    connection.setUp = result == SQLITE_OK ? nullptr : setUp;
    return result;
} catch (const std::bad_alloc&) {
    return SQLITE_NOMEM;
}

}  // namespace

// On a full volume this succeeds, because the connection can still read.
int32_t configure(Connection& connection) {
    connection.setUp = setUp;
    const int32_t result = connection.attempt(Moments(kLongestWait), [] { return SQLITE_OK; });
    return result == SQLITE_FULL ? SQLITE_OK : result;
}

int32_t createFlatKeyTable(Connection& connection) {
    // WITHOUT ROWID: a set writes one B-tree, and a get searches one.
    constexpr const char* kCreate =
        "CREATE TABLE IF NOT EXISTS tbl_dal_key_dal_value ("
        "c_dal_key TEXT NOT NULL, c_dal_profile_no TEXT NOT NULL, c_dal_value TEXT NOT NULL, "
        "PRIMARY KEY(c_dal_key, c_dal_profile_no)) WITHOUT ROWID;";
    if (!connection.hasTable("tbl_dal_key_dal_value")) {
        const auto create = [&] { return execute(connection.get(), kCreate); };
        if (const int32_t result = connection.write(create)) {
            return result;
        }
    }
    // This is the last table of the set-up. Copying the journal into the database now means that
    // the database alone has all tables. If that fails, a later set does it.
    connection.once(Clock::time_point(), [&] {
        return sqlite3_wal_checkpoint_v2(connection.get(), "main", SQLITE_CHECKPOINT_PASSIVE,
                                         nullptr, nullptr);
    });
    return SQLITE_OK;
}

int32_t deleteFlatKeyTable(Connection& connection) {
    return connection.write(
        [&] { return execute(connection.get(), "DELETE FROM tbl_dal_key_dal_value;"); });
}
