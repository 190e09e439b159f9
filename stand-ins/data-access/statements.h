// The SQL of items and nodes, and the statements that a caller hands over as text.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "stand-ins/data-access/connection.h"
#include "stand-ins/data-access/item_address.h"

enum class Verb { kGet, kSet, kDelete, kDeleteInAllProfiles, kIsPresent, kAddNode, kListNodes };

// Numbers of the parameters in every statement; a statement uses those that it needs.
enum Parameter { kNode = 1, kKey, kProfile, kValue };

// One run of the statement that does verb on rows of the address's shape. The bound texts belong to
// the caller, who outlives the run; its end releases the locks on the file. What was bound stays
// until the next run binds it again.
class Run {
  public:
    Run(Session& session, Verb verb, const Address& address, const Profile& profile);
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void bind(Parameter parameter, std::string_view text);

    // SQLITE_ROW, SQLITE_DONE or a failure.
    int32_t step() { return primaryCode(status == SQLITE_OK ? sqlite3_step(statement) : status); }

    // For a statement without rows: 0 or a failure.
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

// Executes one statement. What begins or ends a transaction isn't executed as it stands.
int32_t executeQuery(Connection& connection, const char* sql);
