// What is kept for a connection from its first use until it closes.
#pragma once

#include <sqlite3.h>

#include <optional>

#include "stand-ins/data-access/statement.h"

// Holds the connection's own mutex, so that an operation of several statements, or of several calls
// on one prepared statement, is not interleaved with another thread's.
class ConnectionLock {
  public:
    explicit ConnectionLock(sqlite3* connection) : mutex(sqlite3_db_mutex(connection)) {
        sqlite3_mutex_enter(mutex);
    }
    ~ConnectionLock() { sqlite3_mutex_leave(mutex); }
    ConnectionLock(const ConnectionLock&) = delete;
    ConnectionLock& operator=(const ConnectionLock&) = delete;

  private:
    sqlite3_mutex* mutex;
};

// Used with the connection's lock held.
struct ConnectionState {
    // The state of a connection, made on first use. Null when memory has run out.
    static ConnectionState* of(sqlite3* connection);

    Statements statements;

    // Held from the BEGIN to the end of the transaction, by the thread that began it.
    std::optional<ConnectionLock> transaction;
};
