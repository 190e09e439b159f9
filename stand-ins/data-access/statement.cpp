#include "stand-ins/data-access/statement.h"

#include <new>

Statement prepare(sqlite3* connection, std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v3(connection, sql.data(), static_cast<int>(sql.size()),
                       SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    return Statement(statement);
}

sqlite3_stmt* Statements::get(sqlite3* connection, Verb verb, const Address& address) {
    const Form form(verb, address.shape);
    const auto known = all.find(std::pair(form, address.list));
    if (known != all.end()) {
        return known->second.get();
    }
    Statement made = prepare(connection, sqlOf(verb, address.shape, address.list));
    if (!made) {
        return nullptr;
    }
    return all.emplace(std::pair(form, address.list), std::move(made)).first->second.get();
}

Run::Run(sqlite3* connection, Statements& statements, Verb verb, const Address& address,
         const Profile& profile) {
    try {
        statement = statements.get(connection, verb, address);
    } catch (const std::bad_alloc&) {
        return;
    }
    status = statement == nullptr ? sqlite3_errcode(connection) : SQLITE_OK;
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
