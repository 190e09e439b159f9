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
    bool isProfiled;
    std::string initial;
    std::function<std::string()> get, getMalloc, getDefault;  // getMalloc of texts only
    std::function<int32_t(const std::string&)> set;
    std::function<int32_t()> deleteItem, deleteAll, isPresent;
    Texts words;  // of an enumerated one, by their numbers
    ListFunctions list;

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
Setting family(const char* name, bool isProfiled, const char* initial, auto get,
               Exact<int32_t(Node..., Value)> set, Value (*getDefault)(),
               int32_t (*deleteItem)(Node...), int32_t (*deleteAll)(Node...),
               int32_t (*isPresent)(Node...), Node... node) {
    Setting setting;
    setting.name = name;
    setting.isProfiled = isProfiled;
    setting.initial = initial;
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
#define FAMILY(Value, isProfiled, initial, name, ...) family<Value>(#name, isProfiled, initial, DAL_CML_get##name, \
    DAL_CML_set##name, DAL_CML_get##name##Default, DAL_CML_delete##name, DAL_CML_deleteAll##name, \
    DAL_CML_is##name##Present __VA_OPT__(,) __VA_ARGS__)
#define NUMBER(...) FAMILY(int32_t, __VA_ARGS__)
#define TEXT(isProfiled, initial, name, ...) textFamily(DAL_CML_get##name##Malloc, \
    FAMILY(const char*, isProfiled, initial, name __VA_OPT__(,) __VA_ARGS__) __VA_OPT__(,) __VA_ARGS__)
#define WORD(isProfiled, initial, name, ...) enumerated({__VA_ARGS__}, NUMBER(isProfiled, initial, name))
#define LIST(list, itemFamily) item({#list, DAL_CML_is##list##NodePresent, DAL_CML_delete##list##Node, \
    DAL_CML_deleteAll##list##Nodes, DAL_CML_list##list##Nodes}, itemFamily)

constexpr bool kProfiled = true;
constexpr bool kUnprofiled = false;
constexpr const char* kNode = "n";

inline const Setting kSettings[] = {
    NUMBER(kProfiled, "0", EnableDriverPasswordLogin),      NUMBER(kProfiled, "0", EnableDriverIdEntry),
    NUMBER(kProfiled, "0", AllowDriverReboot),              NUMBER(kProfiled, "0", AllowDriverToAdjustBrightness),
    NUMBER(kProfiled, "0", QorHotKeySelectEnabled),         NUMBER(kProfiled, "0", EnableVirtualQorTerminal),
    NUMBER(kProfiled, "0", UseCodeEntryKeypad),             NUMBER(kProfiled, "0", ShowToggleThemeIcon),
    NUMBER(kProfiled, "0", ShowProfilesListByDefault),      NUMBER(kProfiled, "0", ShowPassengerCountTile),
    NUMBER(kProfiled, "0", MaintenanceTimeout),             NUMBER(kProfiled, "1", DriverQorTerminalPermission),
    NUMBER(kProfiled, "1", ShowCustomSplash),               NUMBER(kProfiled, "1", WakeOnRemoteAction),
    NUMBER(kProfiled, "1", UseHomeCodeBrowseControls),      NUMBER(kProfiled, "1", TouchScreenClick),
    NUMBER(kProfiled, "1", BeepsOnUsbUpdate),               NUMBER(kProfiled, "1", ShowHomeScreenDateTime),
    NUMBER(kProfiled, "1", UserInterfaceRevision),          NUMBER(kUnprofiled, "0", EnableServiceIdEntry),
    NUMBER(kUnprofiled, "0", AllowMultipleMessages),        NUMBER(kUnprofiled, "0", UsbUpdateRequiresPassword),
    NUMBER(kUnprofiled, "0", DestinationChangeRequiresPassword),
    NUMBER(kUnprofiled, "0", InformationChangeRequiresPassword),
    NUMBER(kUnprofiled, "0", RoundTripEnable),              NUMBER(kUnprofiled, "0", RoundTripOrientation),
    NUMBER(kUnprofiled, "0", SignTestMaintenanceLock),      NUMBER(kUnprofiled, "0", DriverDisplayRenderMode),
    NUMBER(kUnprofiled, "1", AllowControlOfDestinations),   NUMBER(kUnprofiled, "1", TimeFormat),
    NUMBER(kProfiled, "4", HomeScreenIconBarQty),           NUMBER(kProfiled, "15", DisplayInactivityTimeout),
    NUMBER(kProfiled, "30", DisplayOffTimeout),             NUMBER(kUnprofiled, "-1", DriverDisplaySource),
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
