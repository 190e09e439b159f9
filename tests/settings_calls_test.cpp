// What each accessor asks of the data access library: this program plays that library and writes
// down its calls.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "console-manager/settings.h"
#include "platform/data_access.h"
#include "sandbox.h"

namespace {

std::vector<std::string> calls;
constexpr int32_t kResult = 42;
char* listing[] = {nullptr};

std::string text(const char* value) {
    return value == nullptr ? "null" : "'" + std::string(value) + "'";
}

std::string describe(sqlite3* connection, const KeyPath* path) {
    const std::string file = connection == nullptr ? "" : sqlite3_db_filename(connection, "main");
    std::string description = file.starts_with("/mnt/vex-data/m7/") ? "persistent"
                              : file.starts_with("/tmp/m7/")        ? "volatile"
                                                                    : "none";
    bool ended = false;
    for (const auto& [name, value] : path->slots) {
        if (name != nullptr || value != nullptr) {
            description += ended ? " BEHIND THE END" : " " + text(name) + "=" + text(value);
        }
        ended = ended || name == nullptr;
    }
    return description;
}

template <typename... Arguments>
int32_t record(const char* function, sqlite3* connection, const KeyPath* path,
               Arguments... arguments) {
    [[maybe_unused]] const auto word = [](auto argument) {
        if constexpr (std::is_convertible_v<decltype(argument), const char*>) {
            return text(argument);
        } else {
            return std::to_string(argument);
        }
    };
    calls.push_back(std::string(function) + " " + describe(connection, path) +
                    (std::string() + ... + (" " + word(arguments))));
    return kResult;
}

}  // namespace

#define RECORD(...) record(__func__ + 4, connection, key __VA_OPT__(, ) __VA_ARGS__)
int32_t DAL_SetDBConfiguration(sqlite3*) {
    return 0;
}
int32_t DAL_CreateFlatKeyTable(sqlite3*) {
    calls.emplace_back("CreateFlatKeyTable");
    return 0;
}
int32_t DAL_DeleteFlatKeyTable(sqlite3*) {
    calls.emplace_back("DeleteFlatKeyTable");
    return kResult;
}
int32_t DAL_ExecuteQuery(sqlite3*, const char* sql) {
    calls.emplace_back(sql);
    return 0;
}
int32_t DAL_getTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value, BOOL initial) {
    *value = 7;
    return RECORD(initial);
}
int32_t DAL_getProfiledTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value, BOOL initial,
                                int32_t profile) {
    *value = 7;
    return RECORD(initial, profile);
}
int32_t DAL_getTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value, int32_t initial) {
    *value = 7;
    return RECORD(initial);
}
int32_t DAL_getProfiledTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                               int32_t initial, int32_t profile) {
    *value = 7;
    return RECORD(initial, profile);
}
int32_t DAL_getTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                          uint32_t* valueInfo, size_t size, const char* initial) {
    buffer[0] = 0;
    return RECORD(*valueInfo, size, initial);
}
int32_t DAL_getProfiledTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                                  uint32_t* valueInfo, size_t size, const char* initial,
                                  int32_t profile) {
    buffer[0] = 0;
    return RECORD(*valueInfo, size, initial, profile);
}
int32_t DAL_getTypeStringMalloc(sqlite3* connection, const KeyPath* key, char**, uint32_t* info) {
    return RECORD(*info);
}
int32_t DAL_getProfiledTypeStringMalloc(sqlite3* connection, const KeyPath* key, char**,
                                        uint32_t* info, int32_t profile) {
    return RECORD(*info, profile);
}
int32_t DAL_setTypeBOOLLimits(sqlite3* connection, const KeyPath* key, BOOL value, uint32_t extra,
                              int32_t minimum, int32_t maximum) {
    return RECORD(value, extra, minimum, maximum);
}
int32_t DAL_setProfiledTypeBOOLLimits(sqlite3* connection, const KeyPath* key, BOOL value,
                                      uint32_t extra, int32_t minimum, int32_t maximum,
                                      int32_t profile) {
    return RECORD(value, extra, minimum, maximum, profile);
}
int32_t DAL_setTypeIntLimits(sqlite3* connection, const KeyPath* key, int32_t value, uint32_t extra,
                             int32_t minimum, int32_t maximum) {
    return RECORD(value, extra, minimum, maximum);
}
int32_t DAL_setProfiledTypeIntLimits(sqlite3* connection, const KeyPath* key, int32_t value,
                                     uint32_t extra, int32_t minimum, int32_t maximum,
                                     int32_t profile) {
    return RECORD(value, extra, minimum, maximum, profile);
}
int32_t DAL_setTypeString(sqlite3* connection, const KeyPath* key, const char* value,
                          uint32_t extra) {
    return RECORD(value, extra);
}
int32_t DAL_setProfiledTypeString(sqlite3* connection, const KeyPath* key, const char* value,
                                  uint32_t extra, int32_t profile) {
    return RECORD(value, extra, profile);
}
int32_t DAL_deleteItem(sqlite3* connection, const KeyPath* key) {
    return RECORD();
}
int32_t DAL_deleteProfiledItem(sqlite3* connection, const KeyPath* key, int32_t profile) {
    return RECORD(profile);
}
int32_t DAL_isPresent(sqlite3* connection, const KeyPath* key) {
    return RECORD();
}
int32_t DAL_isProfiledPresent(sqlite3* connection, const KeyPath* key, int32_t profile) {
    return RECORD(profile);
}
int32_t DAL_deleteProfiledNodeItem(sqlite3* connection, const KeyPath* key, int32_t profile) {
    return RECORD(profile);
}
int32_t DAL_isProfiledNodePresent(sqlite3* connection, const KeyPath* key, int32_t profile) {
    return RECORD(profile);
}
char** DAL_listProfiledNodeItems(sqlite3* connection, const KeyPath* key, const char* list,
                                 int32_t profile) {
    RECORD(list, profile);
    return listing;
}

namespace {

enum Type { kBool, kInt, kString, kWord };

struct Setting {
    const char* name;
    const char* key;
    Type type;
    bool profiled;
    const char* initial;
    std::vector<const char*> words = {};  // of an enumerated setting
    const char* list = nullptr;
    const char* node = nullptr;
};

const Setting kSettings[] = {
    {"UserInterfaceRevision", "user-interface-revision", kInt, true, "1"},
    {"Language", "language", kString, false, "EN"},
    {"EnableDriverPasswordLogin", "enable-driver-password-login", kBool, true, "0"},
    {"EnableDriverIdEntry", "enable-driver-id-entry", kBool, true, "0"},
    {"EnableServiceIdEntry", "enable-service-id-entry", kBool, false, "0"},
    {"AllowMultipleMessages", "allow-multiple-messages", kBool, false, "0"},
    {"UsbUpdateRequiresPassword", "usb-update-requires-password", kBool, false, "0"},
    {"AllowDriverToAdjustBrightness", "allow-driver-to-adjust-brightness", kBool, true, "0"},
    {"DestinationChangeRequiresPassword", "destination-change-requires-password", kBool, false,
     "0"},
    {"InformationChangeRequiresPassword", "information-change-requires-password", kBool, false,
     "0"},
    {"RoundTripEnable", "round-trip-enable", kBool, false, "0"},
    {"RoundTripOrientation", "round-trip-orientation", kBool, false, "0"},
    {"AllowControlOfDestinations", "allow-control-of-destinations", kBool, false, "1"},
    {"DisplayInactivityTimeout", "display-inactivity-timeout", kInt, true, "15"},
    {"DisplayOffTimeout", "display-off-timeout", kInt, true, "30"},
    {"MaintenanceTimeout", "maintenance-timeout", kInt, true, "0"},
    {"DriverQorTerminalPermission", "driver-qor-terminal-permission", kBool, true, "1"},
    {"DriverDisplaySource", "driver-display-source", kInt, false, "-1"},
    {"DriverDisplayRenderMode", "driver-display-render-mode", kInt, false, "0"},
    {"QorHotKeySelectEnabled", "qor-hot-key-select-enabled", kBool, true, "0"},
    {"TimeFormat", "time-format", kBool, false, "1"},
    {"EnableVirtualQorTerminal", "enable-virtual-qor-terminal", kBool, true, "0"},
    {"SignTestMaintenanceLock", "sign-test-maintenance-lock", kBool, false, "0"},
    {"AllowDriverReboot", "allow-driver-reboot", kBool, true, "0"},
    {"HomeScreenIconOrder", "home-screen-icon-order", kString, true, ""},
    {"ShowCustomSplash", "show-custom-splash", kBool, true, "1"},
    {"DriverMessageTextEncoding", "driver-message-text-encoding", kString, true, "UTF-8"},
    {"HomeScreenIconBarQty", "home-screen-icon-bar-qty", kInt, true, "4"},
    {"WakeOnRemoteAction", "wake-on-remote-action", kBool, true, "1"},
    {"UseCodeEntryKeypad", "use-code-entry-keypad", kBool, true, "0"},
    {"ShowToggleThemeIcon", "show-toggle-theme-icon", kBool, true, "0"},
    {"UseHomeCodeBrowseControls", "use-home-code-browse-controls", kBool, true, "1"},
    {"TouchScreenClick", "touch-screen-click", kBool, true, "1"},
    {"ShowProfilesListByDefault", "show-profiles-list-by-default", kBool, true, "0"},
    {"BeepsOnUsbUpdate", "beeps-on-usb-update", kBool, true, "1"},
    {"ShowPassengerCountTile", "show-passenger-count-tile", kBool, true, "0"},
    {"ShowHomeScreenDateTime", "show-home-screen-date-time", kBool, true, "1"},
    {"DestinationClearControl",
     "destination-clear-control",
     kWord,
     true,
     "1",
     {"DISABLE", "ENABLE", "PROMPT"}},
    {"DateFormat",
     "date-format",
     kWord,
     false,
     "1",
     {"DDMMYY", "DDMMYYYY", "MMDDYYYY", "YYYYMMDD"}},
    {"DriverDestinationSelectionMode",
     "driver-destination-selection-mode",
     kWord,
     false,
     "0",
     {"ENTER_BY_NUMBER", "BROWSE_FROM_LIST"}},
    {"DriverInformationSelectionMode",
     "driver-information-selection-mode",
     kWord,
     false,
     "0",
     {"ENTER_BY_NUMBER", "BROWSE_FROM_LIST"}},
    {"Theme", "theme", kWord, true, "0", {"LIGHT", "DARK", "AUTO"}},
    {"AutoTheme", "auto-theme", kWord, true, "0", {"LIGHT", "DARK", "AUTO"}},
    {"QorHotKeyIcon", "qor-hot-key-icon", kWord, true, "0", {"DEFAULT", "AUDIO_ANNOUNCEMENT"}},
    {"QorHotKeySelectListItem",
     "qor-hot-key-select-list-item",
     kString,
     true,
     "",
     {},
     "qor_hot_key_select_list",
     "QorHotKeySelectListNode"},
    {"HomeScreenIcon",
     "home-screen-icon",
     kString,
     true,
     "",
     {},
     "home_screen_icons",
     "HomeScreenIconsNode"},
    {"IconsMenuFavourite",
     "icons-menu-favourite",
     kString,
     true,
     "",
     {},
     "icons_menu_favourites",
     "IconsMenuFavouritesNode"},
    {"BrowserDestinationHideItem",
     "browser-destination-hide-item",
     kInt,
     true,
     "1",
     {},
     "browser_destination_hide_list",
     "BrowserDestinationHideListNode"},
    {"BrowserInformationHideItem",
     "browser-information-hide-item",
     kInt,
     true,
     "1",
     {},
     "browser_information_hide_list",
     "BrowserInformationHideListNode"},
};

std::set<std::string> namesCalled;

// Calls an exported function by its name and tells the one call that it made. A list item's
// accessors take the node id first.
template <typename Result = int32_t, typename... Arguments>
Result call(const std::string& name, Arguments... arguments) {
    void* const symbol = dlsym(RTLD_DEFAULT, ("DAL_CML_" + name).c_str());
    EXPECT_NE(symbol, nullptr) << name;
    namesCalled.insert(name);
    calls.clear();
    return symbol == nullptr ? Result()
                             : reinterpret_cast<Result (*)(Arguments...)>(symbol)(arguments...);
}

template <typename... Arguments>
std::string callOf(const Setting& setting, const std::string& verb, const std::string& suffix,
                   Arguments... arguments) {
    const std::string name = verb + setting.name + suffix;
    const int32_t result =
        setting.list == nullptr ? call(name, arguments...) : call(name, "node 1", arguments...);
    EXPECT_EQ(result, kResult) << name;
    return calls.size() == 1 ? calls[0] : std::to_string(calls.size()) + " calls";
}

void checkValue(const Setting& setting, const std::string& typed, const std::string& path,
                const std::string& profile) {
    const std::string limits = " 0 -2147483648 2147483647";
    const std::string type = setting.type == kBool ? "BOOL" : "Int";
    char buffer[8];
    uint32_t info = 9;
    int32_t number = 0;
    char* copy = nullptr;
    switch (setting.type) {
        case kBool:
        case kInt:
            EXPECT_EQ(callOf(setting, "get", "", &number),
                      "get" + typed + type + path + " " + setting.initial + profile);
            EXPECT_EQ(number, 7);
            for (const int32_t value : {-5, 2147483647, -2147483647 - 1}) {
                EXPECT_EQ(callOf(setting, "set", "", value),
                          "set" + typed + type + "Limits" + path + " " + std::to_string(value) +
                              limits + profile);
            }
            EXPECT_EQ(std::to_string(call(std::string("get") + setting.name + "Default")),
                      setting.initial);
            break;
        case kString:
            EXPECT_EQ(callOf(setting, "get", "", +buffer, &info, sizeof buffer),
                      "get" + typed + "String" + path + " 9 8 " + text(setting.initial) + profile);
            EXPECT_EQ(callOf(setting, "get", "Malloc", &copy, &info),
                      "get" + typed + "StringMalloc" + path + " 9" + profile);
            EXPECT_EQ(callOf(setting, "set", "", "abc"),
                      "set" + typed + "String" + path + " 'abc' 0" + profile);
            EXPECT_STREQ(call<const char*>(std::string("get") + setting.name + "Default"),
                         setting.initial);
            break;
        case kWord: {
            const int32_t initial = std::stoi(setting.initial);
            EXPECT_EQ(callOf(setting, "get", "", &number),
                      "get" + typed + "String" + path + " 0 65 " +
                          text(setting.words.at(static_cast<size_t>(initial))) + profile);
            EXPECT_EQ(number, initial);
            for (int32_t value = -1; value <= std::ssize(setting.words); ++value) {
                const bool known = value >= 0 && value < std::ssize(setting.words);
                EXPECT_EQ(callOf(setting, "set", "", value),
                          "set" + typed + "String" + path + " " +
                              text(known ? setting.words[static_cast<size_t>(value)] : "") + " 0" +
                              profile);
            }
            EXPECT_EQ(call(std::string("get") + setting.name + "Default"), initial);
            break;
        }
    }
    EXPECT_TRUE(calls.empty()) << "the default of " << setting.name << " is read from a database";
}

void checkNodes(const Setting& setting) {
    const std::string node = setting.node;
    const std::string list = text(setting.list);
    const std::string single = " persistent " + list + "='node 1' ";
    const std::string whole = " persistent " + list + "=null ";
    EXPECT_EQ(call("delete" + node, "node 1"), kResult);
    EXPECT_EQ(calls, std::vector{"deleteProfiledNodeItem" + single + "0"});
    EXPECT_EQ(call("deleteAll" + node + "s"), kResult);
    EXPECT_EQ(calls, std::vector{"deleteProfiledNodeItem" + whole + "-1"});
    EXPECT_EQ(call("is" + node + "Present", "node 1"), kResult);
    EXPECT_EQ(calls, std::vector{"isProfiledNodePresent" + single + "0"});
    EXPECT_EQ(call<char**>("list" + node + "s"), listing);
    EXPECT_EQ(calls, std::vector{"listProfiledNodeItems" + whole + list + " 0"});
}

using SettingsCalls = Sandbox;

TEST_F(SettingsCalls, EachAccessorMakesItsOneCall) {
    ASSERT_EQ(call("isThemePresent"), kResult);      // opens the persistent database
    ASSERT_EQ(call("isAutoThemePresent"), kResult);  // and the volatile one
    namesCalled.clear();
    for (const Setting& setting : kSettings) {
        SCOPED_TRACE(setting.name);
        const std::string database =
            setting.name == std::string_view("AutoTheme") ? " volatile" : " persistent";
        const std::string path =
            database + (setting.list == nullptr ? "" : " " + text(setting.list) + "='node 1'") +
            " 'dal_key'=" + text(setting.key);
        const std::string scope = setting.profiled ? "Profiled" : "";
        const std::string profile = setting.profiled ? " 0" : "";
        checkValue(setting, scope + "Type", path, profile);
        EXPECT_EQ(callOf(setting, "delete", ""), "delete" + scope + "Item" + path + profile);
        EXPECT_EQ(callOf(setting, "deleteAll", ""), "deleteProfiledItem" + path + " -1");
        EXPECT_EQ(callOf(setting, "is", "Present"), "is" + scope + "Present" + path + profile);
        if (setting.list != nullptr) {
            checkNodes(setting);
        }
    }
    EXPECT_EQ(namesCalled.size(), 320);
}

TEST_F(SettingsCalls, OpeningMakesTheTablesInOrder) {
    std::vector<std::string> expected;
    for (const std::string list :
         {"browser_destination_hide_list", "browser_information_hide_list", "home_screen_icons",
          "qor_hot_key_select_list", "icons_menu_favourites"}) {
        expected.push_back("CREATE TABLE IF NOT EXISTS tbl_" + list + " (c_" + list +
                           " TEXT, c_dal_profile_no TEXT, UNIQUE(c_" + list +
                           ", c_dal_profile_no));");
        expected.push_back(
            "CREATE TABLE IF NOT EXISTS tbl_" + list + "_dal_key_dal_value (c_" + list +
            " TEXT, c_dal_key TEXT, c_dal_profile_no TEXT, c_dal_value TEXT, UNIQUE(c_" + list +
            ", c_dal_key, c_dal_profile_no), FOREIGN KEY(c_" + list +
            ", c_dal_profile_no) REFERENCES tbl_" + list + " (c_" + list +
            ", c_dal_profile_no) ON DELETE CASCADE ON UPDATE CASCADE);");
    }
    expected.emplace_back("CreateFlatKeyTable");
    expected.emplace_back("isProfiledPresent persistent 'dal_key'='theme' 0");
    call("isThemePresent");
    EXPECT_EQ(calls, expected);
    EXPECT_FALSE(std::filesystem::exists("/tmp/m7/console-manager.db"));

    call("isAutoThemePresent");
    EXPECT_EQ(calls,
              (std::vector<std::string>{"CreateFlatKeyTable",
                                        "isProfiledPresent volatile 'dal_key'='auto-theme' 0"}));

    EXPECT_EQ(call("deleteAll"), 0);
    EXPECT_EQ(calls,
              (std::vector<std::string>{
                  "BEGIN TRANSACTION;", "DELETE FROM tbl_browser_destination_hide_list;",
                  "DELETE FROM tbl_browser_information_hide_list;",
                  "DELETE FROM tbl_home_screen_icons;", "DELETE FROM tbl_qor_hot_key_select_list;",
                  "DELETE FROM tbl_icons_menu_favourites;", "DeleteFlatKeyTable", "COMMIT;",
                  "BEGIN TRANSACTION;", "DeleteFlatKeyTable", "COMMIT;"}));
}

}  // namespace
