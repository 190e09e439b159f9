// The exact calls that the settings make of the data access library, SQLite and the system. All of
// them are replaced here, and each call is noted as a line.
#include "contracts/data_access.h"

#include <cctype>
#include <concepts>

#include "support/setting.h"

static_assert(std::size(KeyPath{}.slots) == 17);

static std::string calls;        // a line each
static std::string failing;      // the line of the call that fails
constexpr int32_t kAnswer = 77;  // of a call on an item
static std::string kept;         // what a getter of a text delivers
static char* nodes[1];           // of a listing

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

namespace {

// In lower case, with a separator between words.
std::string spelled(const std::string& name, char separator) {
    std::string words;
    for (const char c : name) {
        words += std::isupper(c) && !words.empty() ? std::string(1, separator) : "";
        words += static_cast<char>(std::tolower(c));
    }
    return words;
}

class EachSetting : public testing::TestWithParam<Setting> {
  protected:
    void SetUp() override { DAL_CML_deleteAll(); }

    // Expects one call on this path, with the profile number if the setting is profiled.
    void expect(const std::string& verb, const std::string& noun, const std::string& path,
                const std::string& rest = "") const {
        const bool isProfiled = setting.isProfiled;
        EXPECT_EQ(calls, verb + (isProfiled ? "Profiled" : "") + noun + database + path + rest +
                             (isProfiled ? " 0\n" : "\n"));
        calls.clear();
    }
    void expect(const std::string& call, const std::string& pathAndRest) const {
        EXPECT_EQ(calls, call + database + pathAndRest + "\n");
        calls.clear();
    }
    void checkText() {
        kept = "v";
        EXPECT_EQ(setting.get(), "failed v");
        expect("get", "TypeString", item, " buffer length 99 16 " + setting.initial);
        EXPECT_EQ(setting.getMalloc(), "failed v");
        expect("get", "TypeStringMalloc", item, " block length 99");
        EXPECT_EQ(setting.set("a'b"), kAnswer);
        expect("set", "TypeString", item, " a'b 0");
    }
    void checkNumber() {
        EXPECT_EQ(setting.get(), "failed 5");
        expect("get", "Type" + setting.type, item, " number " + setting.initial);
        for (const std::string value : {"-2147483648", "3"}) {
            EXPECT_EQ(setting.set(value), kAnswer);
            expect("set", "Type" + setting.type + "Limits", item,
                   " " + value + " 0 -2147483648 2147483647");
        }
    }
    void checkWords() {
        Texts words = setting.words;
        words.emplace_back();  // a number without a word
        for (size_t i = 0; i < words.size(); ++i) {
            const std::string number = std::to_string(i);
            kept = words[i];
            EXPECT_EQ(setting.get(), "failed " + (kept.empty() ? setting.initial : number));
            expect("get", "TypeString", item,
                   " buffer length 0 65 " + words[std::stoul(setting.initial)]);
            EXPECT_EQ(setting.set(number), kAnswer);
            expect("set", "TypeString", item, " " + kept + " 0");
        }
    }
    void checkNodes() {
        EXPECT_EQ(setting.list.deleteNode("n"), kAnswer);
        expect("deleteProfiledNodeItem", list + " n 0");
        EXPECT_EQ(setting.list.deleteAllNodes(), kAnswer);
        expect("deleteProfiledNodeItem", list + " null -1");
        EXPECT_EQ(setting.list.isNodePresent("n"), kAnswer);
        expect("isProfiledNodePresent", list + " n 0");
        EXPECT_EQ(setting.list.nodes(), nodes);
        expect("listProfiledNodeItems", list + " null " + list + " 0");
    }

    const Setting& setting = GetParam();
    const std::string database = setting.name == "AutoTheme" ? " volatile " : " persistent ";
    const std::string list = spelled(setting.list.name, '_');
    const std::string item =
        (list.empty() ? "" : list + " n/") + "dal_key " + spelled(setting.name, '-');
};

TEST_P(EachSetting, MakesItsCallsAndReturnsTheirResults) {
    calls.clear();
    EXPECT_EQ(setting.getDefault(), setting.initial);
    setting.getMalloc ? checkText() : setting.words.empty() ? checkNumber() : checkWords();
    EXPECT_EQ(setting.deleteItem(), kAnswer);
    setting.isProfiled ? expect("deleteProfiledItem", item + " 0") : expect("deleteItem", item);
    EXPECT_EQ(setting.deleteAll(), kAnswer);
    expect("deleteProfiledItem", item + " -1");
    EXPECT_EQ(setting.isPresent(), kAnswer);
    expect("is", "Present", item);
    if (!list.empty()) {
        checkNodes();
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, EachSetting, testing::ValuesIn(kSettings),
                         testing::PrintToStringParamName());

// Repeats the text for each list, whose name replaces @.
std::string forEachList(const std::string& pattern) {
    std::string all;
    for (const char* list :
         {"browser_destination_hide_list", "browser_information_hide_list", "home_screen_icons",
          "qor_hot_key_select_list", "icons_menu_favourites"}) {
        for (const char c : pattern) {
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

}  // namespace
