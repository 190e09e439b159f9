// Every setting by the names of its functions, against a table of the test's own and the rows of
// the databases.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cctype>
#include <set>

#include "sandbox.h"
#include "sqlite_query.h"

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

// Settings that differ in their names only.
struct Kind {
    char type;   // number, string, word
    char scope;  // profiled, unprofiled
    std::string initial;
    Texts names;
    Texts words = {};  // by their numbers
    std::string list = "";
};

// A list's item is that of node "n".
struct Setting : Kind {
    std::string name;
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

    void checkItem() const {
        const std::string function = "get" + name + "Default";
        EXPECT_EQ(type == 's' ? call<const char*>(function) : std::to_string(call(function)),
                  initial);
        EXPECT_EQ(get(), initial);
        const Texts values = type == 's'   ? Texts{"a'b"}
                             : type == 'w' ? Texts{"0", "1", "2", "3", "4", "-1"}
                                           : Texts{"-2147483648", "2147483647"};
        Texts stored = type == 'w' ? words : values;
        stored.resize(values.size());
        for (size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(set(values[i]), 0);
            EXPECT_EQ(rows(), (scope == 'p' ? "0=" : "=") + stored[i]);
            EXPECT_EQ(get(), stored[i].empty() ? initial : values[i]);
        }
        EXPECT_EQ(member("is", "Present"), 1);
        query(database, "UPDATE " + items + " SET c_dal_profile_no = '3'");
        EXPECT_EQ(set("1") + member("delete", ""), 0);
        EXPECT_EQ(member("is", "Present"), 0);
        EXPECT_EQ(rows(), "3=" + stored.back());
        EXPECT_EQ(set("1") + member("deleteAll", ""), 0);
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
        EXPECT_EQ(call("delete" + list + "Node", "n") + call("is" + list + "NodePresent", "n"), 0);
        EXPECT_EQ(query(database, ids), "n|3");
        EXPECT_EQ(call("deleteAll" + list + "Nodes"), 0);
        EXPECT_EQ(query(database, ids), "");
    }
};

// clang-format off
const Kind kKinds[] = {
    {'n', 'p', "0", {"EnableDriverPasswordLogin", "EnableDriverIdEntry", "AllowDriverReboot",
        "AllowDriverToAdjustBrightness", "QorHotKeySelectEnabled", "EnableVirtualQorTerminal",
        "UseCodeEntryKeypad", "ShowToggleThemeIcon", "ShowProfilesListByDefault",
        "ShowPassengerCountTile", "MaintenanceTimeout"}},
    {'n', 'p', "1", {"DriverQorTerminalPermission", "ShowCustomSplash", "WakeOnRemoteAction",
        "UseHomeCodeBrowseControls", "TouchScreenClick", "BeepsOnUsbUpdate",
        "ShowHomeScreenDateTime", "UserInterfaceRevision"}},
    {'n', 'u', "0", {"EnableServiceIdEntry", "AllowMultipleMessages", "UsbUpdateRequiresPassword",
        "DestinationChangeRequiresPassword", "InformationChangeRequiresPassword", "RoundTripEnable",
        "RoundTripOrientation", "SignTestMaintenanceLock", "DriverDisplayRenderMode"}},
    {'n', 'u', "1", {"AllowControlOfDestinations", "TimeFormat"}},
    {'n', 'p', "4", {"HomeScreenIconBarQty"}},  {'n', 'p', "15", {"DisplayInactivityTimeout"}},
    {'n', 'p', "30", {"DisplayOffTimeout"}},    {'n', 'u', "-1", {"DriverDisplaySource"}},
    {'s', 'p', "", {"HomeScreenIconOrder"}},    {'s', 'p', "UTF-8", {"DriverMessageTextEncoding"}},
    {'s', 'u', "EN", {"Language"}},
    {'w', 'p', "0", {"Theme", "AutoTheme"}, {"LIGHT", "DARK", "AUTO"}},
    {'w', 'p', "0", {"QorHotKeyIcon"}, {"DEFAULT", "AUDIO_ANNOUNCEMENT"}},
    {'w', 'p', "1", {"DestinationClearControl"}, {"DISABLE", "ENABLE", "PROMPT"}},
    {'w', 'u', "0", {"DriverDestinationSelectionMode", "DriverInformationSelectionMode"},
                    {"ENTER_BY_NUMBER", "BROWSE_FROM_LIST"}},
    {'w', 'u', "1", {"DateFormat"}, {"DDMMYY", "DDMMYYYY", "MMDDYYYY", "YYYYMMDD"}},
    {'n', 'p', "1", {"BrowserDestinationHideItem"}, {}, "BrowserDestinationHideList"},
    {'n', 'p', "1", {"BrowserInformationHideItem"}, {}, "BrowserInformationHideList"},
    {'s', 'p', "", {"HomeScreenIcon"}, {}, "HomeScreenIcons"},
    {'s', 'p', "", {"QorHotKeySelectListItem"}, {}, "QorHotKeySelectList"},
    {'s', 'p', "", {"IconsMenuFavourite"}, {}, "IconsMenuFavourites"},
};
// clang-format on

using Settings = Sandbox;

TEST_F(Settings, EachHasItsFunctionsAndItsRow) {
    for (const Kind& kind : kKinds) {
        for (const std::string& name : kind.names) {
            SCOPED_TRACE(name);
            const Setting setting{kind, name};
            setting.checkItem();
            if (!kind.list.empty()) {
                setting.checkNodes();
            }
        }
    }
    EXPECT_EQ(called.size(), 320);
}

}  // namespace
