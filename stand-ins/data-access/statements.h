// The SQL of items and nodes, and statements that a caller passes as text.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "stand-ins/data-access/connection.h"
#include "stand-ins/data-access/item_address.h"

// Patterns of statements. LIST stands for the name of the list; text in braces is left out for
// plain items. A parameter has the same number in all of them.
enum Parameter { kNode = 1, kKey, kProfile, kValue };
inline constexpr char kGetItem[] =
    "SELECT c_dal_value FROM tbl_{LIST_}dal_key_dal_value"
    " WHERE {c_LIST = ?1 AND }c_dal_key = ?2 AND c_dal_profile_no = ?3";
inline constexpr char kFindItem[] =
    "SELECT 1 FROM tbl_{LIST_}dal_key_dal_value"
    " WHERE {c_LIST = ?1 AND }c_dal_key = ?2 AND c_dal_profile_no = ?3";
// Not INSERT OR REPLACE, which would delete the row and insert it into the indexes again.
inline constexpr char kSetItem[] =
    "INSERT INTO tbl_{LIST_}dal_key_dal_value ({c_LIST, }c_dal_key, c_dal_profile_no, c_dal_value)"
    " VALUES ({?1, }?2, ?3, ?4) ON CONFLICT ({c_LIST, }c_dal_key, c_dal_profile_no)"
    " DO UPDATE SET c_dal_value = excluded.c_dal_value";
inline constexpr char kDeleteItem[] =
    "DELETE FROM tbl_{LIST_}dal_key_dal_value"
    " WHERE {c_LIST = ?1 AND }c_dal_key = ?2 AND c_dal_profile_no = ?3";
inline constexpr char kDeleteItemInAllProfiles[] =
    "DELETE FROM tbl_{LIST_}dal_key_dal_value WHERE {c_LIST = ?1 AND }c_dal_key = ?2";
inline constexpr char kAddNode[] =
    "INSERT OR IGNORE INTO tbl_LIST (c_LIST, c_dal_profile_no) VALUES (?1, ?3)";
inline constexpr char kFindNode[] =
    "SELECT 1 FROM tbl_LIST WHERE c_LIST = ?1 AND c_dal_profile_no = ?3";
inline constexpr char kListNodes[] =
    "SELECT c_LIST FROM tbl_LIST"
    " WHERE c_dal_profile_no = ?3 AND c_LIST IS NOT NULL ORDER BY c_LIST";
inline constexpr char kDeleteNode[] =
    "DELETE FROM tbl_LIST WHERE c_LIST = ?1 AND c_dal_profile_no = ?3";
inline constexpr char kDeleteAllNodes[] = "DELETE FROM tbl_LIST";

// One run of a statement on the rows of an address. The bound texts belong to the caller and must
// outlive the run. Its end resets the statement, which releases the locks on the file.
class Run {
  public:
    Run(Session& session, const char* pattern, const Address& address, const Profile& profile);
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void bind(Parameter parameter, std::string_view text);

    // Returns SQLITE_ROW, SQLITE_DONE or a failure.
    int32_t step() { return primaryCode(status == SQLITE_OK ? sqlite3_step(statement) : status); }

    // For a statement without rows: returns 0 or a failure.
    int32_t finish() {
        const int32_t result = step();
        return result == SQLITE_DONE ? SQLITE_OK : result;
    }

    bool isNull() const { return sqlite3_column_type(statement, 0) == SQLITE_NULL; }

    // Returns the first column of the row; nothing if there is no memory.
    std::optional<std::string_view> text() const;

  private:
    sqlite3_stmt* statement = nullptr;
    int status = SQLITE_NOMEM;
};

// Executes one statement. BEGIN, COMMIT, END and ROLLBACK are replaced by calls of Transactions,
// which keeps track of their thread.
int32_t executeQuery(Connection& connection, const char* sql);
