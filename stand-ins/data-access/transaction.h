// Transactions: the library's own around several statements, and those that a caller has begun.
#pragma once

#include <sqlite3.h>

#include <cstdint>

int32_t execute(sqlite3* connection, const char* sql);

// Several statements as one. A savepoint does for both cases: on its own it is a transaction, and
// within the caller's it leaves that as it is.
class Savepoint {
  public:
    explicit Savepoint(sqlite3* on) : connection(on), opened(execute(on, "SAVEPOINT dal")) {}
    ~Savepoint() {
        if (opened == SQLITE_OK && !released) {
            execute(connection, "ROLLBACK TO dal");
            execute(connection, "RELEASE dal");
        }
    }
    Savepoint(const Savepoint&) = delete;
    Savepoint& operator=(const Savepoint&) = delete;

    int32_t result() const { return opened; }

    int32_t release() {
        const int32_t result = execute(connection, "RELEASE dal");
        released = result == SQLITE_OK;
        return result;
    }

  private:
    sqlite3* connection;
    int32_t opened;
    bool released = false;
};

// Executes a caller's statement, which may begin or end a transaction.
int32_t executeQuery(sqlite3* connection, const char* sql);
