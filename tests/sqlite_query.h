// The databases of the settings, and a look into a database beside the library's own connection.
#pragma once

#include <sqlite3.h>

#include <string>

inline const std::string kFile = "/mnt/vex-data/m7/console-manager.db";
inline const std::string kVolatileFile = "/tmp/m7/console-manager.db";

// Runs SQL and gives the values of all rows, '|' between columns and ' ' between rows; "error: ..."
// if it fails.
inline std::string query(const std::string& path, const std::string& sql) {
    sqlite3* db = nullptr;
    std::string result;
    sqlite3_open(path.c_str(), &db);
    sqlite3_busy_timeout(db, 10'000);
    const auto add = [](void* text, int count, char** values, char**) {
        auto& all = *static_cast<std::string*>(text);
        for (int i = 0; i < count; ++i) {
            all += (i > 0 ? "|" : all.empty() ? "" : " ");
            all += values[i] == nullptr ? "NULL" : values[i];
        }
        return 0;
    };
    if (sqlite3_exec(db, sql.c_str(), add, &result, nullptr) != SQLITE_OK) {
        result = std::string("error: ") + sqlite3_errmsg(db);
    }
    sqlite3_close(db);
    return result;
}
