// Sets a new connection up: SQLite's configuration, the journal, and the table of the plain items.
#pragma once

#include <cstdint>

#include "stand-ins/data-access/connection.h"

// Configures the connection, with a write-ahead journal where processes can share memory through a
// file of that file system, otherwise with a rollback journal. A set must be on the disk when it
// returns, because power can fail at any moment. For that, the write-ahead journal needs one fsync
// a commit and the rollback journal three or four; on ext4 an update with its commit takes a
// quarter to two fifths of the time. Its writers don't block readers of other processes, and a
// commit that a kill interrupts is an incomplete end of the file, which the next process ignores.
int32_t configure(Connection& connection);

int32_t createFlatKeyTable(Connection& connection);
int32_t deleteFlatKeyTable(Connection& connection);
