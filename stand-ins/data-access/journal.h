#pragma once

#include <cstdint>

#include "stand-ins/data-access/connection.h"

// Sees to it that the database has the journal that its file system can carry. The write-ahead
// journal where memory can be shared through a file, because a set must be on the disk when it
// returns and power can go at any moment: with full synchronisation it costs one fsync a commit,
// where a rollback journal costs three or four; a writer doesn't block readers in other processes;
// and a commit is one append, so that a kill leaves either all of it or a tail that the next open
// drops. Measured on ext4, an update and its commit take a quarter to two fifths of the time that
// the fastest rollback journal needs. Elsewhere a rollback journal.
int32_t chooseJournal(Connection& connection);
