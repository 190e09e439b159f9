// Every setting and its functions: a table of the tests' own, by which the compiler holds their
// types.
#pragma once

#include <cstring>
#include <functional>

#include "console-manager/settings.h"
#include "support/sandbox.h"

struct ListFunctions {
    std::string name;
    int32_t (*isNodePresent)(const char* node);
    int32_t (*deleteNode)(const char* node);
    int32_t (*deleteAllNodes)();
    char** (*nodes)();
};

// Values are texts here, and that of a getter has "ok" or "failed" before it. A list's item is that
// of node "n".
struct Setting {
    std::string name;
    std::string type;  // in the data access library
    bool isProfiled;
    std::string initial;
    std::function<std::string()> get = {}, getMalloc = {}, getDefault = {};  // of texts: getMalloc
    std::function<int32_t(const std::string&)> set = {};
    std::function<int32_t()> deleteItem = {}, deleteAll = {}, isPresent = {};
    Texts words = {};  // of an enumerated one, by their numbers
    ListFunctions list = {};

    friend void PrintTo(const Setting& setting, std::ostream* out) { *out << setting.name; }
};

inline std::string outcome(int32_t result) {
    return result == 0 ? "ok " : "failed ";
}

// Not deduced from what is passed.
template <typename Function>
using Exact = std::type_identity_t<Function*>;

template <typename... Node>
std::string valueOf(Exact<int32_t(Node..., int32_t*)> get, Node... node) {
    int32_t value = -9;
    const int32_t result = get(node..., &value);
    return outcome(result) + std::to_string(value);
}

template <typename... Node>
std::string valueOf(Exact<int32_t(Node..., char*, uint32_t*, size_t)> get, Node... node) {
    char text[16] = "?";
    uint32_t length = 99;
    const int32_t result = get(node..., text, &length, sizeof text);
    return outcome(result) + (length == std::strlen(text) ? text : "of another length");
}

template <typename... Node>
std::string allocatedValueOf(Exact<int32_t(Node..., char**, uint32_t*)> get, Node... node) {
    char* text = nullptr;
    uint32_t length = 99;
    const int32_t result = get(node..., &text, &length);
    const std::string copy = text == nullptr ? "null" : text;
    free(text);
    return outcome(result) + (text == nullptr || length == copy.size() ? copy : "no length");
}

// The functions that all families have; those of a list's item take the node first.
template <typename Value, typename... Node>
Setting family(const char* name, const char* type, bool isProfiled, const char* initial, auto get,
               Exact<int32_t(Node..., Value)> set, Value (*getDefault)(),
               int32_t (*deleteItem)(Node...), int32_t (*deleteAll)(Node...),
               int32_t (*isPresent)(Node...), Node... node) {
    Setting setting{name, type, isProfiled, initial};
    setting.get = [=] { return valueOf(get, node...); };
    setting.set = [=](const std::string& text) {
        if constexpr (std::is_same_v<Value, int32_t>) {
            return set(node..., std::stoi(text));
        } else {
            return set(node..., text.c_str());
        }
    };
    setting.getDefault = [=] { return joined(getDefault()); };
    setting.deleteItem = [=] { return deleteItem(node...); };
    setting.deleteAll = [=] { return deleteAll(node...); };
    setting.isPresent = [=] { return isPresent(node...); };
    return setting;
}

Setting textFamily(auto getMalloc, Setting family, auto... node) {
    family.getMalloc = [=] { return allocatedValueOf(getMalloc, node...); };
    return family;
}

inline Setting enumerated(Texts words, Setting family) {
    family.words = std::move(words);
    return family;
}

inline Setting item(ListFunctions list, Setting family) {
    family.list = std::move(list);
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
#define LIST(list, itemFamily) item({#list, DAL_CML_is##list##NodePresent, DAL_CML_delete##list##Node, \
    DAL_CML_deleteAll##list##Nodes, DAL_CML_list##list##Nodes}, itemFamily)

constexpr bool kProfiled = true;
constexpr bool kUnprofiled = false;
constexpr const char* kNode = "n";

inline const Setting kSettings[] = {
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
