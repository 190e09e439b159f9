// Every setting, by the names of its functions: a table of the tests' own.
#pragma once

#include <dlfcn.h>

#include <set>

#include "support/fault.h"
#include "support/sandbox.h"

inline thread_local std::set<std::string> called;  // by this thread

// Calls a function by its name, plainly or within.
template <typename Result = int32_t, typename How, typename... Arguments>
Result call(How how, const std::string& name, Arguments... arguments) {
    void* const symbol = dlsym(RTLD_DEFAULT, ("DAL_CML_" + name).c_str());
    EXPECT_NE(symbol, nullptr) << name;
    called.insert(name);
    return how([&] { return reinterpret_cast<Result (*)(Arguments...)>(symbol)(arguments...); });
}

// Settings that differ in their names only.
struct Kind {
    char type;   // number, string, word
    char scope;  // profiled, unprofiled
    std::string initial;
    Texts names;
    Texts words = {};  // by their numbers
    std::string list = "";
};

// A list's item is that of node "n". The text of a result begins with "ok" or "failed".
struct Setting : Kind {
    std::string name;

    template <typename How, typename... Arguments>
    int32_t member(How how, const std::string& verb, const std::string& suffix,
                   Arguments... more) const {
        const std::string function = verb + name + suffix;
        return list.empty() ? call(how, function, more...) : call(how, function, "n", more...);
    }

    int32_t set(auto how, const std::string& value) const {
        return type == 's' ? member(how, "set", "", value.c_str())
                           : member(how, "set", "", std::stoi(value));
    }

    std::string get(auto how) const {
        char text[16] = "?";
        int32_t value = -9;
        uint32_t length = 0;
        const int32_t result = type == 's' ? member(how, "get", "", +text, &length, sizeof text)
                                           : member(how, "get", "", &value);
        return outcome(result) + (type == 's' ? text : std::to_string(value));
    }

    std::string getMalloc(auto how) const {
        char* text = nullptr;
        uint32_t length = 0;
        const int32_t result = member(how, "get", "Malloc", &text, &length);
        const std::string copy = text == nullptr ? "null" : text;
        free(text);
        return outcome(result) + copy;
    }

    std::string getDefault(auto how) const {
        const std::string function = "get" + name + "Default";
        return type == 's' ? call<const char*>(how, function) : std::to_string(call(how, function));
    }

    static std::string outcome(int32_t result) { return result == 0 ? "ok " : "failed "; }
};

// clang-format off
inline const Kind kKinds[] = {
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
