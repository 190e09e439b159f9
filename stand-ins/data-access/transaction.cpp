#include "stand-ins/data-access/transaction.h"

#include <algorithm>
#include <string_view>

#include "stand-ins/data-access/connection_state.h"

namespace {

bool isInTransaction(sqlite3* connection) {
    return sqlite3_get_autocommit(connection) == 0;
}

bool endsTransaction(std::string_view sql) {
    sql.remove_prefix(std::min(sql.find_first_not_of(" \t\r\n"), sql.size()));
    const auto startsWith = [&](std::string_view word) {
        return sqlite3_strnicmp(sql.data(), word.data(), static_cast<int>(word.size())) == 0;
    };
    return startsWith("COMMIT") || startsWith("END");
}

}  // namespace

int32_t execute(sqlite3* connection, const char* sql) {
    return primaryCode(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr));
}

int32_t executeQuery(sqlite3* connection, const char* sql) {
    const ConnectionLock lock(connection);
    ConnectionState* const state = ConnectionState::of(connection);
    if (state == nullptr) {
        return SQLITE_NOMEM;
    }
    const bool wasOpen = isInTransaction(connection);
    const int32_t result = execute(connection, sql);
    if (result != SQLITE_OK && endsTransaction(sql) && isInTransaction(connection)) {
        execute(connection, "ROLLBACK");
    }
    // A failure for want of room or memory can end a transaction too, at any statement.
    if (!isInTransaction(connection)) {
        state->transaction.reset();
    } else if (!wasOpen) {
        state->transaction.emplace(connection);
    }
    return result;
}
