#include "settings/settings_database.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <span>

#include "contracts/data_access.h"
#include "contracts/trace_debug.h"
#include "settings/log_message.h"
#include "system/deleted_by.h"
#include "system/no_cancellation.h"

namespace {

// A node table, and an item table whose rows are deleted with their node.
#define LIST_TABLES(list)                                                                \
    "CREATE TABLE IF NOT EXISTS tbl_" list " (c_" list                                   \
    " TEXT, c_dal_profile_no TEXT, UNIQUE(c_" list ", c_dal_profile_no));",              \
        "CREATE TABLE IF NOT EXISTS tbl_" list "_dal_key_dal_value (c_" list             \
        " TEXT, c_dal_key TEXT, c_dal_profile_no TEXT, c_dal_value TEXT, UNIQUE(c_" list \
        ", c_dal_key, c_dal_profile_no), FOREIGN KEY(c_" list                            \
        ", c_dal_profile_no) REFERENCES tbl_" list " (c_" list                           \
        ", c_dal_profile_no) ON DELETE CASCADE ON UPDATE CASCADE);",

constexpr auto kListTables = std::to_array<const char*>({
#define INT_LIST(item, node, list, ...) LIST_TABLES(list)
#define STRING_LIST INT_LIST
#include "settings/catalogue.def"
});
#undef LIST_TABLES

// Only the flags of a logger silence messages; without a logger they are printed.
bool messagesEnabled() {
    const TDL_LoggerRecord* const logger = TDL_logger();
    return logger == nullptr || (logger->flags & TDL_FLAG_DATABASE_MESSAGES) != 0;
}

using Connection = std::unique_ptr<sqlite3, DeletedBy<sqlite3_close>>;

struct SettingsDatabase {
    const char* path;
    const char* directoryCommand;
    std::span<const char* const> schema;
    std::atomic<sqlite3*> handle = nullptr;
    std::atomic<bool> isOpening = false;
    std::atomic<int> attempts = 0;  // to open it, finished

    // After the first success one load and one test. If several threads arrive first, one opens the
    // database and the others wait for its result. If each tried in turn, the last would wait many
    // times as long.
    sqlite3* open() {
        if (sqlite3* const open = handle.load(std::memory_order_acquire)) {
            return open;
        }
        const NoCancellation whole;
        const int before = attempts;
        if (isOpening.exchange(true)) {
            attempts.wait(before);
            return handle;
        }
        if (handle == nullptr) {
            handle = connect();
        }
        isOpening = false;
        ++attempts;
        attempts.notify_all();
        return handle;
    }

    sqlite3* connect() const {
        // If the command fails, so does the open.
        [[maybe_unused]] const int status = std::system(directoryCommand);
        sqlite3* local = nullptr;
        const int result = sqlite3_open(path, &local);
        // A failed open, too, leaves a connection that has to be closed.
        Connection connection(local);
        if (result != SQLITE_OK) {
            if (messagesEnabled()) {
                logMessage(TDL_logger(), "Unable to open %s", path);
            }
            return nullptr;
        }
        if (!initialise(connection.get())) {
            if (messagesEnabled()) {
                logMessage(TDL_logger(), "Unable to initialise %s", path);
            }
            return nullptr;
        }
        return connection.release();
    }

    bool initialise(sqlite3* connection) const {
        if (DAL_SetDBConfiguration(connection) != 0) {
            return false;
        }
        for (const char* const statement : schema) {
            if (DAL_ExecuteQuery(connection, statement) != 0) {
                return false;
            }
        }
        return DAL_CreateFlatKeyTable(connection) == 0;
    }
};

constinit SettingsDatabase persistentDatabase{"/mnt/vex-data/m7/console-manager.db",
                                              "mkdir -p /mnt/vex-data/m7/", kListTables};
constinit SettingsDatabase volatileDatabase{"/tmp/m7/console-manager.db", "mkdir -p /tmp/m7/", {}};

}  // namespace

sqlite3* openPersistentDatabase() {
    return persistentDatabase.open();
}

sqlite3* openVolatileDatabase() {
    return volatileDatabase.open();
}
