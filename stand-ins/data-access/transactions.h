// Transactions on a connection: the library's own around several statements, and those that a
// caller has begun.
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

// Null if SQLite refuses the text.
Statement prepare(sqlite3* connection, std::string_view sql);

// The primary code, to which SQLite adds details in the bits above.
inline int32_t primaryCode(int result) {
    return result & 0xff;
}

int32_t execute(sqlite3* connection, const char* sql);

// The number of the calling thread. Unlike a pthread_t it is never used again.
using ThreadId = uint64_t;
ThreadId thisThread();
constexpr ThreadId kNoThread = 0;

// Whether this result of a statement, or of the beginning, ends a transaction. Failures that the
// statement's own content explains leave it open.
bool endsTransaction(int32_t result);

// Threads whose transaction has failed, and how. Their further changes must not be made outside of
// it: they are refused until the thread ends the transaction.
class Refusals {
  public:
    void add(int32_t result);
    bool areNone() const { return count == 0; }  // the one function that needs no lock
    int32_t ofThisThread() const;                // 0 if it isn't refused
    int32_t takeOfThisThread();

  private:
    struct Refusal {
        ThreadId thread;
        int32_t result;
    };
    // One thread more takes the place of the oldest.
    std::array<Refusal, 64> all{};
    size_t next = 0;
    std::atomic<int> count = 0;
};

// Used with the connection locked, except isMine.
class Transactions {
  public:
    // Throws std::bad_alloc.
    explicit Transactions(sqlite3* on) : connection(on) { prepareStatements(); }

    // Prepares all that begins and ends a transaction, so that an end needs no memory. To be called
    // after a change of the connection's settings: SQLite would prepare older statements again, in
    // the middle of an end. Throws std::bad_alloc.
    void prepareStatements();

    // Whether the calling thread has a transaction open through DAL_ExecuteQuery.
    bool isMine() const { return owner.load(std::memory_order_relaxed) == thisThread(); }
    bool isOpen() const { return sqlite3_get_autocommit(connection) == 0; }

    // Precedes every operation: retries a rollback that has failed. SQLITE_BUSY while another
    // thread has a transaction open.
    int32_t settle();

    // Begins with the write lock. SQLITE_BUSY, and nothing is done, if somebody else has it.
    int32_t begin();
    // A commit that fails is rolled back. A rollback that fails is retried by the next settle().
    int32_t commit();
    int32_t rollBack();

    // Several statements as one, in a transaction of their own or within the caller's.
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

    // Makes the open transaction the calling thread's, with the turn in which it writes.
    void own(Turn turn);
    Turn disown();

    // After a statement of the caller's transaction with this result, which it returns. A failure
    // that ends the transaction rolls it back, and the rest is refused. The caller releases the
    // turn when it has unlocked the connection.
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
