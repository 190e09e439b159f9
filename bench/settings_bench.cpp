// The accessors beside the same statement by SQLite alone, prepared once, on the same tables under
// the same pragmas. Every setting is measured; those of a kind share a row.
#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>
#include <type_traits>

#include "bench/measure.h"
#include "console-manager/device.h"
#include "console-manager/settings.h"
#include "contracts/data_access.h"

namespace {

constexpr const char* kProfiled = "0";
constexpr const char* kUnprofiled = "";
constexpr const char* kNode = "n";
const std::string kNodes = "node";

// A connection of the bench's own to a copy of the database.
sqlite3* bareConnection() {
    static sqlite3* const bare = [] {
        sqlite3* connection = nullptr;
        DAL_CML_isThemePresent();
        sqlite3_open("/mnt/vex-data/m7/console-manager.db", &connection);
        sqlite3_exec(connection, "VACUUM INTO '/mnt/bare.db'", nullptr, nullptr, nullptr);
        sqlite3_close(connection);
        sqlite3_open("/mnt/bare.db", &connection);
        require(DAL_SetDBConfiguration(connection) == 0, "SQLite alone");
        return connection;
    }();
    return bare;
}

// An empty text makes a statement that isn't run.
class Statement {
  public:
    explicit Statement(const std::string& sql) {
        sqlite3_prepare_v3(bareConnection(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &prepared,
                           nullptr);
    }
    ~Statement() { sqlite3_finalize(prepared); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Binds the texts and hands the first column of each row to use. Returns the number of rows.
    template <typename Use>
    int run(std::initializer_list<const char*> texts, Use use) const {
        int parameter = 0;
        for (const char* const text : texts) {
            sqlite3_bind_text(prepared, ++parameter, text, -1, SQLITE_STATIC);
        }
        int rows = 0;
        int status;
        while ((status = sqlite3_step(prepared)) == SQLITE_ROW) {
            use(reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0)));
            ++rows;
        }
        sqlite3_reset(prepared);
        require(status == SQLITE_DONE, "SQLite alone");
        return rows;
    }
    void run(std::initializer_list<const char*> texts = {}) const {
        run(texts, [](const char*) {});
    }

  private:
    sqlite3_stmt* prepared = nullptr;
};

// Where an item has its row; no list for a plain one. The node is always the same.
struct Place {
    std::string list;
    const char* key;
    const char* profile;

    std::string nodes() const { return "tbl_" + list; }
    std::string items() const { return (list.empty() ? "tbl" : nodes()) + "_dal_key_dal_value"; }
    std::string ofNode() const { return list.empty() ? "" : " AND c_" + list + " = 'n'"; }
    std::string where() const { return " WHERE c_dal_key = ? AND c_dal_profile_no = ?" + ofNode(); }
    std::string addNode() const {
        return list.empty() ? "" : "INSERT OR IGNORE INTO " + nodes() + " VALUES ('n', ?)";
    }
    std::string upsert() const {
        return "INSERT INTO " + items() + " (c_dal_key, c_dal_profile_no, c_dal_value" +
               (list.empty() ? ") VALUES (?, ?, ?)" : ", c_" + list + ") VALUES (?, ?, ?, 'n')") +
               " ON CONFLICT DO UPDATE SET c_dal_value = excluded.c_dal_value";
    }
};

// An item by SQLite alone.
class BareItem {
  public:
    explicit BareItem(const Place& at) : place(at) {}

    template <typename Use>
    void get(Use use) const {
        require(select.run({place.key, place.profile}, use) == 1, "SQLite alone");
    }
    void set(const char* value) const {
        // An item of a list needs the row of its node, and both go to the disk as one.
        if (!place.list.empty()) {
            begin.run();
            addNode.run({place.profile});
        }
        insert.run({place.key, place.profile, value});
        if (!place.list.empty()) {
            commit.run();
        }
    }
    void isPresent() const { present.run({place.key, place.profile}); }
    void remove() const { removeOne.run({place.key, place.profile}); }
    void removeAll() const { removeEach.run({place.key}); }

  private:
    Place place;
    Statement select{"SELECT c_dal_value FROM " + place.items() + place.where()};
    Statement present{"SELECT 1 FROM " + place.items() + place.where()};
    Statement insert{place.upsert()};
    Statement removeOne{"DELETE FROM " + place.items() + place.where()};
    Statement removeEach{"DELETE FROM " + place.items() + " WHERE c_dal_key = ?" + place.ofNode()};
    Statement begin{"BEGIN"};
    Statement commit{"COMMIT"};
    Statement addNode{place.addNode()};
};

// Calls an accessor; those of a list want the node first.
template <typename Function, typename... Arguments>
auto access(Function* accessor, Arguments... arguments) {
    if constexpr (std::is_invocable_v<Function, Arguments...>) {
        return accessor(arguments...);
    } else {
        return accessor(kNode, arguments...);
    }
}

// SQLite writes nothing for a value that is stored already: another one each time.
class Alternating {
  public:
    int number() { return value = 1 - value; }
    const char* text() { return number() == 0 ? "0" : "1"; }

  private:
    int value = 0;
};

// One of the functions of a setting; those of a kind share a row, where S stands for the name.
Subject subject(const std::string& verb, const std::string& name, const std::string& suffix,
                const std::string& kind, Work call, Work floor) {
    const std::string standIn = kind == kNodes ? "N" : "S";
    return {.function = "DAL_CML_" + verb + name + suffix,
            .call = std::move(call),
            .floor = std::move(floor),
            .row = "DAL_CML_" + verb + standIn + suffix + ", " + kind,
            .setting = name};
}

// What all kinds have beside a get and a set of their own.
template <typename Default, typename Delete, typename Present>
void measureRest(const std::string& kind, const std::string& name, const BareItem& bare,
                 const Work& set, Default* initial, Delete* remove, Delete* removeAll,
                 Present* isPresent) {
    measure(subject(
        "is", name, "Present", kind, [=] { access(isPresent); }, [&] { bare.isPresent(); }));
    measure(subject("get", name, "Default", kind, [=] { initial(); }, {}));
    Subject deleted = subject(
        "delete", name, "", kind, [=] { access(remove); }, [&] { bare.remove(); });
    deleted.beforeCall = set;
    deleted.beforeFloor = [&] { bare.set("1"); };
    measure(deleted);
    Subject all = subject(
        "deleteAll", name, "", kind, [=] { access(removeAll); }, [&] { bare.removeAll(); });
    all.beforeCall = deleted.beforeCall;
    all.beforeFloor = deleted.beforeFloor;
    measure(all);
}

template <typename Get, typename Set, typename... Rest>
void measureNumber(const std::string& kind, const std::string& name, const Place& place, Get* get,
                   Set* set, Rest... rest) {
    const BareItem bare(place);
    const Work setNext = [=, next = Alternating()]() mutable {
        require(access(set, next.number()) == 0, "a set");
    };
    measure(subject("set", name, "", kind, setNext,
                    [&, next = Alternating()]() mutable { bare.set(next.text()); }));
    int32_t number = 0;
    measure(subject(
        "get", name, "", kind, [&] { require(access(get, &number) == 0, "a get"); },
        [&] { bare.get([&](const char* text) { number = std::atoi(text); }); }));
    measureRest(kind, name, bare, setNext, rest...);
}

template <typename Get, typename GetMalloc, typename Set, typename... Rest>
void measureString(const std::string& kind, const std::string& name, const Place& place, Get* get,
                   GetMalloc* getMalloc, Set* set, Rest... rest) {
    const BareItem bare(place);
    const Work setNext = [=, next = Alternating()]() mutable {
        require(access(set, next.text()) == 0, "a set");
    };
    measure(subject("set", name, "", kind, setNext,
                    [&, next = Alternating()]() mutable { bare.set(next.text()); }));
    std::array<char, 64> buffer{};
    uint32_t length = 0;
    measure(subject(
        "get", name, "", kind,
        [&] { require(access(get, buffer.data(), &length, buffer.size()) == 0, "a get"); },
        [&] {
            bare.get(
                [&](const char* text) { std::strncpy(buffer.data(), text, buffer.size() - 1); });
        }));
    measure(subject(
        "get", name, "Malloc", kind,
        [&] {
            char* copy = nullptr;
            require(access(getMalloc, &copy, &length) == 0, "a get");
            std::free(copy);
        },
        [&] { bare.get([](const char* text) { std::free(strdup(text)); }); }));
    measureRest(kind, name, bare, setNext, rest...);
}

template <typename Set>
void measureNodes(const std::string& node, const Place& place, Set* set, char** (*list)(),
                  int32_t (*remove)(const char*), int32_t (*removeAll)(),
                  int32_t (*isPresent)(const char*)) {
    const BareItem bare(place);
    const Statement select("SELECT c_" + place.list + " FROM " + place.nodes() +
                           " WHERE c_dal_profile_no = ? ORDER BY 1");
    const Statement present("SELECT 1 FROM " + place.nodes() + " WHERE c_dal_profile_no = ?" +
                            place.ofNode());
    const Statement removeOne("DELETE FROM " + place.nodes() + " WHERE c_dal_profile_no = ?" +
                              place.ofNode());
    const Statement removeEach("DELETE FROM " + place.nodes());
    const auto of = [&](const std::string& verb, const std::string& suffix, Work call, Work floor) {
        Subject result = subject(verb, node, suffix, kNodes, std::move(call), std::move(floor));
        result.beforeCall = [=] {
            if constexpr (std::is_invocable_v<Set, const char*, int>) {
                set(kNode, 1);
            } else {
                set(kNode, "1");
            }
        };
        result.beforeFloor = [&] { bare.set("1"); };
        measure(result);
    };
    of(
        "list", "s",
        [=] {
            char** const ids = list();
            for (char** id = ids; *id != nullptr; ++id) {
                std::free(*id);
            }
            std::free(ids);
        },
        [&] { select.run({"0"}, [](const char* id) { std::free(strdup(id)); }); });
    of(
        "is", "Present", [=] { isPresent(kNode); }, [&] { present.run({"0"}); });
    of(
        "delete", "", [=] { remove(kNode); }, [&] { removeOne.run({"0"}); });
    of(
        "deleteAll", "s", [=] { removeAll(); }, [&] { removeEach.run(); });
}

#define REST_OF(name)                                                          \
    DAL_CML_get##name##Default, DAL_CML_delete##name, DAL_CML_deleteAll##name, \
        DAL_CML_is##name##Present

#define NUMBER(kind, name, ...)                                                          \
    measureNumber(kind, #name, Place{__VA_ARGS__}, DAL_CML_get##name, DAL_CML_set##name, \
                  REST_OF(name));
#define STRING(kind, name, ...)                                                                  \
    measureString(kind, #name, Place{__VA_ARGS__}, DAL_CML_get##name, DAL_CML_get##name##Malloc, \
                  DAL_CML_set##name, REST_OF(name));
#define NODES(item, node, list, key)                                                           \
    measureNodes(#node, Place{list, key, kProfiled}, DAL_CML_set##item, DAL_CML_list##node##s, \
                 DAL_CML_delete##node, DAL_CML_deleteAll##node##s, DAL_CML_is##node##Present);

void measureItems() {
#define BOOL_SETTING INT_SETTING
#define INT_SETTING(name, key, scope, ...) NUMBER("number", name, "", key, k##scope)
#include "settings/catalogue.def"
#define ENUMERATED_SETTING(name, key, scope, ...) NUMBER("enumerated", name, "", key, k##scope)
#include "settings/catalogue.def"
#define STRING_SETTING(name, key, scope, ...) STRING("string", name, "", key, k##scope)
#include "settings/catalogue.def"
#define INT_LIST(item, node, list, key, ...) NUMBER("list number", item, list, key, kProfiled)
#include "settings/catalogue.def"
#define STRING_LIST(item, node, list, key, ...) STRING("list string", item, list, key, kProfiled)
#include "settings/catalogue.def"
#define INT_LIST(item, node, list, key, ...) NODES(item, node, list, key)
#define STRING_LIST INT_LIST
#include "settings/catalogue.def"
}

// Both databases. The library hands SQL over as text, as it has to, and so does the floor.
void measureDeleteAll() {
    const BareItem bare(Place{"", "theme", kProfiled});
    constexpr const char* kClear =
        "BEGIN;"
#define INT_LIST(item, node, list, ...) "DELETE FROM tbl_" list ";"
#define STRING_LIST INT_LIST
#include "settings/catalogue.def"
        "DELETE FROM tbl_dal_key_dal_value; COMMIT;"
        "BEGIN; DELETE FROM tbl_dal_key_dal_value; COMMIT;";
    measure({.function = "DAL_CML_deleteAll",
             .call = [] { require(DAL_CML_deleteAll() == 0, "deleteAll"); },
             .floor = [=] { sqlite3_exec(bareConnection(), kClear, nullptr, nullptr, nullptr); },
             .beforeCall =
                 [] {
                     DAL_CML_setTheme(1);
                     DAL_CML_setAutoTheme(1);
                 },
             .beforeFloor = [&] { bare.set("1"); }});
}

}  // namespace

void measureSettings() {
    beginSubsystem("settings");
    measureItems();
    measureDeleteAll();
}

void measureDisplay() {
    const auto add = [](const std::string& function, int32_t (*set)(int32_t), int32_t (*get)(),
                        const char* key) {
        const BareItem bare(Place{"", key, kProfiled});
        int32_t number = 0;
        set(1);
        bare.set("1");
        measure({.function = function,
                 .call = [=] { require(get() == 1, "a setting of the display"); },
                 .floor = [&] { bare.get([&](const char* text) { number = std::atoi(text); }); }});
    };
    add("CML_getAllowDriverToAdjustBrightness", DAL_CML_setAllowDriverToAdjustBrightness,
        CML_getAllowDriverToAdjustBrightness, "allow-driver-to-adjust-brightness");
    add("CML_getDisplayInactivityTimeout", DAL_CML_setDisplayInactivityTimeout,
        CML_getDisplayInactivityTimeout, "display-inactivity-timeout");
    add("CML_getDisplayOffTimeout", DAL_CML_setDisplayOffTimeout, CML_getDisplayOffTimeout,
        "display-off-timeout");
}
