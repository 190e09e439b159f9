// Every setting by the names of its functions, against a table of the test's own and the rows of
// the databases.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "console-manager/settings.h"
#include "sandbox.h"
#include "sqlite_query.h"

namespace {

struct Setting {
    const char* name;
    const char* key;
    char type;   // BOOL, int, string, word
    char scope;  // profiled, unprofiled
    const char* initial;
    const char* words = "";
    const char* list = nullptr;
    const char* node = nullptr;
};

const Setting kSettings[] = {
    {"UserInterfaceRevision", "user-interface-revision", 'i', 'p', "1"},
    {"Language", "language", 's', 'u', "EN"},
    {"EnableDriverPasswordLogin", "enable-driver-password-login", 'b', 'p', "0"},
    {"EnableDriverIdEntry", "enable-driver-id-entry", 'b', 'p', "0"},
    {"EnableServiceIdEntry", "enable-service-id-entry", 'b', 'u', "0"},
    {"AllowMultipleMessages", "allow-multiple-messages", 'b', 'u', "0"},
    {"UsbUpdateRequiresPassword", "usb-update-requires-password", 'b', 'u', "0"},
    {"AllowDriverToAdjustBrightness", "allow-driver-to-adjust-brightness", 'b', 'p', "0"},
    {"DestinationChangeRequiresPassword", "destination-change-requires-password", 'b', 'u', "0"},
    {"InformationChangeRequiresPassword", "information-change-requires-password", 'b', 'u', "0"},
    {"RoundTripEnable", "round-trip-enable", 'b', 'u', "0"},
    {"RoundTripOrientation", "round-trip-orientation", 'b', 'u', "0"},
    {"AllowControlOfDestinations", "allow-control-of-destinations", 'b', 'u', "1"},
    {"DisplayInactivityTimeout", "display-inactivity-timeout", 'i', 'p', "15"},
    {"DisplayOffTimeout", "display-off-timeout", 'i', 'p', "30"},
    {"MaintenanceTimeout", "maintenance-timeout", 'i', 'p', "0"},
    {"DriverQorTerminalPermission", "driver-qor-terminal-permission", 'b', 'p', "1"},
    {"DriverDisplaySource", "driver-display-source", 'i', 'u', "-1"},
    {"DriverDisplayRenderMode", "driver-display-render-mode", 'i', 'u', "0"},
    {"QorHotKeySelectEnabled", "qor-hot-key-select-enabled", 'b', 'p', "0"},
    {"TimeFormat", "time-format", 'b', 'u', "1"},
    {"EnableVirtualQorTerminal", "enable-virtual-qor-terminal", 'b', 'p', "0"},
    {"SignTestMaintenanceLock", "sign-test-maintenance-lock", 'b', 'u', "0"},
    {"AllowDriverReboot", "allow-driver-reboot", 'b', 'p', "0"},
    {"HomeScreenIconOrder", "home-screen-icon-order", 's', 'p', ""},
    {"ShowCustomSplash", "show-custom-splash", 'b', 'p', "1"},
    {"DriverMessageTextEncoding", "driver-message-text-encoding", 's', 'p', "UTF-8"},
    {"HomeScreenIconBarQty", "home-screen-icon-bar-qty", 'i', 'p', "4"},
    {"WakeOnRemoteAction", "wake-on-remote-action", 'b', 'p', "1"},
    {"UseCodeEntryKeypad", "use-code-entry-keypad", 'b', 'p', "0"},
    {"ShowToggleThemeIcon", "show-toggle-theme-icon", 'b', 'p', "0"},
    {"UseHomeCodeBrowseControls", "use-home-code-browse-controls", 'b', 'p', "1"},
    {"TouchScreenClick", "touch-screen-click", 'b', 'p', "1"},
    {"ShowProfilesListByDefault", "show-profiles-list-by-default", 'b', 'p', "0"},
    {"BeepsOnUsbUpdate", "beeps-on-usb-update", 'b', 'p', "1"},
    {"ShowPassengerCountTile", "show-passenger-count-tile", 'b', 'p', "0"},
    {"ShowHomeScreenDateTime", "show-home-screen-date-time", 'b', 'p', "1"},
    {"DestinationClearControl", "destination-clear-control", 'w', 'p', "1",
     "DISABLE ENABLE PROMPT"},
    {"DateFormat", "date-format", 'w', 'u', "1", "DDMMYY DDMMYYYY MMDDYYYY YYYYMMDD"},
    {"DriverDestinationSelectionMode", "driver-destination-selection-mode", 'w', 'u', "0",
     "ENTER_BY_NUMBER BROWSE_FROM_LIST"},
    {"DriverInformationSelectionMode", "driver-information-selection-mode", 'w', 'u', "0",
     "ENTER_BY_NUMBER BROWSE_FROM_LIST"},
    {"Theme", "theme", 'w', 'p', "0", "LIGHT DARK AUTO"},
    {"AutoTheme", "auto-theme", 'w', 'p', "0", "LIGHT DARK AUTO"},
    {"QorHotKeyIcon", "qor-hot-key-icon", 'w', 'p', "0", "DEFAULT AUDIO_ANNOUNCEMENT"},
    {"QorHotKeySelectListItem", "qor-hot-key-select-list-item", 's', 'p', "", "",
     "qor_hot_key_select_list", "QorHotKeySelectListNode"},
    {"HomeScreenIcon", "home-screen-icon", 's', 'p', "", "", "home_screen_icons",
     "HomeScreenIconsNode"},
    {"IconsMenuFavourite", "icons-menu-favourite", 's', 'p', "", "", "icons_menu_favourites",
     "IconsMenuFavouritesNode"},
    {"BrowserDestinationHideItem", "browser-destination-hide-item", 'i', 'p', "1", "",
     "browser_destination_hide_list", "BrowserDestinationHideListNode"},
    {"BrowserInformationHideItem", "browser-information-hide-item", 'i', 'p', "1", "",
     "browser_information_hide_list", "BrowserInformationHideListNode"},
};

const std::string kPersistent = "/mnt/vex-data/m7/console-manager.db";
const std::string kVolatile = "/tmp/m7/console-manager.db";

std::set<std::string> called;

template <typename Result = int32_t, typename... Arguments>
Result call(const std::string& name, Arguments... arguments) {
    void* const symbol = dlsym(RTLD_DEFAULT, ("DAL_CML_" + name).c_str());
    EXPECT_NE(symbol, nullptr) << name;
    called.insert(name);
    return symbol == nullptr ? Result()
                             : reinterpret_cast<Result (*)(Arguments...)>(symbol)(arguments...);
}

// One setting under test. A list's item is that of node "n".
struct Subject : Setting {
    explicit Subject(const Setting& setting) : Setting(setting) {
        database = std::string(name) == "AutoTheme" ? kVolatile : kPersistent;
        table = list == nullptr ? "tbl_dal_key_dal_value"
                                : std::string("tbl_") + list + "_dal_key_dal_value";
        std::istringstream all(words);
        for (std::string word; all >> word;) {
            numbered.push_back(word);
        }
    }

    template <typename... Arguments>
    int32_t callMember(const std::string& verb, const std::string& suffix,
                       Arguments... arguments) const {
        const std::string member = verb + name + suffix;
        return list == nullptr ? call(member, arguments...) : call(member, "n", arguments...);
    }

    std::string get() const {
        if (type == 's') {
            char buffer[16] = "?";
            uint32_t length = 0;
            EXPECT_EQ(callMember("get", "", +buffer, &length, sizeof buffer), 0);
            return buffer;
        }
        int32_t value = -9;
        EXPECT_EQ(callMember("get", "", &value), 0);
        return std::to_string(value);
    }

    // Each value that the setting takes, with the text that has to be stored for it.
    void checkSets() const {
        if (type == 's') {
            EXPECT_EQ(callMember("set", "", "a'b"), 0);
            EXPECT_EQ(rows(), ownProfile() + "=a'b");
            char* copy = nullptr;
            uint32_t length = 0;
            EXPECT_EQ(callMember("get", "Malloc", &copy, &length), 0);
            EXPECT_STREQ(copy, "a'b");
            free(copy);
            EXPECT_EQ(get(), "a'b");
            return;
        }
        if (type == 'w') {
            for (int32_t value = -1; value <= std::ssize(numbered); ++value) {
                const bool known = value >= 0 && value < std::ssize(numbered);
                EXPECT_EQ(callMember("set", "", value), 0);
                EXPECT_EQ(rows(),
                          ownProfile() + "=" + (known ? numbered[static_cast<size_t>(value)] : ""));
                EXPECT_EQ(get(), known ? std::to_string(value) : initial);
            }
            return;
        }
        for (const int32_t value : {-2147483647 - 1, 2147483647, 7}) {
            EXPECT_EQ(callMember("set", "", value), 0);
            EXPECT_EQ(rows(), ownProfile() + "=" + std::to_string(value));
            EXPECT_EQ(get(), std::to_string(value));
        }
    }

    std::string defaultText() const {
        const std::string function = std::string("get") + name + "Default";
        return type == 's' ? call<const char*>(function) : std::to_string(call(function));
    }

    std::string ownProfile() const { return scope == 'p' ? "0" : ""; }

    // Profile number and value of each of the item's rows.
    std::string rows() const {
        return query(database, "SELECT c_dal_profile_no || '=' || c_dal_value FROM " + table +
                                   " WHERE c_dal_key = '" + key + "' ORDER BY 1");
    }

    void addRowOfProfile3() const {
        const std::string nodeTable = std::string("tbl_") + (list == nullptr ? "" : list);
        query(database, list == nullptr
                            ? "INSERT INTO " + table + " VALUES ('" + key + "','3','x')"
                            : "INSERT INTO " + nodeTable + " VALUES ('n','3');" + "INSERT INTO " +
                                  table + " VALUES ('n','" + key + "','3','x')");
    }

    std::string database;
    std::string table;
    std::vector<std::string> numbered;
};

void checkNodes(const Setting& setting) {
    const std::string node = setting.node;
    const std::string nodes = std::string("SELECT * FROM tbl_") + setting.list + " ORDER BY 1, 2";
    EXPECT_EQ(query(kPersistent, nodes), "n|0 n|3") << "an item's delete leaves its node";
    EXPECT_EQ(call("is" + node + "Present", "n"), 1);
    EXPECT_EQ(call("is" + node + "Present", "m"), 0);
    char** const list = call<char**>("list" + node + "s");
    ASSERT_NE(list, nullptr);
    EXPECT_STREQ(list[0], "n");
    EXPECT_EQ(list[1], nullptr);
    free(list[0]);
    free(list);
    EXPECT_EQ(call("delete" + node, "n"), 0);
    EXPECT_EQ(query(kPersistent, nodes), "n|3");
    EXPECT_EQ(call("deleteAll" + node + "s"), 0);
    EXPECT_EQ(query(kPersistent, nodes), "");
}

using Settings = Sandbox;

TEST_F(Settings, EachHasItsFunctionsAndItsRow) {
    for (const Setting& setting : kSettings) {
        SCOPED_TRACE(setting.name);
        const Subject subject(setting);
        EXPECT_EQ(subject.defaultText(), setting.initial);
        EXPECT_EQ(subject.get(), setting.initial);
        EXPECT_EQ(subject.callMember("is", "Present"), 0);
        subject.checkSets();
        EXPECT_EQ(subject.callMember("is", "Present"), 1);
        subject.addRowOfProfile3();
        EXPECT_EQ(subject.callMember("delete", ""), 0);
        EXPECT_EQ(subject.rows(), "3=x");
        EXPECT_EQ(subject.callMember("is", "Present"), 0);
        EXPECT_EQ(subject.get(), setting.initial);
        EXPECT_EQ(setting.type == 's' ? subject.callMember("set", "", "v")
                                      : subject.callMember("set", "", 1),
                  0);
        EXPECT_EQ(subject.callMember("deleteAll", ""), 0);
        EXPECT_EQ(subject.rows(), "") << "every profile's, and the unprofiled";
        if (setting.list != nullptr) {
            checkNodes(setting);
        }
    }
    EXPECT_EQ(called.size(), 320);
}

TEST_F(Settings, TheTablesAreMadeInOrder) {
    std::string expected;
    for (const std::string list :
         {"browser_destination_hide_list", "browser_information_hide_list", "home_screen_icons",
          "qor_hot_key_select_list", "icons_menu_favourites"}) {
        const std::string nodes = "(c_" + list + ", c_dal_profile_no)";
        expected +=
            "CREATE TABLE tbl_" + list + " (c_" + list + " TEXT, c_dal_profile_no TEXT, UNIQUE" +
            nodes + ") CREATE TABLE tbl_" + list + "_dal_key_dal_value (c_" + list +
            " TEXT, c_dal_key TEXT, c_dal_profile_no TEXT, c_dal_value TEXT, UNIQUE(c_" + list +
            ", c_dal_key, c_dal_profile_no), FOREIGN KEY" + nodes + " REFERENCES tbl_" + list +
            " " + nodes + " ON DELETE CASCADE ON UPDATE CASCADE) ";
    }
    call("isThemePresent");
    const std::string tables =
        query(kPersistent, "SELECT sql FROM sqlite_master WHERE type = 'table' ORDER BY rowid");
    EXPECT_EQ(tables.substr(0, expected.size()), expected);
    call("isAutoThemePresent");
    EXPECT_EQ(query(kVolatile, "SELECT name FROM sqlite_master"), "tbl_dal_key_dal_value");
}

}  // namespace
