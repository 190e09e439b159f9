// The index of the write-ahead journal, "DATABASE-shm": a file that SQLite maps and stores into. On
// a full volume such a store ends the process by SIGBUS, because SQLite allocates a byte of each 4
// KiB alone, and file systems have smaller blocks.
#pragma once

#include <sqlite3.h>

enum class Index {
    // A part of the index that can't be allocated gives SQLITE_FULL instead.
    Shared,
    // The connection reads the journal without a shared index while that can't be allocated: SQLite
    // then makes one in memory. Such a connection can only read.
    Own
};

// For a connection that hasn't looked into its file yet.
void guardIndex(sqlite3* connection, Index index);
