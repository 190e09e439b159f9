// What a new connection needs before its first item: settings, a journal and the table of the plain
// items, which this library makes itself.
#pragma once

#include <cstdint>

#include "stand-ins/data-access/connection.h"

// Sets the connection up with the journal that its file system can carry: write-ahead where memory
// can be shared through a file. A set must be on the disk when it returns, and power can go at any
// moment. With full synchronisation that journal costs one fsync a commit, where a rollback journal
// costs three or four (on ext4 an update with its commit takes a quarter to two fifths of the
// time); a writer doesn't block readers in other processes; and a commit is one append, of which a
// kill leaves all or a tail that the next open drops. Elsewhere a rollback journal.
int32_t configure(Connection& connection);

int32_t createFlatKeyTable(Connection& connection);
int32_t deleteFlatKeyTable(Connection& connection);
