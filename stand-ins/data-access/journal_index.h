// The index of the write-ahead journal, "DATABASE-shm": a file that SQLite maps and stores into. On
// a full volume such a store ends the process by SIGBUS: SQLite allocates the file by writing one
// byte in every 4 KiB, and a file system with smaller blocks leaves the others unallocated.
#pragma once

#include <sqlite3.h>

enum class Index {
    // A part of the index that can't be allocated gives SQLITE_FULL.
    Shared,
    // While the shared index can't be allocated, SQLite makes one in memory for this connection,
    // which can only read.
    Own
};

// To be called before the connection first reads its file.
void guardIndex(sqlite3* connection, Index index);
