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
    std::string text(1, '\0');
    uint32_t length = 0;
    if (call<kGet>(node, text.data(), &length, text.size()) != 0) {
        return nullptr;
    }
    text.resize(length + 1);
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

#define WORD(family, word) \
    { CML_##family##_##word, #word }
constexpr Word kTruth[] = {{0, "false"}, {1, "true"}};
constexpr Word kClearControl[] = {WORD(DESTINATION_CLEAR_CONTROL, DISABLE),
                                  WORD(DESTINATION_CLEAR_CONTROL, ENABLE),
                                  WORD(DESTINATION_CLEAR_CONTROL, PROMPT)};
constexpr Word kDateFormat[] = {WORD(DATE_FORMAT, DDMMYY), WORD(DATE_FORMAT, DDMMYYYY),
                                WORD(DATE_FORMAT, MMDDYYYY), WORD(DATE_FORMAT, YYYYMMDD)};
constexpr Word kDestinationMode[] = {WORD(DRIVER_DESTINATION_SELECTION_MODE, ENTER_BY_NUMBER),
                                     WORD(DRIVER_DESTINATION_SELECTION_MODE, BROWSE_FROM_LIST)};
constexpr Word kInformationMode[] = {WORD(DRIVER_INFORMATION_SELECTION_MODE, ENTER_BY_NUMBER),
                                     WORD(DRIVER_INFORMATION_SELECTION_MODE, BROWSE_FROM_LIST)};
constexpr Word kTheme[] = {WORD(THEME, LIGHT), WORD(THEME, DARK), WORD(THEME, AUTO)};
constexpr Word kAutoTheme[] = {WORD(AUTO_THEME, LIGHT), WORD(AUTO_THEME, DARK),
                               WORD(AUTO_THEME, AUTO)};
constexpr Word kHotKeyIcon[] = {WORD(QOR_HOT_KEY_ICON, DEFAULT),
                                WORD(QOR_HOT_KEY_ICON, AUDIO_ANNOUNCEMENT)};

// clang-format off
#define ROW(name, database, words, get, set, nodes)                                              \
    {#name, &database, words, DAL_CML_get##name##Default(), get<DAL_CML_get##name>,              \
     set<DAL_CML_set##name>, call<DAL_CML_delete##name>, call<DAL_CML_is##name##Present>, nodes}
#define NODES(name)                                                                              \
    Nodes{DAL_CML_list##name##Nodes, DAL_CML_is##name##NodePresent, DAL_CML_delete##name##Node,  \
          DAL_CML_deleteAll##name##Nodes}
#define NUMBER(name) ROW(name, kPersistent, {}, getNumber, setNumber, {})
#define TEXT(name) ROW(name, kPersistent, {}, getText, setText, {})
#define WORDS_OF(words, name) ROW(name, kPersistent, words, getNumber, setNumber, {})
#define TRUTH(name) WORDS_OF(kTruth, name)
#define NUMBERS(name, list) ROW(name, kPersistent, {}, getNumber, setNumber, NODES(list))
#define TEXTS(name, list) ROW(name, kPersistent, {}, getText, setText, NODES(list))
// clang-format on

}  // namespace

const std::vector<Setting> kSettings = {
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

Json wordOf(const Setting& setting, const Json& value) {
    for (const Word& word : setting.words) {
        if (value == word.number) {
            return word.word;
        }
    }
    return nullptr;
}

Json nodesOf(const Setting& list) {
    char** const nodes = list.nodes->list();
    Json entries = nodes != nullptr ? Json::array() : Json();
    for (const std::string& node : take(nodes)) {
        entries.push_back({{"node", node}, {"value", list.get(node.c_str())}});
    }
    return entries;
}

Json readSetting(const Setting& setting, bool usable, const char* node) {
    if (setting.isList() && node == nullptr) {
        return {{"nodes", usable ? nodesOf(setting) : Json()},
                {"default", setting.fallback},
                {"database", setting.database->name}};
    }
    const Json value = usable ? setting.get(node) : Json();
    Json words;
    for (const Word& word : setting.words) {
        words.push_back(word.word);
    }
    return {{"value", value},
            {"word", wordOf(setting, value)},
            {"words", words},
            {"default", setting.fallback},
            {"default_word", wordOf(setting, setting.fallback)},
            {"stored", value.is_null() ? Json() : Json(setting.isPresent(node) == 1)},
            {"database", setting.database->name}};
}

std::string textOf(const Json& told) {
    const Json& text = told[told["word"].is_null() ? "value" : "word"];
    return text.is_string() ? text.get<std::string>() : text.dump();
}
