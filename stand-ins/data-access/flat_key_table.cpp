#include "stand-ins/data-access/flat_key_table.h"

int32_t createFlatKeyTable(Connection& connection) {
    // Without a row id a set writes one tree, and a get searches one.
    constexpr const char* kCreate =
        "CREATE TABLE IF NOT EXISTS tbl_dal_key_dal_value ("
        "c_dal_key TEXT NOT NULL, c_dal_profile_no TEXT NOT NULL, c_dal_value TEXT NOT NULL, "
        "PRIMARY KEY(c_dal_key, c_dal_profile_no)) WITHOUT ROWID;";
    if (!connection.hasTable("tbl_dal_key_dal_value")) {
        const auto create = [&] { return execute(connection.get(), kCreate); };
        if (const int32_t result = connection.write(create)) {
            return result;
        }
    }
    // This table is the last to be made: from here on the file holds them all, and what a process
    // before had left in the log. If it can't be done now, a later set does it.
    sqlite3_wal_checkpoint_v2(connection.get(), "main", SQLITE_CHECKPOINT_PASSIVE, nullptr,
                              nullptr);
    return SQLITE_OK;
}

int32_t deleteFlatKeyTable(Connection& connection) {
    return connection.write(
        [&] { return execute(connection.get(), "DELETE FROM tbl_dal_key_dal_value;"); });
}
