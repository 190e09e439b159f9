// Transactions on a connection: the library's own, around several statements, and the callers'.
#pragma once

#include <sqlite3.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string_view>

#include "stand-ins/data-access/turns.h"
#include "system/deleted_by.h"

using Handle = std::unique_ptr<sqlite3, DeletedBy<sqlite3_close>>;
using Statement = std::unique_ptr<sqlite3_stmt, DeletedBy<sqlite3_finalize>>;

// Returns null if SQLite refuses the text.
Statement prepare(sqlite3* connection, std::string_view sql);

// Returns the primary code. SQLite adds details in the bits above it.
inline int32_t primaryCode(int result) {
    return result & 0xff;
}

int32_t execute(sqlite3* connection, const char* sql);

// Returns the number of the calling thread. Unlike a pthread_t it is never reused.
using ThreadId = uint64_t;
ThreadId thisThread();
constexpr ThreadId kNoThread = 0;

// Whether this result of a statement or a BEGIN ends a transaction. A failure because of the
// statement's own content leaves it open.
bool endsTransaction(int32_t result);

// Threads whose transaction has failed, with the failure. Their further changes would no longer be
// part of a transaction, so they are refused until the thread ends it.
class Refusals {
  public:
    void add(int32_t result);
    bool areNone() const { return count == 0; }  // needs no lock, unlike the others
    int32_t ofThisThread() const;                // 0 if it isn't refused
    int32_t takeOfThisThread();

  private:
    struct Refusal {
        ThreadId thread;
        int32_t result;
    };
    // If there are more, the oldest is forgotten.
    std::array<Refusal, 64> all{};
    size_t next = 0;
    std::atomic<int> count = 0;
};

// All functions but isMine need the connection locked.
class Transactions {
  public:
    // Throws std::bad_alloc.
    explicit Transactions(sqlite3* on) : connection(on) { prepareStatements(); }

    // Prepares the statements, so that the end of a transaction needs no memory. To be called after
    // a change of the connection's configuration, because SQLite would prepare older statements
    // again when they run. Throws std::bad_alloc.
    void prepareStatements();

    // Whether the calling thread has a transaction open through DAL_ExecuteQuery.
    bool isMine() const { return owner.load(std::memory_order_relaxed) == thisThread(); }
    bool isOpen() const { return sqlite3_get_autocommit(connection) == 0; }

    // Precedes every operation: retries a rollback that has failed. Returns SQLITE_BUSY while
    // another thread has a transaction open.
    int32_t settle();

    // Begins with the write lock. Returns SQLITE_BUSY, and does nothing, if another process has it.
    int32_t begin();
    // A commit that fails is rolled back. A rollback that fails is retried by the next settle().
    int32_t commit();
    int32_t rollBack();

    // Runs several statements as one, in a transaction of their own or within the caller's.
    template <typename Work>
    int32_t asOne(Work work) {
        const bool within = isOpen();
        if (const int32_t result = within ? run(kSave) : begin()) {
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

    // Makes the calling thread the owner of the open transaction and of the turn in which it
    // writes.
    void own(Turn turn);
    Turn disown();

    // To be called after a statement of the caller's transaction, with its result, which it
    // returns. A failure that ends the transaction rolls it back, and the thread's further changes
    // are refused. The caller destroys the turn after it has unlocked the connection.
    int32_t afterStatement(int32_t result, Turn& ended);

    Refusals refusals;

  private:
    enum Step { kBegin, kCommit, kRollBack, kSave, kUndo, kRelease, kSteps };
    int32_t run(Step step);
    int32_t release(int32_t result);

    sqlite3* connection;
    std::array<Statement, kSteps> statements;
    bool isEndDue = false;
    std::atomic<ThreadId> owner = kNoThread;
    Turn ownersTurn;
};
