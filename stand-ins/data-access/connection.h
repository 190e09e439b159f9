// What is kept for a connection from its first use until it closes, and how operations use it.
#pragma once

#include <pthread.h>
#include <sqlite3.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "stand-ins/data-access/transactions.h"
#include "stand-ins/data-access/turns.h"
#include "system/no_cancellation.h"

// A handle of SQLite's with the statements that have been prepared on it.
class Session {
  public:
    explicit Session(sqlite3* on) : handle(on) {}

    sqlite3* get() const { return handle; }

    // The statement of a pattern, in which LIST stands for the name of a list; what is in braces is
    // left out if that is empty. Prepared on first use. Null if SQLite refuses it. Throws
    // std::bad_alloc.
    sqlite3_stmt* statement(const char* pattern, std::string_view list);

  private:
    sqlite3* handle;
    std::map<const char*, std::map<std::string, Statement, std::less<>>> statements;
};

class Connection {
  public:
    // That of a handle, made on first use. Null when memory has run out.
    static Connection* of(sqlite3* handle);

    // The result of a call without a connection: why the calling thread has just closed one, if it
    // has; otherwise SQLITE_CANTOPEN.
    static int32_t takeCauseOfNone();

    explicit Connection(sqlite3* connection);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    sqlite3* get() const { return session.get(); }

    // Each runs work, which returns a result, with the connection locked, and again while that is
    // SQLITE_BUSY, until the call has waited for as long as it may. Between the tries other threads
    // have the connection: getters proceed while a setter waits. A write waits for its turn first,
    // and is part of the transaction that the calling thread has open. A read is given the session
    // that it is to use: on a full volume that isn't the connection's.
    template <typename Work>
    int32_t read(Work work);
    template <typename Work>
    int32_t write(Work work);

    // As a read does, on the connection itself and with what is left of a wait; and once only.
    template <typename Work>
    int32_t attempt(const Moments& moments, Work work);
    template <typename Work>
    int32_t once(Clock::time_point end, Work work);
    template <typename Work>
    int32_t readOnce(Clock::time_point end, Work work);

    // Begins a transaction that is the calling thread's until it ends it, or ends itself.
    int32_t begin();

    // Whether a table is there, as far as that can be found out without a wait.
    bool hasTable(const char* name);

    // Remembers which file is the write-ahead journal.
    void noteJournal();

    // What can be done before the process ends, without a wait.
    void emptyJournal();

    std::recursive_mutex mutex;
    Session session;
    std::shared_ptr<Turns> turns;
    Transactions transactions;
    std::atomic<int32_t> failure = SQLITE_OK;  // of the last call that sets up
    // Set while a full volume keeps the connection from being set up. Each operation tries again.
    int32_t (*setUp)(Connection& connection) = nullptr;

  private:
    static int waitForReaders(void* self, int tries);
    bool watchThread();
    void giveUp();  // what the calling thread has begun
    bool isMoved() const;
    bool mayWrite(Clock::time_point now);
    Handle openReader() const;

    ino_t journal = 0;                     // inode of the write-ahead journal, 0 without one
    Clock::time_point nextLook;            // whether it is still there
    std::optional<pthread_key_t> threads;  // that have begun a transaction
    Clock::time_point deadline;            // of the operation that has the connection
};

// Runs work on the connection of a handle, for a call from outside.
template <typename Work>
int32_t useConnection(sqlite3* handle, Work work) {
    const NoCancellation whole;
    if (handle == nullptr) {
        return Connection::takeCauseOfNone();
    }
    Connection* const connection = Connection::of(handle);
    return connection == nullptr ? SQLITE_NOMEM : work(*connection);
}

template <typename Work>
int32_t Connection::once(Clock::time_point end, Work work) {
    const std::lock_guard lock(mutex);
    deadline = end;
    int32_t result = transactions.settle();
    if (result == SQLITE_OK && setUp != nullptr) {
        result = setUp(*this);
    }
    return result == SQLITE_OK ? work() : result;
}

template <typename Work>
int32_t Connection::attempt(const Moments& moments, Work work) {
    return moments.whileIs(SQLITE_BUSY, [&] { return once(moments.deadline(), work); });
}

template <typename Work>
int32_t Connection::readOnce(Clock::time_point end, Work work) {
    const int32_t result = once(end, [&] { return work(session); });
    if (result != SQLITE_FULL) {
        return result;
    }
    const auto opened = openReader();
    Session reader(opened.get());
    const int32_t withoutIndex = opened == nullptr ? result : work(reader);
    // There was room again in the middle of it.
    return withoutIndex == SQLITE_READONLY ? SQLITE_BUSY : withoutIndex;
}

// The clock, too, is asked by those alone that have to wait.
template <typename Work>
int32_t Connection::read(Work work) {
    const int32_t result = readOnce(Clock::time_point(), work);
    if (result != SQLITE_BUSY) {
        return result;
    }
    const Moments moments(kLongestWait);
    return moments.whileIs(SQLITE_BUSY, [&] { return readOnce(moments.deadline(), work); });
}

template <typename Work>
int32_t Connection::write(Work work) {
    const Moments moments(kLongestWait);
    if (transactions.isMine()) {
        Turn ended;
        return once(moments.deadline(), [&] { return transactions.afterStatement(work(), ended); });
    }
    if (!transactions.refusals.areNone()) {
        const std::lock_guard lock(mutex);
        if (const int32_t refusal = transactions.refusals.ofThisThread()) {
            return refusal;
        }
    }
    const Turn turn(turns, moments.start());
    return attempt(moments, [&] { return mayWrite(moments.start()) ? work() : SQLITE_READONLY; });
}
