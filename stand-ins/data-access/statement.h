// Prepared statements: kept for a connection, and run.
#pragma once

#include <sqlite3.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "stand-ins/data-access/item_address.h"
#include "stand-ins/data-access/sql.h"
#include "system/deleted_by.h"

// SQLite's result without what it says beside the primary code.
inline int32_t primaryCode(int result) {
    return result & 0xff;
}

using Statement = std::unique_ptr<sqlite3_stmt, DeletedBy<sqlite3_finalize>>;

// Null if SQLite refuses the text.
Statement prepare(sqlite3* connection, std::string_view sql);

// The statements of a connection for items and nodes, each prepared on first use.
class Statements {
  public:
    // Null if SQLite refuses it. Throws std::bad_alloc.
    sqlite3_stmt* get(sqlite3* connection, Verb verb, const Address& address);

  private:
    using Form = std::pair<Verb, Shape>;

    // Looks a list's name up without a copy of it.
    struct Order {
        using is_transparent = void;
        template <typename A, typename B>
        bool operator()(const std::pair<Form, A>& a, const std::pair<Form, B>& b) const {
            return a.first != b.first ? a.first < b.first
                                      : std::string_view(a.second) < std::string_view(b.second);
        }
    };

    std::map<std::pair<Form, std::string>, Statement, Order> all;
};

// One run of a prepared statement. The bound texts belong to the caller, who outlives the run; its
// end gives up the locks on the file. What was bound stays until the next run binds it anew.
class Run {
  public:
    Run(sqlite3* connection, Statements& statements, Verb verb, const Address& address,
        const Profile& profile);
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void bind(Parameter parameter, std::string_view text);

    // SQLITE_ROW, SQLITE_DONE or a failure.
    int32_t step() { return primaryCode(status == SQLITE_OK ? sqlite3_step(statement) : status); }

    // For a statement that gives no rows: 0 or a failure.
    int32_t finish() {
        const int32_t result = step();
        return result == SQLITE_DONE ? SQLITE_OK : result;
    }

    bool isNull() const { return sqlite3_column_type(statement, 0) == SQLITE_NULL; }

    // The first column of the row; nothing when memory runs out.
    std::optional<std::string_view> text() const;

  private:
    sqlite3_stmt* statement = nullptr;
    int status = SQLITE_NOMEM;
};
