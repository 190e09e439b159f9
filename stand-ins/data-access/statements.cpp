#include "stand-ins/data-access/statements.h"

#include <new>

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

// Whether rest has only words that SQL allows after BEGIN, COMMIT and ROLLBACK. Other statements
// are left to SQLite.
bool isPlain(std::string_view rest) {
    std::string_view word = takeWord(rest);
    while (isOneOf(word, "TRANSACTION", "DEFERRED", "IMMEDIATE", "EXCLUSIVE")) {
        word = takeWord(rest);
    }
    return word.empty();
}

// The commit of a transaction that has failed before returns that failure.
int32_t end(Connection& connection, const char* sql, bool keep) {
    Transactions& transactions = connection.transactions;
    const std::lock_guard lock(connection.mutex);
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

// Whether this creates a table that exists. Then there is nothing to do, and no turn is taken: a
// process that starts next to busy ones would wait for a turn for each table.
bool isMade(Connection& connection, std::string_view sql) {
    constexpr std::string_view kCreate = "CREATE TABLE IF NOT EXISTS ";
    if (!sql.starts_with(kCreate)) {
        return false;
    }
    sql.remove_prefix(kCreate.size());
    char table[100] = "";  // a longer name is not found
    const std::string_view name = takeWord(sql);
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
        // The statement has begun a transaction in a form that executeQuery doesn't recognise, such
        // as after a comment. It would have no owner.
        transactions.rollBack();
        return SQLITE_MISUSE;
    });
}

}  // namespace

Run::Run(Session& session, const char* pattern, const Address& address, const Profile& profile) {
    try {
        statement = session.statement(pattern, address.list);
    } catch (const std::bad_alloc&) {
        return;
    }
    status = statement == nullptr ? sqlite3_errcode(session.get()) : SQLITE_OK;
    if (address.node != nullptr) {
        bind(kNode, address.node);
    }
    if (address.key != nullptr) {
        bind(kKey, address.key);
    }
    if (!profile.isAll()) {
        bind(kProfile, profile.text());
    }
}

Run::~Run() {
    sqlite3_reset(statement);
}

void Run::bind(Parameter parameter, std::string_view text) {
    if (status == SQLITE_OK) {
        status = sqlite3_bind_text64(statement, parameter, text.data(), text.size(), SQLITE_STATIC,
                                     SQLITE_UTF8);
    }
}

std::optional<std::string_view> Run::text() const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    if (bytes == nullptr) {
        return std::nullopt;
    }
    return std::string_view(bytes, static_cast<size_t>(sqlite3_column_bytes(statement, 0)));
}

int32_t executeQuery(Connection& connection, const char* sql) {
    std::string_view rest = sql;
    const std::string_view first = takeWord(rest);
    const bool plain = isPlain(rest);
    if (plain && isOneOf(first, "BEGIN")) {
        return connection.transactions.isMine() ? SQLITE_ERROR : connection.begin();
    }
    if (plain && isOneOf(first, "COMMIT", "END")) {
        return end(connection, sql, true);
    }
    if (plain && isOneOf(first, "ROLLBACK")) {
        return end(connection, sql, false);
    }
    return isMade(connection, sql) ? SQLITE_OK : executeOther(connection, sql);
}
