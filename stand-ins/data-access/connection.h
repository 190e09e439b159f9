// What is kept for a connection from its first use until it closes, and how operations come to it.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>

#include "stand-ins/data-access/statement.h"
#include "stand-ins/data-access/transactions.h"
#include "stand-ins/data-access/turn.h"
#include "stand-ins/data-access/wait.h"

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

class Connection {
  public:
    // That of a handle, made on first use. Null when memory has run out.
    static Connection* of(sqlite3* handle);

    explicit Connection(sqlite3* connection);
    ~Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    sqlite3* get() const { return handle; }

    // Each runs work, which gives a result, with the connection locked, and again while that is
    // SQLITE_BUSY, until the call has waited for as long as it may. Between the tries other threads
    // have the connection: getters must go on while a setter waits. A write waits for its turn
    // first, and is part of the transaction that the calling thread has open.
    template <typename Work>
    int32_t read(Work work);
    template <typename Work>
    int32_t write(Work work);

    // As a read does, with what is left of a wait; and once only, with its end.
    template <typename Work>
    int32_t attempt(const Moments& moments, Work work);
    template <typename Work>
    int32_t once(Clock::time_point end, Work work);

    // Whether a table is there, as far as that can be told without a wait.
    bool hasTable(const char* name);

    Statements statements;
    std::shared_ptr<Turns> turns;
    Transactions transactions;

  private:
    static int waitForReaders(void* self, int tries);

    sqlite3* handle;
    Clock::time_point deadline;  // of the operation that has the connection
};

template <typename Work>
int32_t Connection::once(Clock::time_point end, Work work) {
    const ConnectionLock lock(handle);
    deadline = end;
    const int32_t unsettled = transactions.settle();
    return unsettled == SQLITE_OK ? work() : unsettled;
}

template <typename Work>
int32_t Connection::attempt(const Moments& moments, Work work) {
    int32_t result = once(moments.deadline(), work);
    while (result == SQLITE_BUSY && moments.pass()) {
        result = once(moments.deadline(), work);
    }
    return result;
}

// The clock, too, is asked by those alone that have to wait.
template <typename Work>
int32_t Connection::read(Work work) {
    const int32_t result = once(Clock::time_point(), work);
    return result == SQLITE_BUSY ? attempt(Moments(kLongestWait), work) : result;
}

template <typename Work>
int32_t Connection::write(Work work) {
    const Moments moments(kLongestWait);
    if (transactions.isMine()) {
        Turn ended;
        return once(moments.deadline(), [&] { return transactions.afterStatement(work(), ended); });
    }
    if (!transactions.refusals.areNone()) {
        const ConnectionLock lock(handle);
        if (const int32_t refusal = transactions.refusals.ofThisThread()) {
            return refusal;
        }
    }
    const Turn turn(turns, moments.start());
    return attempt(moments, work);
}
