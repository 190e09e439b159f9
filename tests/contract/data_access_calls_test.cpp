// What the settings ask of the data access library, of SQLite and of the system, word for word: all
// of them are played here, and each call is told in a line.
#include <concepts>
#include <cstring>

#include "console-manager/settings.h"
#include "contracts/data_access.h"
#include "support/sandbox.h"

static_assert(std::size(KeyPath{}.slots) == 17);

// What a caller hands over.
static int32_t number;
static uint32_t length;
static char text[9];
static char* block;

static std::string calls;        // a line each
static std::string failing;      // the line of the call that fails
constexpr int32_t kAnswer = 77;  // of a call on an item
static char* nodes[1];           // of a listing

// An argument in words; a connection is played by its name.
struct Shown {
    Shown(std::integral auto value) : words(std::to_string(value)) {}
    Shown(const char* string) : words(string == nullptr ? "null" : string) {}
    Shown(sqlite3* name) : Shown(reinterpret_cast<const char*>(name)) {}
    Shown(int32_t* value) : words(value == &number ? "&number" : "?") {}
    Shown(char** value) : words(value == &block ? "&block" : "?") {}
    Shown(uint32_t* word) : words(word == &length ? "&length" : *word == 0 ? "own 0" : "?") {}
    Shown(char* buffer) : words(buffer == text ? "text" : "own") { std::strcpy(buffer, "AUTO"); }
    Shown(const KeyPath* path) {
        for (const auto& [name, value] : path->slots) {
            words += name || value ? Shown(name).words + " " + Shown(value).words + "/" : "/";
        }
        words.erase(words.find_last_not_of('/') + 1);
    }
    std::string words;
};

static int32_t tell(int32_t answer, std::string call, std::initializer_list<Shown> arguments) {
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
        return tell(kAnswer, #verb #noun, {db, key MORE arguments});                              \
    }                                                                                           \
    int32_t DAL_##verb##Profiled##noun(sqlite3* db, const KeyPath* key MORE parameters, int32_t profile) { \
        return tell(kAnswer, #verb "Profiled" #noun, {db, key MORE arguments, profile});          \
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
int32_t DAL_deleteProfiledNodeItem(sqlite3* a, const KeyPath* b, int32_t c) { return tell(kAnswer, "deleteProfiledNodeItem", {a, b, c}); }
int32_t DAL_isProfiledNodePresent(sqlite3* a, const KeyPath* b, int32_t c) { return tell(kAnswer, "isProfiledNodePresent", {a, b, c}); }
char** DAL_listProfiledNodeItems(sqlite3* a, const KeyPath* b, const char* c, int32_t d) { tell(0, "listProfiledNodeItems", {a, b, c, d}); return nodes; }
int32_t DAL_SetDBConfiguration(sqlite3* a) { return tell(0, "SetDBConfiguration", {a}); }
int32_t DAL_CreateFlatKeyTable(sqlite3* a) { return tell(0, "CreateFlatKeyTable", {a}); }
int32_t DAL_DeleteFlatKeyTable(sqlite3* a) { return tell(0, "DeleteFlatKeyTable", {a}); }
int32_t DAL_ExecuteQuery(sqlite3* a, const char* b) { return tell(0, "ExecuteQuery", {a, b}); }
int sqlite3_close(sqlite3* a) { return tell(0, "sqlite3_close", {a}); }
int sqlite3_open(const char* path, sqlite3** db) {
    *db = reinterpret_cast<sqlite3*>(const_cast<char*>(path[1] == 'm' ? "persistent" : "volatile"));
    return tell(0, "sqlite3_open", {path});
}
int system(const char* command) { return tell(0, "system", {command}); }
// clang-format on

namespace {

#define CALL(...) [] { return DAL_CML_##__VA_ARGS__ == kAnswer; }, #__VA_ARGS__

// clang-format off
const struct {
    bool (*run)();
    const char* call;
    const char* made;
} kRows[] = {
    {CALL(getEnableServiceIdEntry(&number)), "getTypeBOOL persistent dal_key enable-service-id-entry &number 0"},
    {CALL(setEnableServiceIdEntry(2)), "setTypeBOOLLimits persistent dal_key enable-service-id-entry 2 0 -2147483648 2147483647"},
    {CALL(deleteEnableServiceIdEntry()), "deleteItem persistent dal_key enable-service-id-entry"},
    {CALL(deleteAllEnableServiceIdEntry()), "deleteProfiledItem persistent dal_key enable-service-id-entry -1"},
    {CALL(isEnableServiceIdEntryPresent()), "isPresent persistent dal_key enable-service-id-entry"},
    {CALL(getTouchScreenClick(&number)), "getProfiledTypeBOOL persistent dal_key touch-screen-click &number 1 0"},
    {CALL(setTouchScreenClick(-3)), "setProfiledTypeBOOLLimits persistent dal_key touch-screen-click -3 0 -2147483648 2147483647 0"},
    {CALL(deleteTouchScreenClick()), "deleteProfiledItem persistent dal_key touch-screen-click 0"},
    {CALL(deleteAllTouchScreenClick()), "deleteProfiledItem persistent dal_key touch-screen-click -1"},
    {CALL(isTouchScreenClickPresent()), "isProfiledPresent persistent dal_key touch-screen-click 0"},
    {CALL(getDriverDisplaySource(&number)), "getTypeInt persistent dal_key driver-display-source &number -1"},
    {CALL(setDriverDisplaySource(5)), "setTypeIntLimits persistent dal_key driver-display-source 5 0 -2147483648 2147483647"},
    {CALL(getDisplayOffTimeout(&number)), "getProfiledTypeInt persistent dal_key display-off-timeout &number 30 0"},
    {CALL(setDisplayOffTimeout(5)), "setProfiledTypeIntLimits persistent dal_key display-off-timeout 5 0 -2147483648 2147483647 0"},
    {CALL(getLanguage(text, &length, 9)), "getTypeString persistent dal_key language text &length 9 EN"},
    {CALL(getLanguageMalloc(&block, &length)), "getTypeStringMalloc persistent dal_key language &block &length"},
    {CALL(setLanguage(nullptr)), "setTypeString persistent dal_key language null 0"},
    {CALL(getDriverMessageTextEncoding(text, &length, 9)), "getProfiledTypeString persistent dal_key driver-message-text-encoding text &length 9 UTF-8 0"},
    {CALL(getDriverMessageTextEncodingMalloc(&block, &length)), "getProfiledTypeStringMalloc persistent dal_key driver-message-text-encoding &block &length 0"},
    {CALL(setDriverMessageTextEncoding("v")), "setProfiledTypeString persistent dal_key driver-message-text-encoding v 0 0"},
    {CALL(getDateFormat(&number)), "getTypeString persistent dal_key date-format own own 0 65 DDMMYYYY"},
    {CALL(setDateFormat(3)), "setTypeString persistent dal_key date-format YYYYMMDD 0"},
    {CALL(deleteDateFormat()), "deleteItem persistent dal_key date-format"},
    {CALL(deleteAllDateFormat()), "deleteProfiledItem persistent dal_key date-format -1"},
    {CALL(isDateFormatPresent()), "isPresent persistent dal_key date-format"},
    {CALL(getTheme(&number)), "getProfiledTypeString persistent dal_key theme own own 0 65 LIGHT 0"},
    {CALL(setTheme(-1)), "setProfiledTypeString persistent dal_key theme  0 0"},
    {CALL(setAutoTheme(2)), "setProfiledTypeString volatile dal_key auto-theme AUTO 0 0"},
    {CALL(getBrowserDestinationHideItem("n", &number)), "getProfiledTypeInt persistent browser_destination_hide_list n/dal_key browser-destination-hide-item &number 1 0"},
    {CALL(setBrowserDestinationHideItem("n", 5)), "setProfiledTypeIntLimits persistent browser_destination_hide_list n/dal_key browser-destination-hide-item 5 0 -2147483648 2147483647 0"},
    {CALL(getHomeScreenIcon("n", text, &length, 9)), "getProfiledTypeString persistent home_screen_icons n/dal_key home-screen-icon text &length 9  0"},
    {CALL(getHomeScreenIconMalloc("n", &block, &length)), "getProfiledTypeStringMalloc persistent home_screen_icons n/dal_key home-screen-icon &block &length 0"},
    {CALL(setHomeScreenIcon("n", "v")), "setProfiledTypeString persistent home_screen_icons n/dal_key home-screen-icon v 0 0"},
    {CALL(deleteHomeScreenIcon("n")), "deleteProfiledItem persistent home_screen_icons n/dal_key home-screen-icon 0"},
    {CALL(deleteAllHomeScreenIcon("n")), "deleteProfiledItem persistent home_screen_icons n/dal_key home-screen-icon -1"},
    {CALL(isHomeScreenIconPresent("n")), "isProfiledPresent persistent home_screen_icons n/dal_key home-screen-icon 0"},
    {CALL(deleteHomeScreenIconsNode("n")), "deleteProfiledNodeItem persistent home_screen_icons n 0"},
    {CALL(deleteAllHomeScreenIconsNodes()), "deleteProfiledNodeItem persistent home_screen_icons null -1"},
    {CALL(isHomeScreenIconsNodePresent("n")), "isProfiledNodePresent persistent home_screen_icons n 0"},
    {[] { return DAL_CML_listHomeScreenIconsNodes() == nodes; }, "list", "listProfiledNodeItems persistent home_screen_icons null home_screen_icons 0"},
};
// clang-format on

std::string forEachList(const std::string& text) {
    std::string all;
    for (const char* list :
         {"browser_destination_hide_list", "browser_information_hide_list", "home_screen_icons",
          "qor_hot_key_select_list", "icons_menu_favourites"}) {
        for (const char c : text) {
            all += c == '@' ? list : std::string(1, c);
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
    "ExecuteQuery persistent COMMIT;\n"
    "system mkdir -p /tmp/m7/\n"
    "sqlite3_open /tmp/m7/console-manager.db\n"
    "SetDBConfiguration volatile\n"
    "CreateFlatKeyTable volatile\n"
    "ExecuteQuery volatile BEGIN TRANSACTION;\n"
    "DeleteFlatKeyTable volatile\n"
    "ExecuteQuery volatile COMMIT;\n";
// clang-format on

TEST(DataAccessCalls, OfTheFirstUseAlsoIfItFailsAndOfDeletingAll) {
    for (size_t line = kOpening.find("sqlite3_open"); line < kOpening.size();
         line += failing.size()) {
        calls.clear();
        failing = kOpening.substr(line, kOpening.find('\n', line) + 1 - line);
        EXPECT_EQ(DAL_CML_deleteLanguage(), kAnswer);
        EXPECT_EQ(calls, kOpening.substr(0, line + failing.size()) +
                             "sqlite3_close persistent\ndeleteItem null dal_key language\n");
    }
    calls.clear();
    failing = "DeleteFlatKeyTable persistent\n";
    EXPECT_EQ(DAL_CML_deleteAll(), 0);
    EXPECT_EQ(calls, kOpening + kDeleting);
}

TEST(DataAccessCalls, OfEachFormOfSetting) {
    DAL_CML_deleteAll();
    for (const auto& row : kRows) {
        calls.clear();
        EXPECT_TRUE(row.run()) << row.call;
        EXPECT_EQ(calls, std::string(row.made) + "\n") << row.call;
    }
}

}  // namespace
