#include "stand-ins/data-access/configuration.h"

#include <chrono>

#include "stand-ins/data-access/transaction.h"

namespace {

constexpr int kBusyTimeoutMs = 10'000;

// The write-ahead journal, because a set must be on the disk when it returns and power can go at
// any moment: with full synchronisation it costs one fsync a commit, where a rollback journal costs
// three or four; a writer doesn't block readers in other processes; and a commit is one append, so
// that a kill leaves either all of it or a tail that the next open drops. Measured on ext4, an
// update and its commit take a quarter to two fifths of the time that the fastest rollback journal
// needs.
// The switch wants the file to itself, and SQLite doesn't wait for that by its busy handler: when
// several processes make it at once, the wait is made here.
int32_t useWriteAheadJournal(sqlite3* connection) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(kBusyTimeoutMs);
    for (;;) {
        const int32_t result = execute(connection, "PRAGMA journal_mode = WAL");
        if (result != SQLITE_BUSY || Clock::now() >= end) {
            return result;
        }
        sqlite3_sleep(5);
    }
}

}  // namespace

int32_t configure(sqlite3* connection) {
    sqlite3_busy_timeout(connection, kBusyTimeoutMs);
    int enforced = 0;
    if (sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_FKEY, 1, &enforced) != SQLITE_OK ||
        enforced != 1) {
        return SQLITE_ERROR;
    }
    if (const int32_t result = useWriteAheadJournal(connection)) {
        return result;
    }
    // EXTRA is FULL with the write-ahead journal; on a file system that can't have that journal it
    // also syncs the directory, without which a rollback journal can come back after a power loss.
    return execute(connection, "PRAGMA synchronous = EXTRA");
}
