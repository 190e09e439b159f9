#include "console-manager/settings.h"
#include "contracts/data_access.h"
#include "settings/settings_database.h"

namespace {

// Foreign keys delete the items of a list with their nodes.
constexpr const char* kDeleteNodes[] = {
#define INT_LIST(item, node, list, ...) "DELETE FROM tbl_" list ";",
#define STRING_LIST INT_LIST
#include "settings/catalogue.def"
};

}  // namespace

// Results are ignored: as much as possible is cleared, whatever fails.
int32_t DAL_CML_deleteAll(void) {
    int32_t result = 1;
    if (sqlite3* const persistent = openPersistentDatabase()) {
        result = 0;
        DAL_ExecuteQuery(persistent, "BEGIN TRANSACTION;");
        for (const char* const statement : kDeleteNodes) {
            DAL_ExecuteQuery(persistent, statement);
        }
        DAL_DeleteFlatKeyTable(persistent);
        DAL_ExecuteQuery(persistent, "COMMIT;");
    }
    sqlite3* const temporary = openVolatileDatabase();
    if (temporary == nullptr) {
        return 1;
    }
    DAL_ExecuteQuery(temporary, "BEGIN TRANSACTION;");
    DAL_DeleteFlatKeyTable(temporary);
    DAL_ExecuteQuery(temporary, "COMMIT;");
    return result;
}
