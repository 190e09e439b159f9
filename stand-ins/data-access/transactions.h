// Transactions on a connection: the library's own around several statements, and those that a
// caller has begun.
#pragma once

#include <sqlite3.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <thread>

#include "stand-ins/data-access/statement.h"
#include "stand-ins/data-access/turn.h"

int32_t execute(sqlite3* connection, const char* sql);

// Whether a transaction is over for what a statement of it, or its beginning, has given. Failures
// that a statement's own content explains leave it as it is.
bool endsTransaction(int32_t result);

// Threads whose transaction has failed, and how. What they go on to do must not be done alone: it
// is refused until they end the transaction, which fails, too.
class Refusals {
  public:
    void add(int32_t result);
    bool areNone() const { return count == 0; }  // for any thread, without the lock
    int32_t ofThisThread() const;                // 0 if it isn't refused
    int32_t takeOfThisThread();

  private:
    struct Refusal {
        std::thread::id thread;
        int32_t result;
    };
    // A thread more takes the place of the oldest, which can only be one that never ended its
    // transaction.
    std::array<Refusal, 64> all{};
    size_t next = 0;
    std::atomic<int> count = 0;
};

// Used with the connection's lock held, isMine apart.
class Transactions {
  public:
    // Throws std::bad_alloc.
    explicit Transactions(sqlite3* on) : connection(on) { prepareStatements(); }

    // All that begins and ends a transaction is prepared beforehand, so that an end needs no
    // memory. SQLite prepares again, in the middle of the end, what is older than a change of the
    // connection's settings: so this is called behind one. Throws std::bad_alloc.
    void prepareStatements();

    // Whether the calling thread has a transaction open through DAL_ExecuteQuery.
    bool isMine() const {
        return owner.load(std::memory_order_relaxed) == std::this_thread::get_id();
    }
    bool isOpen() const { return sqlite3_get_autocommit(connection) == 0; }

    // Comes before every operation: makes up for an end that couldn't be carried out.
    // SQLITE_BUSY while another thread has a transaction open.
    int32_t settle();

    // The write lock comes with the transaction: SQLITE_BUSY tells that it is another's, and
    // nothing has been done then.
    int32_t begin();
    // A commit that fails is undone. A roll-back that fails is due to the next settle.
    int32_t commit();
    int32_t rollBack();

    // Several statements as one, in a transaction of their own or within the caller's.
    template <typename Work>
    int32_t asOne(Work work) {
        const bool within = isOpen();
        if (const int32_t result = within ? save() : begin()) {
            return result;
        }
        const int32_t result = work();
        if (within) {
            return release(result);
        }
        if (result == SQLITE_OK) {
            return commit();
        }
        rollBack();
        return result;
    }

    // The open transaction is the calling thread's from now on, with the turn in which it writes.
    void own(Turn turn);
    Turn disown();

    // After a statement of the caller's transaction, with its result, which is given back. One that
    // has failed for want of memory, room or the like ends the transaction; so the rest is refused.
    // The turn is for the caller to give up when it has unlocked the connection.
    int32_t afterStatement(int32_t result, Turn& ended);

    Refusals refusals;

  private:
    int32_t run(const Statement& statement);
    int32_t save();
    int32_t release(int32_t result);

    sqlite3* connection;
    Statement beginning;
    Statement committing;
    Statement rollingBack;
    Statement saving;
    Statement undoing;
    Statement releasing;
    bool isEndDue = false;
    std::atomic<std::thread::id> owner;
    Turn ownersTurn;
};
