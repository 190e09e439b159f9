#include "stand-ins/data-access/query.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

std::string_view takeWord(std::string_view& sql) {
    constexpr std::string_view kBetween = " \t\r\n;";
    sql.remove_prefix(std::min(sql.find_first_not_of(kBetween), sql.size()));
    const std::string_view word = sql.substr(0, sql.find_first_of(kBetween));
    sql.remove_prefix(word.size());
    return word;
}

template <typename... Word>
bool isOneOf(std::string_view text, Word... word) {
    const auto is = [&](std::string_view other) {
        return text.size() == other.size() &&
               sqlite3_strnicmp(text.data(), other.data(), static_cast<int>(text.size())) == 0;
    };
    return (is(word) || ...);
}

// Nothing but the first word and those that may follow it: more is for SQLite to understand.
bool isPlain(std::string_view rest) {
    std::string_view word = takeWord(rest);
    while (isOneOf(word, "TRANSACTION", "DEFERRED", "IMMEDIATE", "EXCLUSIVE")) {
        word = takeWord(rest);
    }
    return word.empty();
}

// Takes turn and write lock at once, so that what follows can't fail for want of them.
int32_t begin(Connection& connection) {
    Transactions& transactions = connection.transactions;
    if (transactions.isMine()) {
        return SQLITE_ERROR;
    }
    const Moments moments(kLongestWait);
    Turn turn(connection.turns, moments.start());
    const int32_t result = connection.attempt(moments, [&] {
        transactions.refusals.takeOfThisThread();
        const int32_t begun = transactions.begin();
        if (begun == SQLITE_OK) {
            transactions.own(std::move(turn));
        }
        return begun;
    });
    if (endsTransaction(result)) {
        const ConnectionLock lock(connection.get());
        transactions.refusals.add(result);
    }
    return result;
}

// The end of a transaction that has failed before fails, too, unless it was to be undone.
int32_t end(Connection& connection, const char* sql, bool keep) {
    Transactions& transactions = connection.transactions;
    const ConnectionLock lock(connection.get());
    if (const int32_t refusal = transactions.refusals.takeOfThisThread()) {
        return keep ? refusal : SQLITE_OK;
    }
    return connection.once(Clock::now() + kLongestWait, [&] {
        if (!transactions.isMine()) {
            return execute(connection.get(), sql);
        }
        const int32_t result = keep ? transactions.commit() : transactions.rollBack();
        transactions.disown();
        return result;
    });
}

// A table that is there needs no turn to be made: a process that starts beside busy ones would wait
// for one turn after the other.
bool isMade(Connection& connection, std::string_view rest) {
    for (const char* const word : {"TABLE", "IF", "NOT", "EXISTS"}) {
        if (!isOneOf(takeWord(rest), std::string_view(word))) {
            return false;
        }
    }
    char table[100] = "";  // of a longer name nothing is known
    const std::string_view name = takeWord(rest);
    return name.copy(table, sizeof table - 1) == name.size() && connection.hasTable(table);
}

int32_t executeOther(Connection& connection, const char* sql) {
    Transactions& transactions = connection.transactions;
    return connection.write([&] {
        const bool wasOpen = transactions.isOpen();
        const int32_t result = execute(connection.get(), sql);
        if (wasOpen || !transactions.isOpen()) {
            return result;
        }
        // A transaction in a form that isn't looked for here would be nobody's.
        transactions.rollBack();
        return SQLITE_MISUSE;
    });
}

}  // namespace

int32_t executeQuery(Connection& connection, const char* sql) {
    std::string_view rest = sql;
    const std::string_view first = takeWord(rest);
    const bool plain = isPlain(rest);
    if (plain && isOneOf(first, "BEGIN")) {
        return begin(connection);
    }
    if (plain && isOneOf(first, "COMMIT", "END")) {
        return end(connection, sql, true);
    }
    if (plain && isOneOf(first, "ROLLBACK")) {
        return end(connection, sql, false);
    }
    if (isOneOf(first, "CREATE") && isMade(connection, rest)) {
        return SQLITE_OK;
    }
    return executeOther(connection, sql);
}
