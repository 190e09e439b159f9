#include "stand-ins/data-access/transactions.h"

#include <algorithm>
#include <new>
#include <utility>

Statement prepare(sqlite3* connection, std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v3(connection, sql.data(), static_cast<int>(sql.size()),
                       SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    return Statement(statement);
}

int32_t execute(sqlite3* connection, const char* sql) {
    return primaryCode(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr));
}

ThreadId thisThread() {
    static std::atomic<ThreadId> last = kNoThread;
    thread_local ThreadId id = kNoThread;
    if (id == kNoThread) {
        id = ++last;
    }
    return id;
}

bool endsTransaction(int32_t result) {
    switch (result) {
        case SQLITE_OK:
        case SQLITE_ERROR:
        case SQLITE_CONSTRAINT:
        case SQLITE_MISMATCH:
        case SQLITE_MISUSE:
        case SQLITE_RANGE:
        case SQLITE_TOOBIG:
            return false;
        default:
            return true;
    }
}

void Refusals::add(int32_t result) {
    Refusal& refusal = all[next++ % all.size()];
    count += refusal.result == SQLITE_OK ? 1 : 0;
    refusal = {thisThread(), result};
}

int32_t Refusals::ofThisThread() const {
    const auto found = std::ranges::find(all, thisThread(), &Refusal::thread);
    return found == all.end() ? SQLITE_OK : found->result;
}

int32_t Refusals::takeOfThisThread() {
    const int32_t result = ofThisThread();
    for (Refusal& refusal : all) {
        if (refusal.thread == thisThread()) {
            refusal = {};
            --count;
        }
    }
    return result;
}

void Transactions::prepareStatements() {
    constexpr const char* kSql[kSteps] = {"BEGIN IMMEDIATE", "COMMIT",          "ROLLBACK",
                                          "SAVEPOINT dal",   "ROLLBACK TO dal", "RELEASE dal"};
    for (size_t step = 0; step < kSteps; ++step) {
        statements[step] = prepare(connection, kSql[step]);
        if (!statements[step]) {
            throw std::bad_alloc();
        }
    }
}

int32_t Transactions::run(Step step) {
    sqlite3_stmt* const statement = statements[step].get();
    const int result = sqlite3_step(statement);
    sqlite3_reset(statement);
    return result == SQLITE_DONE ? SQLITE_OK : primaryCode(result);
}

int32_t Transactions::settle() {
    if (owner.load(std::memory_order_relaxed) != kNoThread && !isMine()) {
        return SQLITE_BUSY;
    }
    return isEndDue ? rollBack() : SQLITE_OK;
}

int32_t Transactions::begin() {
    return run(kBegin);
}

int32_t Transactions::commit() {
    const int32_t result = run(kCommit);
    if (result != SQLITE_OK) {
        rollBack();
    }
    return result;
}

int32_t Transactions::rollBack() {
    const int32_t result = isOpen() ? run(kRollBack) : SQLITE_OK;
    isEndDue = isOpen();
    return isEndDue ? result : SQLITE_OK;
}

// If the savepoint can't be undone, the result is one that ends the caller's transaction.
int32_t Transactions::release(int32_t result) {
    int32_t end = result == SQLITE_OK ? SQLITE_OK : run(kUndo);
    if (end == SQLITE_OK) {
        end = run(kRelease);
    }
    return end == SQLITE_OK ? result : end;
}

void Transactions::own(Turn turn) {
    owner.store(thisThread(), std::memory_order_relaxed);
    ownersTurn = std::move(turn);
}

Turn Transactions::disown() {
    owner.store(kNoThread, std::memory_order_relaxed);
    return std::move(ownersTurn);
}

int32_t Transactions::afterStatement(int32_t result, Turn& ended) {
    if (isOpen() && !endsTransaction(result)) {
        return result;
    }
    if (result != SQLITE_OK) {
        rollBack();
        refusals.add(result);
    }
    ended = disown();
    return result;
}
