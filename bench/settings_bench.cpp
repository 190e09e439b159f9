// One setting of each form, and the nodes of a list. The floor is the same statements by SQLite
// alone, prepared once for all keys, on a copy of the tables with the same pragmas.
#include <sqlite3.h>

#include <cstdlib>
#include <cstring>

#include "bench/bench.h"
#include "console-manager/device.h"
#include "console-manager/settings.h"
#include "contracts/data_access.h"

namespace {

int32_t number;
char text[64];
char* copy;
uint32_t length;

// Alternates, because SQLite doesn't write a value that is stored already.
const char* nextText() {
    static bool odd = false;
    return (odd = !odd) ? "1" : "0";
}
int next() {
    return *nextText() - '0';
}

sqlite3* connection;

void openBare() {
    DAL_CML_isThemePresent();
    sqlite3_open("/mnt/vex-data/m7/console-manager.db", &connection);
    sqlite3_exec(connection, "VACUUM INTO '/mnt/bare.db'", nullptr, nullptr, nullptr);
    sqlite3_close(connection);
    sqlite3_open("/mnt/bare.db", &connection);
    require(DAL_SetDBConfiguration(connection) == 0, "SQLite alone");
}

// Runs a statement, with another value each time, and copies what it delivers. Its parameters are
// ?1 for the value, ?2 for the key and ?3 for the profile number.
Work bare(const std::string& sql, const std::string& key = "") {
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v3(connection, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    require(prepared != nullptr, sql.c_str());
    const int first = sql.find("?1") == std::string::npos ? 2 : 1;
    return [=, last = sqlite3_bind_parameter_count(prepared)] {
        for (int i = first; i <= last; ++i) {
            const char* const parameter = i == 1 ? nextText() : i == 2 ? key.c_str() : "0";
            sqlite3_bind_text(prepared, i, parameter, -1, SQLITE_STATIC);
        }
        while (sqlite3_step(prepared) == SQLITE_ROW) {
            const auto* const column =
                reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
            std::strncpy(text, column, sizeof text - 1);
        }
        require(sqlite3_reset(prepared) == SQLITE_OK, "SQLite alone");
    };
}

// A form of settings; list is empty for a plain one. The node is always the same.
struct Form {
    std::string name, key, list;
    std::string nodes = "tbl_" + list;
    std::string items = (list.empty() ? "tbl" : nodes) + "_dal_key_dal_value";
    std::string ofNode = list.empty() ? "" : " AND c_" + list + " = 'n'";
    std::string all = " FROM " + items + " WHERE c_dal_key = ?2" + ofNode;
    std::string one = all + " AND c_dal_profile_no = ?3";
    std::string upsert = "INSERT INTO " + items + " (c_dal_value, c_dal_key, c_dal_profile_no" +
                         (list.empty() ? "" : ", c_" + list) + ") VALUES (?1, ?2, ?3" +
                         (list.empty() ? "" : ", 'n'") +
                         ") ON CONFLICT DO UPDATE SET c_dal_value = excluded.c_dal_value";
    // An item of a list needs the row of its node; both are committed together.
    Work set = list.empty()
                   ? bare(upsert, key)
                   : Work([begin = bare("BEGIN"), end = bare("COMMIT"), item = bare(upsert, key),
                           node = bare("INSERT OR IGNORE INTO " + nodes + " VALUES ('n', ?3)")] {
                         begin();
                         node();
                         item();
                         end();
                     });

    // Adds a function that needs a stored value, and the statement that does the same.
    void row(const char* function, const Work& call, const Work& store, const std::string& sql,
             bool each = false) const {
        measure({function + (", " + name), call, bare(sql, key), store, set, each});
    }
};

// The functions of a setting. got and stored are the arguments of get and set, node those of the
// others.
// clang-format off
#define CALL(function, arguments) [] { require(function arguments == 0, #function); }
#define ROW(form, function, call, setting, stored, sql, each) \
    form.row(function, call, CALL(DAL_CML_set##setting, stored), sql, each)
#define MEASURE(form, setting, got, stored, node) \
    measure({"DAL_CML_setS, " + form.name, CALL(DAL_CML_set##setting, stored), form.set}); \
    measure({"DAL_CML_getSDefault, " + form.name, [] { DAL_CML_get##setting##Default(); }}); \
    ROW(form, "DAL_CML_getS", CALL(DAL_CML_get##setting, got), setting, stored, "SELECT c_dal_value" + form.one, false); \
    ROW(form, "DAL_CML_isSPresent", [] { DAL_CML_is##setting##Present node; }, setting, stored, "SELECT 1" + form.one, false); \
    ROW(form, "DAL_CML_deleteS", CALL(DAL_CML_delete##setting, node), setting, stored, "DELETE" + form.one, true); \
    ROW(form, "DAL_CML_deleteAllS", CALL(DAL_CML_deleteAll##setting, node), setting, stored, "DELETE" + form.all, true)
#define MEASURE_MALLOC(form, setting, got, stored) \
    ROW(form, "DAL_CML_getSMalloc", [] { DAL_CML_get##setting##Malloc got; std::free(copy); }, \
        setting, stored, "SELECT c_dal_value" + form.one, false)
// clang-format on

void measureNodes(const Form& form) {
    const Work store = CALL(DAL_CML_setHomeScreenIcon, ("n", nextText()));
    const std::string all = " FROM " + form.nodes + " WHERE c_dal_profile_no = ?3";
    const Work list = [] { freeList(DAL_CML_listHomeScreenIconsNodes()); };
    form.row("DAL_CML_listS", list, store, "SELECT c_" + form.list + all + " ORDER BY 1");
    const Work isPresent = [] { DAL_CML_isHomeScreenIconsNodePresent("n"); };
    form.row("DAL_CML_isSPresent (node)", isPresent, store, "SELECT 1" + all + form.ofNode);
    const Work remove = CALL(DAL_CML_deleteHomeScreenIconsNode, ("n"));
    form.row("DAL_CML_deleteS (node)", remove, store, "DELETE" + all + form.ofNode, true);
    const Work removeAll = CALL(DAL_CML_deleteAllHomeScreenIconsNodes, ());
    form.row("DAL_CML_deleteAllS (node)", removeAll, store, "DELETE FROM " + form.nodes, true);
}

// The settings that device.h also has, and deleting everything, for which both the library and the
// floor pass SQL as text.
void measureRest(const Form& form) {
    constexpr const char* kClear =
        "BEGIN;"
#define INT_LIST(item, node, list, ...) "DELETE FROM tbl_" list ";"
#define STRING_LIST INT_LIST
#include "settings/catalogue.def"
        "DELETE FROM tbl_dal_key_dal_value; COMMIT;"
        "BEGIN; DELETE FROM tbl_dal_key_dal_value; COMMIT";
    const auto clear = [] { sqlite3_exec(connection, kClear, nullptr, nullptr, nullptr); };
    const std::string select = "SELECT c_dal_value" + form.one;
#define DISPLAY(name) form.row("CML_get" #name, CML_get##name, CALL(DAL_CML_set##name, (1)), select)
    DISPLAY(DisplayOffTimeout);
    DISPLAY(DisplayInactivityTimeout);
    DISPLAY(AllowDriverToAdjustBrightness);
    measure({CALLED(DAL_CML_deleteAll), clear, CALL(DAL_CML_setTheme, (next())), form.set, true});
}

}  // namespace

void measureSettings() {
    openBare();
    const Form ofNumber{"number", "display-off-timeout", ""};
    const Form ofWord{"word", "theme", ""};
    const Form ofText{"text", "home-screen-icon-order", ""};
    const Form ofNumbers{"numbers", "browser-destination-hide-item",
                         "browser_destination_hide_list"};
    const Form ofTexts{"texts", "home-screen-icon", "home_screen_icons"};
    MEASURE(ofNumber, DisplayOffTimeout, (&number), (next()), ());
    MEASURE(ofWord, Theme, (&number), (next()), ());
    MEASURE(ofText, HomeScreenIconOrder, (text, &length, 64), (nextText()), ());
    MEASURE_MALLOC(ofText, HomeScreenIconOrder, (&copy, &length), (nextText()));
    MEASURE(ofNumbers, BrowserDestinationHideItem, ("n", &number), ("n", next()), ("n"));
    MEASURE(ofTexts, HomeScreenIcon, ("n", text, &length, 64), ("n", nextText()), ("n"));
    MEASURE_MALLOC(ofTexts, HomeScreenIcon, ("n", &copy, &length), ("n", nextText()));
    measureNodes(ofTexts);
    measureRest(ofNumber);
}
