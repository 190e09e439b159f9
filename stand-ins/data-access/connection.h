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

// A SQLite handle and the statements prepared on it.
class Session {
  public:
    explicit Session(sqlite3* on) : handle(on) {}

    sqlite3* get() const { return handle; }

    // Returns the statement of a pattern (statements.h) for a list, or for plain items if list is
    // empty. It is prepared on first use; null if SQLite refuses it. Throws std::bad_alloc.
    sqlite3_stmt* statement(const char* pattern, std::string_view list);

  private:
    sqlite3* handle;
    std::map<const char*, std::map<std::string, Statement, std::less<>>> statements;
};

class Connection {
  public:
    // Returns the connection of a handle, made on first use; null if there is no memory for it.
    static Connection* of(sqlite3* handle);

    // Returns the result of a call with a null handle: if the calling thread has just closed a
    // connection that could not be set up, the cause of that; otherwise SQLITE_CANTOPEN.
    static int32_t takeCauseOfNone();

    explicit Connection(sqlite3* connection);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    sqlite3* get() const { return session.get(); }

    // Both run work with the connection locked, and repeat it while it returns SQLITE_BUSY, for
    // kLongestWait at most. Between two attempts other threads can use the connection, so getters
    // proceed while a setter waits. A write waits for its turn first, and is part of a transaction
    // that the calling thread has open. A read is passed the session that it must use: on a full
    // volume that is not the connection's own.
    template <typename Work>
    int32_t read(Work work);
    template <typename Work>
    int32_t write(Work work);

    // The steps of both: attempt repeats work until the deadline of moments, the others run it
    // once.
    template <typename Work>
    int32_t attempt(const Moments& moments, Work work);
    template <typename Work>
    int32_t once(Clock::time_point end, Work work);
    template <typename Work>
    int32_t readOnce(Clock::time_point end, Work work);

    // Begins a transaction of the calling thread. It is rolled back if the thread ends first.
    int32_t begin();

    // Whether a table exists. False, too, if a lock keeps SQLite from looking.
    bool hasTable(const char* name);

    // Remembers which file is the write-ahead journal.
    void noteJournal();

    // For the end of the process: copies the write-ahead journal into the database and truncates
    // it, so that the database is complete without it. Skipped while another process uses them.
    void emptyJournal();

    std::recursive_mutex mutex;
    Session session;
    std::shared_ptr<Turns> turns;
    Transactions transactions;
    std::atomic<int32_t> failure = SQLITE_OK;  // of the last step of the set-up
    // Set while a full volume keeps the connection from being set up. Each operation tries again.
    int32_t (*setUp)(Connection& connection) = nullptr;

  private:
    static int waitForReaders(void* self, int tries);
    bool watchThread();
    void giveUp();  // rolls back the calling thread's transaction
    bool isMoved() const;
    bool mayWrite(Clock::time_point now);
    Handle openReader() const;

    ino_t journal = 0;                     // inode of the write-ahead journal, 0 without one
    Clock::time_point nextLook;            // when to check the files again
    std::optional<pthread_key_t> threads;  // calls giveUp when one of them ends
    Clock::time_point deadline;            // of the operation that has the connection
};

// Runs work on the connection of a handle. Every exported function does.
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
    // The reader found room for the index after all: so does the next attempt.
    return withoutIndex == SQLITE_READONLY ? SQLITE_BUSY : withoutIndex;
}

// The clock is read only if there is a wait.
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
