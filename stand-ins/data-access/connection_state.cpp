#include "stand-ins/data-access/connection_state.h"

#include <mutex>

namespace {

int formOf(Verb verb, const Address& address, const Profile& profile) {
    return static_cast<int>(verb) * 8 + (address.node != nullptr ? 4 : 0) +
           (address.key != nullptr ? 2 : 0) + (profile.isAll() ? 0 : 1);
}

std::string sqlOf(Verb verb, const Address& address, const Profile& profile) {
    const std::string list(address.list);
    std::string table = "tbl_" + list;
    if (address.key != nullptr) {
        table += list.empty() ? "dal_key_dal_value" : "_dal_key_dal_value";
    }
    const std::string nodeColumn = "c_" + list;

    std::string columns;
    std::string parameters;
    std::string conditions;
    const auto add = [&](bool present, const std::string& column, Parameter parameter) {
        if (!present) {
            return;
        }
        const std::string number = std::to_string(parameter);
        columns.append(columns.empty() ? "" : ", ").append(column);
        parameters.append(parameters.empty() ? "?" : ", ?").append(number);
        conditions.append(conditions.empty() ? " WHERE " : " AND ");
        conditions.append(column).append(" = ?").append(number);
    };
    add(address.node != nullptr, nodeColumn, kNode);
    add(address.key != nullptr, "c_dal_key", kKey);
    add(!profile.isAll(), "c_dal_profile_no", kProfile);

    switch (verb) {
        case Verb::kGet:
            return "SELECT c_dal_value FROM " + table + conditions;
        case Verb::kSet:
            return "INSERT INTO " + table + " (" + columns + ", c_dal_value) VALUES (" +
                   parameters + ", ?" + std::to_string(kValue) + ") ON CONFLICT (" + columns +
                   ") DO UPDATE SET c_dal_value = excluded.c_dal_value";
        case Verb::kDelete:
            return "DELETE FROM " + table + conditions;
        case Verb::kIsPresent:
            return "SELECT 1 FROM " + table + conditions;
        case Verb::kAddNode:
            return "INSERT OR IGNORE INTO " + table + " (" + columns + ") VALUES (" + parameters +
                   ")";
        case Verb::kListNodes:
            return "SELECT " + nodeColumn + " FROM " + table + conditions + " AND " + nodeColumn +
                   " IS NOT NULL ORDER BY " + nodeColumn;
    }
    return {};
}

struct States {
    std::mutex mutex;
    std::map<sqlite3*, ConnectionState> byConnection;
};

// Never destroyed: connections live until the process ends, and other threads may still be calling
// while it does.
States& states() {
    static States& all = *new States;
    return all;
}

int forget(unsigned /*event*/, void* /*context*/, void* connection, void* /*unused*/) {
    const std::lock_guard guard(states().mutex);
    states().byConnection.erase(static_cast<sqlite3*>(connection));
    return 0;
}

}  // namespace

ConnectionState& ConnectionState::of(sqlite3* connection) {
    const std::lock_guard guard(states().mutex);
    const auto [entry, isNew] = states().byConnection.try_emplace(connection);
    if (isNew) {
        // Called before SQLite looks for unfinished statements, which would make it refuse the
        // close.
        sqlite3_trace_v2(connection, SQLITE_TRACE_CLOSE, forget, nullptr);
    }
    return entry->second;
}

sqlite3_stmt* ConnectionState::prepared(sqlite3* connection, Verb verb, const Address& address,
                                        const Profile& profile) {
    const int form = formOf(verb, address, profile);
    const auto known = statements.find(std::pair(form, address.list));
    if (known != statements.end()) {
        return known->second.get();
    }
    const std::string sql = sqlOf(verb, address, profile);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v3(connection, sql.c_str(), static_cast<int>(sql.size() + 1),
                       SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    PreparedStatement owner(statement);
    if (owner) {
        statements.emplace(std::pair(form, address.list), std::move(owner));
    }
    return statement;
}
