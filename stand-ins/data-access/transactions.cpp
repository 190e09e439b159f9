#include "stand-ins/data-access/transactions.h"

#include <algorithm>
#include <new>
#include <utility>

namespace {

Statement prepared(sqlite3* connection, std::string_view sql) {
    Statement statement = prepare(connection, sql);
    if (!statement) {
        throw std::bad_alloc();
    }
    return statement;
}

}  // namespace

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

int32_t execute(sqlite3* connection, const char* sql) {
    return primaryCode(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr));
}

void Refusals::add(int32_t result) {
    Refusal& refusal = all[next++ % all.size()];
    count += refusal.result == SQLITE_OK ? 1 : 0;
    refusal = {std::this_thread::get_id(), result};
}

int32_t Refusals::ofThisThread() const {
    const auto found =
        std::ranges::find(all, std::this_thread::get_id(), [](auto& one) { return one.thread; });
    return found == all.end() ? SQLITE_OK : found->result;
}

int32_t Refusals::takeOfThisThread() {
    const int32_t result = ofThisThread();
    for (Refusal& refusal : all) {
        if (refusal.thread == std::this_thread::get_id()) {
            refusal = {};
            --count;
        }
    }
    return result;
}

void Transactions::prepareStatements() {
    beginning = prepared(connection, "BEGIN IMMEDIATE");
    committing = prepared(connection, "COMMIT");
    rollingBack = prepared(connection, "ROLLBACK");
    saving = prepared(connection, "SAVEPOINT dal");
    undoing = prepared(connection, "ROLLBACK TO dal");
    releasing = prepared(connection, "RELEASE dal");
}

int32_t Transactions::run(const Statement& statement) {
    const int result = sqlite3_step(statement.get());
    sqlite3_reset(statement.get());
    return result == SQLITE_DONE ? SQLITE_OK : primaryCode(result);
}

int32_t Transactions::settle() {
    if (owner.load(std::memory_order_relaxed) != std::thread::id() && !isMine()) {
        return SQLITE_BUSY;
    }
    return isEndDue ? rollBack() : SQLITE_OK;
}

int32_t Transactions::begin() {
    return run(beginning);
}

int32_t Transactions::commit() {
    const int32_t result = run(committing);
    if (result != SQLITE_OK) {
        rollBack();
    }
    return result;
}

int32_t Transactions::rollBack() {
    const int32_t result = isOpen() ? run(rollingBack) : SQLITE_OK;
    isEndDue = isOpen();
    return isEndDue ? result : SQLITE_OK;
}

int32_t Transactions::save() {
    return run(saving);
}

// What can't be undone fails in such a way that it ends the caller's transaction.
int32_t Transactions::release(int32_t result) {
    int32_t end = result == SQLITE_OK ? SQLITE_OK : run(undoing);
    if (end == SQLITE_OK) {
        end = run(releasing);
    }
    return end == SQLITE_OK ? result : end;
}

void Transactions::own(Turn turn) {
    owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    ownersTurn = std::move(turn);
}

Turn Transactions::disown() {
    owner.store(std::thread::id(), std::memory_order_relaxed);
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
