// Every setting by the names of its functions, against a table of the test's own and the rows of
// the databases.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cctype>
#include <set>

#include "platform/data_access.h"
#include "sandbox.h"
#include "sqlite_query.h"

static int truthsSet = 0;

// A truth value's row looks like a number's: only the call tells them apart.
int32_t DAL_setTypeBOOLLimits(sqlite3* db, const KeyPath* key, BOOL value, uint32_t extra,
                              int32_t low, int32_t high) {
    ++truthsSet;
    return DAL_setTypeIntLimits(db, key, value, extra, low, high);
}

int32_t DAL_setProfiledTypeBOOLLimits(sqlite3* db, const KeyPath* key, BOOL value, uint32_t extra,
                                      int32_t low, int32_t high, int32_t profile) {
    ++truthsSet;
    return DAL_setProfiledTypeIntLimits(db, key, value, extra, low, high, profile);
}

namespace {

std::set<std::string> called;

template <typename Result = int32_t, typename... Arguments>
Result call(const std::string& name, Arguments... arguments) {
    void* const symbol = dlsym(RTLD_DEFAULT, ("DAL_CML_" + name).c_str());
    EXPECT_NE(symbol, nullptr) << name;
    called.insert(name);
    return reinterpret_cast<Result (*)(Arguments...)>(symbol)(arguments...);
}

// In lower case, with a separator between words.
std::string spelled(const std::string& name, char separator) {
    std::string words;
    for (const char c : name) {
        words += std::isupper(c) && !words.empty() ? std::string(1, separator) : "";
        words += static_cast<char>(std::tolower(c));
    }
    return words;
}

// Of each list, which is the @.
const std::string kTables =
    "CREATE TABLE tbl_@ (c_@ TEXT, c_dal_profile_no TEXT, UNIQUE(c_@, c_dal_profile_no)) "
    "CREATE TABLE tbl_@_dal_key_dal_value (c_@ TEXT, c_dal_key TEXT, c_dal_profile_no TEXT, "
    "c_dal_value TEXT, UNIQUE(c_@, c_dal_key, c_dal_profile_no), FOREIGN KEY(c_@, "
    "c_dal_profile_no) REFERENCES tbl_@ (c_@, c_dal_profile_no) ON DELETE CASCADE ON UPDATE "
    "CASCADE)";

// A list's item is that of node "n".
struct Setting {
    std::string name;
    char type;   // BOOL, int, string, word
    char scope;  // profiled, unprofiled
    std::string initial;
    Texts words = {};  // by their numbers
    std::string list = "";

    std::string key = spelled(name, '-');
    std::string nodes = "tbl_" + spelled(list, '_');
    std::string items = (list.empty() ? "tbl" : nodes) + "_dal_key_dal_value";
    std::string database = name == "AutoTheme" ? kVolatileFile : kFile;

    template <typename... Arguments>
    int32_t member(const std::string& verb, const std::string& suffix, Arguments... more) const {
        const std::string function = verb + name + suffix;
        return list.empty() ? call(function, more...) : call(function, "n", more...);
    }

    int32_t set(const std::string& value) const {
        return type == 's' ? member("set", "", value.c_str()) : member("set", "", std::stoi(value));
    }

    std::string get() const {
        if (type != 's') {
            int32_t value = -9;
            EXPECT_EQ(member("get", "", &value), 0);
            return std::to_string(value);
        }
        char text[16] = "?";
        char* copy = nullptr;
        uint32_t length = 0;
        EXPECT_EQ(member("get", "", +text, &length, sizeof text), 0);
        member("get", "Malloc", &copy, &length);
        EXPECT_STREQ(copy == nullptr ? initial.c_str() : copy, text);
        free(copy);
        return text;
    }

    // Profile and value.
    std::string rows() const {
        return query(database, "SELECT c_dal_profile_no || '=' || c_dal_value FROM " + items +
                                   " WHERE c_dal_key = '" + key + "' ORDER BY 1");
    }

    std::string word(const std::string& number) const {
        const auto index = static_cast<size_t>(std::stoi(number));
        return index < words.size() ? words[index] : "";
    }

    void checkItem() const {
        const std::string function = "get" + name + "Default";
        EXPECT_EQ(type == 's' ? call<const char*>(function) : std::to_string(call(function)),
                  initial);
        EXPECT_EQ(get(), initial);
        for (const std::string& value : type == 's'   ? Texts{"a'b"}
                                        : type == 'w' ? Texts{"-1", "0", "1", "2", "3", "4"}
                                                      : Texts{"-2147483648", "2147483647"}) {
            const std::string stored = type == 'w' ? word(value) : value;
            truthsSet = 0;
            EXPECT_EQ(set(value), 0);
            EXPECT_EQ(truthsSet, type == 'b' ? 1 : 0);
            EXPECT_EQ(rows(), (scope == 'p' ? "0=" : "=") + stored);
            EXPECT_EQ(get(), stored.empty() ? initial : value);
        }
        EXPECT_EQ(member("is", "Present"), 1);
        query(database, "INSERT INTO " + items + " VALUES (" + (list.empty() ? "'" : "'n', '") +
                            key + "', '3', 'x')");
        EXPECT_EQ(member("delete", ""), 0);
        EXPECT_EQ(member("is", "Present"), 0);
        EXPECT_EQ(rows(), "3=x");
        EXPECT_EQ(set("1"), 0);
        EXPECT_EQ(member("deleteAll", ""), 0);
        EXPECT_EQ(rows(), "") << "every profile's, and the unprofiled";
    }

    void checkNodes() const {
        EXPECT_EQ(query(database, "SELECT replace(sql, '" + nodes.substr(4) + "', '@') FROM " +
                                      "sqlite_master WHERE sql LIKE '%" + nodes + "%'"),
                  kTables);
        query(database, "INSERT INTO " + nodes + " VALUES ('n', '3')");
        const std::string ids = "SELECT * FROM " + nodes + " ORDER BY 2";
        EXPECT_EQ(call("is" + list + "NodePresent", "n"), 1) << "its item's delete leaves it";
        EXPECT_EQ(take(call<char**>("list" + list + "Nodes")), Texts{"n"});
        EXPECT_EQ(call("delete" + list + "Node", "n"), 0);
        EXPECT_EQ(query(database, ids), "n|3");
        EXPECT_EQ(call("is" + list + "NodePresent", "n"), 0);
        EXPECT_EQ(call("deleteAll" + list + "Nodes"), 0);
        EXPECT_EQ(query(database, ids), "");
    }
};

// The lists are in the order in which their tables are made.
// clang-format off
const Setting kSettings[] = {
    {"UserInterfaceRevision", 'i', 'p', "1"},
    {"Language", 's', 'u', "EN"},
    {"EnableDriverPasswordLogin", 'b', 'p', "0"},
    {"EnableDriverIdEntry", 'b', 'p', "0"},
    {"EnableServiceIdEntry", 'b', 'u', "0"},
    {"AllowMultipleMessages", 'b', 'u', "0"},
    {"UsbUpdateRequiresPassword", 'b', 'u', "0"},
    {"AllowDriverToAdjustBrightness", 'b', 'p', "0"},
    {"DestinationChangeRequiresPassword", 'b', 'u', "0"},
    {"InformationChangeRequiresPassword", 'b', 'u', "0"},
    {"RoundTripEnable", 'b', 'u', "0"},
    {"RoundTripOrientation", 'b', 'u', "0"},
    {"AllowControlOfDestinations", 'b', 'u', "1"},
    {"DisplayInactivityTimeout", 'i', 'p', "15"},
    {"DisplayOffTimeout", 'i', 'p', "30"},
    {"MaintenanceTimeout", 'i', 'p', "0"},
    {"DriverQorTerminalPermission", 'b', 'p', "1"},
    {"DriverDisplaySource", 'i', 'u', "-1"},
    {"DriverDisplayRenderMode", 'i', 'u', "0"},
    {"QorHotKeySelectEnabled", 'b', 'p', "0"},
    {"TimeFormat", 'b', 'u', "1"},
    {"EnableVirtualQorTerminal", 'b', 'p', "0"},
    {"SignTestMaintenanceLock", 'b', 'u', "0"},
    {"AllowDriverReboot", 'b', 'p', "0"},
    {"HomeScreenIconOrder", 's', 'p', ""},
    {"ShowCustomSplash", 'b', 'p', "1"},
    {"DriverMessageTextEncoding", 's', 'p', "UTF-8"},
    {"HomeScreenIconBarQty", 'i', 'p', "4"},
    {"WakeOnRemoteAction", 'b', 'p', "1"},
    {"UseCodeEntryKeypad", 'b', 'p', "0"},
    {"ShowToggleThemeIcon", 'b', 'p', "0"},
    {"UseHomeCodeBrowseControls", 'b', 'p', "1"},
    {"TouchScreenClick", 'b', 'p', "1"},
    {"ShowProfilesListByDefault", 'b', 'p', "0"},
    {"BeepsOnUsbUpdate", 'b', 'p', "1"},
    {"ShowPassengerCountTile", 'b', 'p', "0"},
    {"ShowHomeScreenDateTime", 'b', 'p', "1"},
    {"DestinationClearControl", 'w', 'p', "1", {"DISABLE", "ENABLE", "PROMPT"}},
    {"DateFormat", 'w', 'u', "1", {"DDMMYY", "DDMMYYYY", "MMDDYYYY", "YYYYMMDD"}},
    {"DriverDestinationSelectionMode", 'w', 'u', "0", {"ENTER_BY_NUMBER", "BROWSE_FROM_LIST"}},
    {"DriverInformationSelectionMode", 'w', 'u', "0", {"ENTER_BY_NUMBER", "BROWSE_FROM_LIST"}},
    {"Theme", 'w', 'p', "0", {"LIGHT", "DARK", "AUTO"}},
    {"AutoTheme", 'w', 'p', "0", {"LIGHT", "DARK", "AUTO"}},
    {"QorHotKeyIcon", 'w', 'p', "0", {"DEFAULT", "AUDIO_ANNOUNCEMENT"}},
    {"BrowserDestinationHideItem", 'i', 'p', "1", {}, "BrowserDestinationHideList"},
    {"BrowserInformationHideItem", 'i', 'p', "1", {}, "BrowserInformationHideList"},
    {"HomeScreenIcon", 's', 'p', "", {}, "HomeScreenIcons"},
    {"QorHotKeySelectListItem", 's', 'p', "", {}, "QorHotKeySelectList"},
    {"IconsMenuFavourite", 's', 'p', "", {}, "IconsMenuFavourites"},
};
// clang-format on

using Settings = Sandbox;

TEST_F(Settings, EachHasItsFunctionsAndItsRow) {
    std::string tables;
    for (const Setting& setting : kSettings) {
        SCOPED_TRACE(setting.name);
        setting.checkItem();
        if (!setting.list.empty()) {
            setting.checkNodes();
            tables += setting.nodes + " " + setting.items + " ";
        }
    }
    EXPECT_EQ(called.size(), 320);
    EXPECT_EQ(query(kFile, "SELECT name FROM sqlite_master WHERE sql NOT NULL"),
              tables + "tbl_dal_key_dal_value");
    EXPECT_EQ(query(kVolatileFile, "SELECT name FROM sqlite_master"), "tbl_dal_key_dal_value");
}

}  // namespace
