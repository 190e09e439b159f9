#include "setting.h"

#include <console-manager/settings.h>

#include <type_traits>

namespace {

// Calls a function of the library, with the node in front if it takes one.
template <auto kFunction, typename... Rest>
int32_t call(const char* node, Rest... rest) {
    if constexpr (std::is_invocable_v<decltype(kFunction), const char*, Rest...>) {
        return kFunction(node, rest...);
    } else {
        return kFunction(rest...);
    }
}

template <auto kGet>
Json getNumber(const char* node) {
    int32_t value = 0;
    return call<kGet>(node, &value) == 0 ? Json(value) : Json();
}

template <auto kGet>
Json getText(const char* node) {
    char none[1];
    uint32_t length = 0;
    if (call<kGet>(node, +none, &length, sizeof none) != 0) {
        return nullptr;
    }
    std::string text(length + 1, '\0');
    call<kGet>(node, text.data(), &length, text.size());
    return text.c_str();
}

template <auto kSet>
int32_t setNumber(const char* node, const Json& value) {
    return call<kSet>(node, value.get<int32_t>());
}

template <auto kSet>
int32_t setText(const char* node, const Json& value) {
    return call<kSet>(node, value.get_ref<const std::string&>().c_str());
}

constexpr Word kTruth[] = {{0, "false"}, {1, "true"}};
constexpr Word kClearControl[] = {
    {CML_DESTINATION_CLEAR_CONTROL_DISABLE, "DISABLE"},
    {CML_DESTINATION_CLEAR_CONTROL_ENABLE, "ENABLE"},
    {CML_DESTINATION_CLEAR_CONTROL_PROMPT, "PROMPT"},
};
constexpr Word kDateFormat[] = {
    {CML_DATE_FORMAT_DDMMYY, "DDMMYY"},
    {CML_DATE_FORMAT_DDMMYYYY, "DDMMYYYY"},
    {CML_DATE_FORMAT_MMDDYYYY, "MMDDYYYY"},
    {CML_DATE_FORMAT_YYYYMMDD, "YYYYMMDD"},
};
constexpr Word kDestinationMode[] = {
    {CML_DRIVER_DESTINATION_SELECTION_MODE_ENTER_BY_NUMBER, "ENTER_BY_NUMBER"},
    {CML_DRIVER_DESTINATION_SELECTION_MODE_BROWSE_FROM_LIST, "BROWSE_FROM_LIST"},
};
constexpr Word kInformationMode[] = {
    {CML_DRIVER_INFORMATION_SELECTION_MODE_ENTER_BY_NUMBER, "ENTER_BY_NUMBER"},
    {CML_DRIVER_INFORMATION_SELECTION_MODE_BROWSE_FROM_LIST, "BROWSE_FROM_LIST"},
};
constexpr Word kTheme[] = {
    {CML_THEME_LIGHT, "LIGHT"}, {CML_THEME_DARK, "DARK"}, {CML_THEME_AUTO, "AUTO"}};
constexpr Word kAutoTheme[] = {
    {CML_AUTO_THEME_LIGHT, "LIGHT"}, {CML_AUTO_THEME_DARK, "DARK"}, {CML_AUTO_THEME_AUTO, "AUTO"}};
constexpr Word kHotKeyIcon[] = {
    {CML_QOR_HOT_KEY_ICON_DEFAULT, "DEFAULT"},
    {CML_QOR_HOT_KEY_ICON_AUDIO_ANNOUNCEMENT, "AUDIO_ANNOUNCEMENT"},
};

}  // namespace

// clang-format off
#define ROW(name, database, words, get, set, nodes)                    \
    {#name, &database, words, DAL_CML_get##name##Default(),            \
     get<DAL_CML_get##name>, set<DAL_CML_set##name>,                   \
     call<DAL_CML_delete##name>, call<DAL_CML_is##name##Present>, nodes}
#define NODES(name)                                                    \
    Nodes{DAL_CML_list##name##Nodes, DAL_CML_is##name##NodePresent,    \
          DAL_CML_delete##name##Node, DAL_CML_deleteAll##name##Nodes}
#define NUMBER(name) ROW(name, kPersistent, {}, getNumber, setNumber, {})
#define TEXT(name) ROW(name, kPersistent, {}, getText, setText, {})
#define WORDS_OF(words, name) ROW(name, kPersistent, words, getNumber, setNumber, {})
#define TRUTH(name) WORDS_OF(kTruth, name)
#define NUMBERS(name, list) ROW(name, kPersistent, {}, getNumber, setNumber, NODES(list))
#define TEXTS(name, list) ROW(name, kPersistent, {}, getText, setText, NODES(list))
// clang-format on

static const std::vector<Setting> kSettings = {
    TRUTH(AllowControlOfDestinations),
    TRUTH(AllowDriverReboot),
    TRUTH(AllowDriverToAdjustBrightness),
    TRUTH(AllowMultipleMessages),
    ROW(AutoTheme, kVolatile, kAutoTheme, getNumber, setNumber, {}),
    TRUTH(BeepsOnUsbUpdate),
    WORDS_OF(kDateFormat, DateFormat),
    TRUTH(DestinationChangeRequiresPassword),
    WORDS_OF(kClearControl, DestinationClearControl),
    NUMBER(DisplayInactivityTimeout),
    NUMBER(DisplayOffTimeout),
    WORDS_OF(kDestinationMode, DriverDestinationSelectionMode),
    NUMBER(DriverDisplayRenderMode),
    NUMBER(DriverDisplaySource),
    WORDS_OF(kInformationMode, DriverInformationSelectionMode),
    TEXT(DriverMessageTextEncoding),
    TRUTH(DriverQorTerminalPermission),
    TRUTH(EnableDriverIdEntry),
    TRUTH(EnableDriverPasswordLogin),
    TRUTH(EnableServiceIdEntry),
    TRUTH(EnableVirtualQorTerminal),
    NUMBER(HomeScreenIconBarQty),
    TEXT(HomeScreenIconOrder),
    TRUTH(InformationChangeRequiresPassword),
    TEXT(Language),
    NUMBER(MaintenanceTimeout),
    WORDS_OF(kHotKeyIcon, QorHotKeyIcon),
    TRUTH(QorHotKeySelectEnabled),
    TRUTH(RoundTripEnable),
    TRUTH(RoundTripOrientation),
    TRUTH(ShowCustomSplash),
    TRUTH(ShowHomeScreenDateTime),
    TRUTH(ShowPassengerCountTile),
    TRUTH(ShowProfilesListByDefault),
    TRUTH(ShowToggleThemeIcon),
    TRUTH(SignTestMaintenanceLock),
    WORDS_OF(kTheme, Theme),
    TRUTH(TimeFormat),
    TRUTH(TouchScreenClick),
    TRUTH(UsbUpdateRequiresPassword),
    TRUTH(UseCodeEntryKeypad),
    TRUTH(UseHomeCodeBrowseControls),
    NUMBER(UserInterfaceRevision),
    TRUTH(WakeOnRemoteAction),
    NUMBERS(BrowserDestinationHideItem, BrowserDestinationHideList),
    NUMBERS(BrowserInformationHideItem, BrowserInformationHideList),
    TEXTS(HomeScreenIcon, HomeScreenIcons),
    TEXTS(IconsMenuFavourite, IconsMenuFavourites),
    TEXTS(QorHotKeySelectListItem, QorHotKeySelectList),
};

const std::vector<Setting>& settings() {
    return kSettings;
}

Json wordOf(const Setting& setting, const Json& value) {
    for (const Word& word : setting.words) {
        if (value == word.number) {
            return word.word;
        }
    }
    return nullptr;
}

std::string textOf(const Setting& setting, const Json& value) {
    const Json word = wordOf(setting, value);
    if (value.is_number() && word.is_null()) {
        return std::to_string(value.get<int32_t>());
    }
    const Json& told = word.is_null() ? value : word;
    return told.is_null() ? "?" : told.get<std::string>();
}
