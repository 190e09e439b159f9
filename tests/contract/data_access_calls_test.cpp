// Every setting: its functions, and the exact calls that they make of the data access library,
// SQLite, the system and the logging libraries. All of those are replaced here, and each call is
// noted as a line.
#include "contracts/data_access.h"

#include <array>
#include <cctype>
#include <concepts>
#include <cstring>
#include <functional>

#include "console-manager/settings.h"
#include "contracts/qor_core.h"
#include "support/sandbox.h"

static_assert(std::size(KeyPath{}.slots) == 17);

static std::string calls;                         // a line each
static std::string failing;                       // the line of the call that fails
constexpr int32_t kAnswer = 77;                   // of a call on an item
static std::string kept;                          // what a getter of a text delivers
static char* nodes[1];                            // of a listing
static std::array<TDL_LoggerRecord*, 2> loggers;  // in the order in which they are returned

// An argument as text; a connection is replaced by its name. Also stores what a getter delivers.
struct Shown {
    Shown(std::integral auto value) : words(std::to_string(value)) {}
    Shown(const char* string) : words(string == nullptr ? "null" : string) {}
    Shown(sqlite3* name) : Shown(reinterpret_cast<const char*>(name)) {}
    Shown(int32_t* value) : words("number") { *value = 5; }
    Shown(char* buffer) : words("buffer") { std::strcpy(buffer, kept.c_str()); }
    Shown(char** value) : words("block") { *value = strdup(kept.c_str()); }
    Shown(uint32_t* length) : words("length " + std::to_string(*length)) {
        *length = static_cast<uint32_t>(kept.size());
    }
    Shown(const KeyPath* path) {
        for (const auto& [name, value] : path->slots) {
            words += name || value ? Shown(name).words + " " + Shown(value).words + "/" : "/";
        }
        words.erase(words.find_last_not_of('/') + 1);
    }
    std::string words;
};

static int32_t note(int32_t answer, std::string call, std::initializer_list<Shown> arguments) {
    for (const Shown& argument : arguments) {
        call += " " + argument.words;
    }
    calls += call += "\n";
    return call == failing ? 1 : answer;
}

// clang-format off
#define MORE(...) __VA_OPT__(,) __VA_ARGS__
#define ON_ITEM(verb, noun, parameters, arguments)                                              \
    int32_t DAL_##verb##noun(sqlite3* db, const KeyPath* key MORE parameters) {                 \
        return note(kAnswer, #verb #noun, {db, key MORE arguments});                            \
    }                                                                                           \
    int32_t DAL_##verb##Profiled##noun(sqlite3* db, const KeyPath* key MORE parameters, int32_t profile) { \
        return note(kAnswer, #verb "Profiled" #noun, {db, key MORE arguments, profile});        \
    }
ON_ITEM(get, TypeBOOL, (BOOL* a, BOOL b), (a, b))
ON_ITEM(get, TypeInt, (int32_t* a, int32_t b), (a, b))
ON_ITEM(get, TypeString, (char* a, uint32_t* b, size_t c, const char* d), (a, b, c, d))
ON_ITEM(get, TypeStringMalloc, (char** a, uint32_t* b), (a, b))
ON_ITEM(set, TypeBOOLLimits, (BOOL a, uint32_t b, int32_t c, int32_t d), (a, b, c, d))
ON_ITEM(set, TypeIntLimits, (int32_t a, uint32_t b, int32_t c, int32_t d), (a, b, c, d))
ON_ITEM(set, TypeString, (const char* a, uint32_t b), (a, b))
ON_ITEM(delete, Item, (), ())
ON_ITEM(is, Present, (), ())
int32_t DAL_deleteProfiledNodeItem(sqlite3* a, const KeyPath* b, int32_t c) { return note(kAnswer, "deleteProfiledNodeItem", {a, b, c}); }
int32_t DAL_isProfiledNodePresent(sqlite3* a, const KeyPath* b, int32_t c) { return note(kAnswer, "isProfiledNodePresent", {a, b, c}); }
char** DAL_listProfiledNodeItems(sqlite3* a, const KeyPath* b, const char* c, int32_t d) { note(0, "listProfiledNodeItems", {a, b, c, d}); return nodes; }
int32_t DAL_SetDBConfiguration(sqlite3* a) { return note(0, "SetDBConfiguration", {a}); }
int32_t DAL_CreateFlatKeyTable(sqlite3* a) { return note(0, "CreateFlatKeyTable", {a}); }
int32_t DAL_DeleteFlatKeyTable(sqlite3* a) { return note(0, "DeleteFlatKeyTable", {a}); }
int32_t DAL_ExecuteQuery(sqlite3* a, const char* b) { return note(0, "ExecuteQuery", {a, b}); }
int sqlite3_close(sqlite3* a) { return note(0, "sqlite3_close", {a}); }
int sqlite3_open(const char* path, sqlite3** db) {
    *db = reinterpret_cast<sqlite3*>(const_cast<char*>(path[1] == 'm' ? "persistent" : "volatile"));
    return note(0, "sqlite3_open", {path});
}
int system(const char* command) { return note(0, "system", {command}); }
// clang-format on

TDL_LoggerRecord* TDL_logger() {
    std::swap(loggers[0], loggers[1]);
    return loggers[1];
}

void qor_logger_print3(TDL_LoggerRecord* logger, int level, int a, int b, int c, int d,
                       const char* format, va_list arguments) {
    char text[100];
    std::vsnprintf(text, sizeof text, format, arguments);
    const uint32_t number = logger == nullptr ? 0 : logger->reserved;
    note(0, "print", {number, level, a, b, c, d, static_cast<const char*>(text)});
}

namespace {

constexpr bool kProfiled = true;
constexpr bool kUnprofiled = false;
constexpr const char* kNode = "n";

// In lower case, with a separator between words.
std::string spelled(const std::string& name, char separator) {
    std::string words;
    for (const char c : name) {
        words += std::isupper(c) && !words.empty() ? std::string(1, separator) : "";
        words += static_cast<char>(std::tolower(c));
    }
    return words;
}

struct Setting {
    std::string name;
    std::string type;  // in the data access library
    bool isProfiled;
    std::string initial;
    std::vector<std::function<void(const Setting&)>> checks;  // of its functions
    Texts words = {};                                         // of an enumerated one, by number
    std::string list = {};                                    // of an item, which is that of kNode

    friend void PrintTo(const Setting& setting, std::ostream* out) { *out << setting.name; }

    std::string word(int32_t number) const {
        const auto place = static_cast<size_t>(number);
        return place < words.size() ? words[place] : "";
    }
    std::string database() const { return name == "AutoTheme" ? " volatile " : " persistent "; }
    std::string path() const {
        return database() + (list.empty() ? "" : list + " n/") + "dal_key " + spelled(name, '-');
    }
    // The call on the item, in the setting's scope.
    std::string call(const char* verb, const std::string& noun, const std::string& rest) const {
        const std::string all = noun + path() + rest;
        return verb + (isProfiled ? "Profiled" + all + " 0" : all);
    }
};

// Expects that this one call was made, and its result returned.
void expect(int32_t result, const std::string& call) {
    EXPECT_EQ(joined(result, calls), joined(kAnswer, call + "\n"));
    calls.clear();
}

// Not deduced from what is passed.
template <typename Function>
using Exact = std::type_identity_t<Function*>;

template <typename... Node>
void checkValue(const Setting& s, Exact<int32_t(Node..., char*, uint32_t*, size_t)> get,
                Exact<int32_t(Node..., const char*)> set, Node... node) {
    char text[16] = "?";
    uint32_t length = 99;
    kept = "v";
    expect(get(node..., text, &length, sizeof text),
           s.call("get", "TypeString", " buffer length 99 16 " + s.initial));
    EXPECT_EQ(joined(text, length), "v 1");
    expect(set(node..., "a'b"), s.call("set", "TypeString", " a'b 0"));
}

template <typename... Node>
void checkValue(const Setting& s, Exact<int32_t(Node..., int32_t*)> get,
                Exact<int32_t(Node..., int32_t)> set, Node... node) {
    const bool isWord = !s.words.empty();
    for (const int32_t number : {INT32_MIN, 0, 1, 2, 3, 4}) {
        int32_t value = -9;
        kept = s.word(number);
        expect(get(node..., &value),
               isWord
                   ? s.call("get", "TypeString", " buffer length 0 65 " + s.word(stoi(s.initial)))
                   : s.call("get", "Type" + s.type, " number " + s.initial));
        EXPECT_EQ(value, !isWord ? 5 : kept.empty() ? stoi(s.initial) : number);
        expect(set(node..., number), isWord
                                         ? s.call("set", "TypeString", " " + kept + " 0")
                                         : s.call("set", "Type" + s.type + "Limits",
                                                  joined("", number, "0 -2147483648 2147483647")));
    }
}

// The functions that all settings have; those of a list's item take the node first.
template <typename Value, typename... Node>
Setting family(const char* name, const char* type, bool isProfiled, const char* initial, auto get,
               Exact<int32_t(Node..., Value)> set, Value (*getDefault)(),
               int32_t (*deleteItem)(Node...), int32_t (*deleteAll)(Node...),
               int32_t (*isPresent)(Node...), Node... node) {
    const auto check = [=](const Setting& s) {
        EXPECT_EQ(joined(getDefault()), s.initial);
        checkValue<Node...>(s, get, set, node...);
        expect(deleteItem(node...), s.call("delete", "Item", ""));
        expect(deleteAll(node...), "deleteProfiledItem" + s.path() + " -1");
        expect(isPresent(node...), s.call("is", "Present", ""));
    };
    return {name, type, isProfiled, initial, {check}};
}

template <typename... Node>
Setting textFamily(Exact<int32_t(Node..., char**, uint32_t*)> get, Setting family, Node... node) {
    family.checks.emplace_back([=](const Setting& s) {
        char* text = nullptr;
        uint32_t length = 99;
        expect(get(node..., &text, &length), s.call("get", "TypeStringMalloc", " block length 99"));
        EXPECT_EQ(joined(text, length), "v 1");
        free(text);
    });
    return family;
}

Setting enumerated(Texts words, Setting family) {
    family.words = std::move(words);
    return family;
}

Setting item(const char* list, Exact<int32_t(const char*)> isPresent,
             Exact<int32_t(const char*)> deleteNode, Exact<int32_t()> deleteAll,
             Exact<char**()> listNodes, Setting family) {
    family.list = spelled(list, '_');
    family.checks.emplace_back([=](const Setting& s) {
        const std::string node = s.database() + s.list + " n 0",
                          all = s.database() + s.list + " null ";
        expect(isPresent(kNode), "isProfiledNodePresent" + node);
        expect(deleteNode(kNode), "deleteProfiledNodeItem" + node);
        expect(deleteAll(), "deleteProfiledNodeItem" + all + "-1");
        EXPECT_EQ(listNodes(), nodes);
        EXPECT_EQ(calls, "listProfiledNodeItems" + all + s.list + " 0\n");
    });
    return family;
}

// clang-format off
#define FAMILY(Value, type, isProfiled, initial, name, ...) family<Value>(#name, type, isProfiled, initial, DAL_CML_get##name, \
    DAL_CML_set##name, DAL_CML_get##name##Default, DAL_CML_delete##name, DAL_CML_deleteAll##name, \
    DAL_CML_is##name##Present __VA_OPT__(,) __VA_ARGS__)
#define TRUTH(...) FAMILY(BOOL, "BOOL", __VA_ARGS__)
#define NUMBER(...) FAMILY(int32_t, "Int", __VA_ARGS__)
#define TEXT(isProfiled, initial, name, ...) textFamily(DAL_CML_get##name##Malloc, \
    FAMILY(const char*, "String", isProfiled, initial, name __VA_OPT__(,) __VA_ARGS__) __VA_OPT__(,) __VA_ARGS__)
#define WORD(isProfiled, initial, name, ...) enumerated({__VA_ARGS__}, FAMILY(int32_t, "String", isProfiled, initial, name))
#define LIST(list, itemFamily) item(#list, DAL_CML_is##list##NodePresent, DAL_CML_delete##list##Node, \
    DAL_CML_deleteAll##list##Nodes, DAL_CML_list##list##Nodes, itemFamily)

const Setting kSettings[] = {
    TRUTH(kProfiled, "0", EnableDriverPasswordLogin),           TRUTH(kProfiled, "0", EnableDriverIdEntry),
    TRUTH(kProfiled, "0", AllowDriverReboot),                   TRUTH(kProfiled, "0", AllowDriverToAdjustBrightness),
    TRUTH(kProfiled, "0", QorHotKeySelectEnabled),              TRUTH(kProfiled, "0", EnableVirtualQorTerminal),
    TRUTH(kProfiled, "0", UseCodeEntryKeypad),                  TRUTH(kProfiled, "0", ShowToggleThemeIcon),
    TRUTH(kProfiled, "0", ShowProfilesListByDefault),           TRUTH(kProfiled, "0", ShowPassengerCountTile),
    NUMBER(kProfiled, "0", MaintenanceTimeout),                 TRUTH(kProfiled, "1", DriverQorTerminalPermission),
    TRUTH(kProfiled, "1", ShowCustomSplash),                    TRUTH(kProfiled, "1", WakeOnRemoteAction),
    TRUTH(kProfiled, "1", UseHomeCodeBrowseControls),           TRUTH(kProfiled, "1", TouchScreenClick),
    TRUTH(kProfiled, "1", BeepsOnUsbUpdate),                    TRUTH(kProfiled, "1", ShowHomeScreenDateTime),
    NUMBER(kProfiled, "1", UserInterfaceRevision),              TRUTH(kUnprofiled, "0", EnableServiceIdEntry),
    TRUTH(kUnprofiled, "0", AllowMultipleMessages),             TRUTH(kUnprofiled, "0", UsbUpdateRequiresPassword),
    TRUTH(kUnprofiled, "0", DestinationChangeRequiresPassword), TRUTH(kUnprofiled, "0", InformationChangeRequiresPassword),
    TRUTH(kUnprofiled, "0", RoundTripEnable),                   TRUTH(kUnprofiled, "0", RoundTripOrientation),
    TRUTH(kUnprofiled, "0", SignTestMaintenanceLock),           NUMBER(kUnprofiled, "0", DriverDisplayRenderMode),
    TRUTH(kUnprofiled, "1", AllowControlOfDestinations),        TRUTH(kUnprofiled, "1", TimeFormat),
    NUMBER(kProfiled, "4", HomeScreenIconBarQty),               NUMBER(kProfiled, "15", DisplayInactivityTimeout),
    NUMBER(kProfiled, "30", DisplayOffTimeout),                 NUMBER(kUnprofiled, "-1", DriverDisplaySource),
    TEXT(kProfiled, "", HomeScreenIconOrder),               TEXT(kProfiled, "UTF-8", DriverMessageTextEncoding),
    TEXT(kUnprofiled, "EN", Language),
    WORD(kProfiled, "0", Theme, "LIGHT", "DARK", "AUTO"),   WORD(kProfiled, "0", AutoTheme, "LIGHT", "DARK", "AUTO"),
    WORD(kProfiled, "0", QorHotKeyIcon, "DEFAULT", "AUDIO_ANNOUNCEMENT"),
    WORD(kProfiled, "1", DestinationClearControl, "DISABLE", "ENABLE", "PROMPT"),
    WORD(kUnprofiled, "0", DriverDestinationSelectionMode, "ENTER_BY_NUMBER", "BROWSE_FROM_LIST"),
    WORD(kUnprofiled, "0", DriverInformationSelectionMode, "ENTER_BY_NUMBER", "BROWSE_FROM_LIST"),
    WORD(kUnprofiled, "1", DateFormat, "DDMMYY", "DDMMYYYY", "MMDDYYYY", "YYYYMMDD"),
    LIST(BrowserDestinationHideList, NUMBER(kProfiled, "1", BrowserDestinationHideItem, kNode)),
    LIST(BrowserInformationHideList, NUMBER(kProfiled, "1", BrowserInformationHideItem, kNode)),
    LIST(HomeScreenIcons, TEXT(kProfiled, "", HomeScreenIcon, kNode)),
    LIST(QorHotKeySelectList, TEXT(kProfiled, "", QorHotKeySelectListItem, kNode)),
    LIST(IconsMenuFavourites, TEXT(kProfiled, "", IconsMenuFavourite, kNode)),
};
// clang-format on

using EachSetting = testing::TestWithParam<Setting>;

TEST_P(EachSetting, MakesItsCallsAndReturnsTheirResults) {
    DAL_CML_deleteAll();  // opens the databases
    calls.clear();
    for (const auto& check : GetParam().checks) {
        check(GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, EachSetting, testing::ValuesIn(kSettings),
                         testing::PrintToStringParamName());

// Repeats the text for each list, in the order of kSettings. The list's name replaces @.
std::string forEachList(const std::string& pattern) {
    std::string all;
    for (const Setting& setting : kSettings) {
        for (const char c : setting.list.empty() ? "" : pattern) {
            all += c == '@' ? setting.list : std::string(1, c);
        }
    }
    return all;
}

// clang-format off
const std::string kOpening =
    "system mkdir -p /mnt/vex-data/m7/\n"
    "sqlite3_open /mnt/vex-data/m7/console-manager.db\n"
    "SetDBConfiguration persistent\n" + forEachList(
    "ExecuteQuery persistent CREATE TABLE IF NOT EXISTS tbl_@ (c_@ TEXT, c_dal_profile_no TEXT, UNIQUE(c_@, c_dal_profile_no));\n"
    "ExecuteQuery persistent CREATE TABLE IF NOT EXISTS tbl_@_dal_key_dal_value (c_@ TEXT, c_dal_key TEXT, c_dal_profile_no TEXT, c_dal_value TEXT, UNIQUE(c_@, c_dal_key, c_dal_profile_no), FOREIGN KEY(c_@, c_dal_profile_no) REFERENCES tbl_@ (c_@, c_dal_profile_no) ON DELETE CASCADE ON UPDATE CASCADE);\n") +
    "CreateFlatKeyTable persistent\n";
const std::string kDeleting =
    "ExecuteQuery persistent BEGIN TRANSACTION;\n" + forEachList(
    "ExecuteQuery persistent DELETE FROM tbl_@;\n") +
    "DeleteFlatKeyTable persistent\n"
    "ExecuteQuery persistent COMMIT;\n";
const std::string kOpeningVolatile =
    "system mkdir -p /tmp/m7/\n"
    "sqlite3_open /tmp/m7/console-manager.db\n"
    "SetDBConfiguration volatile\n"
    "CreateFlatKeyTable volatile\n";
const std::string kDeletingVolatile =
    "ExecuteQuery volatile BEGIN TRANSACTION;\n"
    "DeleteFlatKeyTable volatile\n"
    "ExecuteQuery volatile COMMIT;\n";
// clang-format on

TEST(DataAccessCalls, OfTheFirstUseAlsoIfItFailsAndOfDeletingAll) {
    TDL_LoggerRecord silent{1, ~2u}, enabled{2, 2u};
    // The loggers, and the number of the one that is printed to.
    const std::pair<decltype(loggers), std::string> loggings[] = {
        {{&enabled, nullptr}, "0"}, {{nullptr, &silent}, "1"}, {{&silent, &enabled}, ""}};
    for (size_t line = kOpening.find("sqlite3_open"); line < kOpening.size();
         line += failing.size()) {
        failing = kOpening.substr(line, kOpening.find('\n', line) + 1 - line);
        const std::string opening = kOpening.substr(0, line + failing.size()),
                          verb = failing.starts_with("sqlite3_open") ? "open" : "initialise",
                          message = " 2 0 0 0 0 Unable to " + verb +
                                    " /mnt/vex-data/m7/console-manager.db\n";
        for (const auto& [records, printed] : loggings) {
            loggers = records;
            calls.clear();
            EXPECT_EQ(DAL_CML_deleteLanguage(), kAnswer);
            EXPECT_EQ(calls, opening + (printed.empty() ? "" : "print " + printed + message) +
                                 "sqlite3_close persistent\ndeleteItem null dal_key language\n");
        }
    }
    loggers = {};
    calls.clear();
    failing = "CreateFlatKeyTable volatile\n";
    EXPECT_EQ(DAL_CML_deleteAll(), 1);
    EXPECT_EQ(calls, kOpening + kDeleting + kOpeningVolatile +
                         "print 0 2 0 0 0 0 Unable to initialise "
                         "/tmp/m7/console-manager.db\nsqlite3_close volatile\n");
    calls.clear();
    failing = "DeleteFlatKeyTable persistent\n";
    EXPECT_EQ(DAL_CML_deleteAll(), 0);
    EXPECT_EQ(calls, kDeleting + kOpeningVolatile + kDeletingVolatile);
}

TEST(DataAccessCalls, OfDeletingAllWithoutThePersistentDatabase) {
    failing = "SetDBConfiguration persistent\n";
    EXPECT_EQ(DAL_CML_deleteAll(), 1);
    const std::string rest = kOpeningVolatile + kDeletingVolatile;
    EXPECT_TRUE(calls.ends_with("sqlite3_close persistent\n" + rest)) << calls;
}

}  // namespace
