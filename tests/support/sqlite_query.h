// The files of the settings, and queries on a connection of the test's own.
#pragma once

#include <sqlite3.h>

#include <string>

inline const std::string kFile = "/mnt/vex-data/m7/console-manager.db";
inline const std::string kVolatileFile = "/tmp/m7/console-manager.db";

// Executes SQL and returns the values of all rows, with '|' between columns and ' ' between rows,
// or SQLite's message on failure.
inline std::string query(const std::string& path, const std::string& sql) {
    const auto add = [](void* text, int count, char** values, char**) {
        auto& all = *static_cast<std::string*>(text);
        for (int i = 0; i < count; ++i) {
            all.append(i > 0 ? "|" : all.empty() ? "" : " ").append(values[i]);
        }
        return 0;
    };
    sqlite3* db = nullptr;
    std::string result;
    sqlite3_open(path.c_str(), &db);
    sqlite3_busy_timeout(db, 10'000);
    const int status = sqlite3_exec(db, sql.c_str(), add, &result, nullptr);
    sqlite3_close(db);
    return status == SQLITE_OK ? result : sqlite3_errstr(status);
}
