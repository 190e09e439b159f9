#include "stand-ins/data-access/configuration.h"

#include <new>

#include "stand-ins/data-access/journal.h"

namespace {

// The log goes into the database after few pages, so that it stays short: it is what a process
// reads when it opens the database, and what a copy of the database alone would lack.
constexpr int kPagesOfLog = 100;

int32_t enforceForeignKeys(sqlite3* connection) {
    int enforced = 0;
    const int result = sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_FKEY, 1, &enforced);
    return result == SQLITE_OK && enforced == 1 ? SQLITE_OK : SQLITE_ERROR;
}

int32_t set(sqlite3* connection) {
    // EXTRA is FULL with the write-ahead journal; with a rollback journal it also syncs the folder,
    // without which the journal can come back after a power loss and undo what was committed.
    if (const int32_t result = execute(connection, "PRAGMA synchronous = EXTRA")) {
        return result;
    }
    // What the log had grown to beside a reader of long breath is given back.
    if (const int32_t result = execute(connection, "PRAGMA journal_size_limit = 524288")) {
        return result;
    }
    return primaryCode(sqlite3_wal_autocheckpoint(connection, kPagesOfLog));
}

}  // namespace

int32_t configure(Connection& connection) try {
    const Moments moments(kLongestWait);
    const Turn turn(connection.turns, moments.start());
    return connection.attempt(moments, [&] {
        int32_t result = enforceForeignKeys(connection.get());
        if (result == SQLITE_OK) {
            result = chooseJournal(connection);
        }
        if (result == SQLITE_OK) {
            result = set(connection.get());
        }
        connection.transactions.prepareStatements();
        return result;
    });
} catch (const std::bad_alloc&) {
    return SQLITE_NOMEM;
}
