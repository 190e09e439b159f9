#include <console-manager/settings.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sections.h"
#include "table.h"

namespace {

struct Free {
    void operator()(void* block) const { std::free(block); }
};

// Nothing where a value can't be read.
using Text = std::optional<std::string>;

constexpr int32_t kAny = std::numeric_limits<int32_t>::max();

// What the program does with a setting; all values are texts here.
struct Setting {
    const char* name;
    const char* place;
    Text (*get)();
    int32_t (*set)(const char*);
    int32_t (*reset)();
    int32_t (*isPresent)();
    int32_t highest;  // of a number; kAny for all numbers, -1 for a text

    bool isText() const { return highest < 0; }
};

struct List {
    const char* name;
    char** (*nodes)();
    Text (*get)(const char*);
};

template <auto kGet, typename... Node>
Text number(Node... node) {
    int32_t value = 0;
    return kGet(node..., &value) == 0 ? Text(std::to_string(value)) : std::nullopt;
}

template <auto kGet, typename... Node>
Text string(Node... node) {
    char none[1];
    uint32_t length = 0;
    if (kGet(node..., none, &length, sizeof none) != 0) {
        return std::nullopt;
    }
    std::string text(length + 1, '\0');
    kGet(node..., text.data(), nullptr, text.size());
    return text.c_str();
}

template <auto kSet>
int32_t setNumber(const char* text) {
    return kSet(std::atoi(text));
}

// clang-format off
#define NUMBER_AT(name, place, highest)                             \
    {#name, place, number<DAL_CML_get##name>,                       \
     setNumber<DAL_CML_set##name>, DAL_CML_delete##name,            \
     DAL_CML_is##name##Present, highest}
#define NUMBER(name) NUMBER_AT(name, "persistent", kAny)
#define FLAG(name) NUMBER_AT(name, "persistent", 1)
#define CHOICE(name, highest) NUMBER_AT(name, "persistent", highest)
#define STRING(name)                                                \
    {#name, "persistent", string<DAL_CML_get##name>,                \
     DAL_CML_set##name, DAL_CML_delete##name,                       \
     DAL_CML_is##name##Present, -1}
// clang-format on

const Setting kSettings[] = {
    FLAG(AllowControlOfDestinations),
    FLAG(AllowDriverReboot),
    FLAG(AllowDriverToAdjustBrightness),
    FLAG(AllowMultipleMessages),
    NUMBER_AT(AutoTheme, "volatile", 2),
    FLAG(BeepsOnUsbUpdate),
    CHOICE(DateFormat, 3),
    FLAG(DestinationChangeRequiresPassword),
    CHOICE(DestinationClearControl, 2),
    NUMBER(DisplayInactivityTimeout),
    NUMBER(DisplayOffTimeout),
    CHOICE(DriverDestinationSelectionMode, 1),
    NUMBER(DriverDisplayRenderMode),
    NUMBER(DriverDisplaySource),
    CHOICE(DriverInformationSelectionMode, 1),
    STRING(DriverMessageTextEncoding),
    FLAG(DriverQorTerminalPermission),
    FLAG(EnableDriverIdEntry),
    FLAG(EnableDriverPasswordLogin),
    FLAG(EnableServiceIdEntry),
    FLAG(EnableVirtualQorTerminal),
    NUMBER(HomeScreenIconBarQty),
    STRING(HomeScreenIconOrder),
    FLAG(InformationChangeRequiresPassword),
    STRING(Language),
    NUMBER(MaintenanceTimeout),
    CHOICE(QorHotKeyIcon, 1),
    FLAG(QorHotKeySelectEnabled),
    FLAG(RoundTripEnable),
    FLAG(RoundTripOrientation),
    FLAG(ShowCustomSplash),
    FLAG(ShowHomeScreenDateTime),
    FLAG(ShowPassengerCountTile),
    FLAG(ShowProfilesListByDefault),
    FLAG(ShowToggleThemeIcon),
    FLAG(SignTestMaintenanceLock),
    CHOICE(Theme, 2),
    FLAG(TimeFormat),
    FLAG(TouchScreenClick),
    FLAG(UsbUpdateRequiresPassword),
    FLAG(UseCodeEntryKeypad),
    FLAG(UseHomeCodeBrowseControls),
    NUMBER(UserInterfaceRevision),
    FLAG(WakeOnRemoteAction),
};

const List kLists[] = {
    {"BrowserDestinationHideItem", DAL_CML_listBrowserDestinationHideListNodes,
     number<DAL_CML_getBrowserDestinationHideItem>},
    {"BrowserInformationHideItem", DAL_CML_listBrowserInformationHideListNodes,
     number<DAL_CML_getBrowserInformationHideItem>},
    {"HomeScreenIcon", DAL_CML_listHomeScreenIconsNodes, string<DAL_CML_getHomeScreenIcon>},
    {"IconsMenuFavourite", DAL_CML_listIconsMenuFavouritesNodes,
     string<DAL_CML_getIconsMenuFavourite>},
    {"QorHotKeySelectListItem", DAL_CML_listQorHotKeySelectListNodes,
     string<DAL_CML_getQorHotKeySelectListItem>},
};

const Setting* find(const std::string& name) {
    for (const Setting& setting : kSettings) {
        if (name == setting.name) {
            return &setting;
        }
    }
    std::fprintf(stderr,
                 "console-status: there is no setting %s; without an argument the program "
                 "shows all\n",
                 name.c_str());
    return nullptr;
}

bool fits(const Setting& setting, const std::string& text) {
    int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return setting.isText() || (error == std::errc() && stop == end && number <= setting.highest &&
                                (number >= 0 || setting.highest == kAny));
}

// A node and its value in each pair; nothing if the list can't be read.
std::optional<std::vector<std::pair<std::string, std::string>>> entriesOf(const List& list) {
    const std::unique_ptr<char*, Free> nodes(list.nodes());
    if (!nodes) {
        return std::nullopt;
    }
    std::vector<std::pair<std::string, std::string>> entries;
    for (char** node = nodes.get(); *node != nullptr; ++node) {
        const std::unique_ptr<char, Free> id(*node);
        entries.emplace_back(id.get(), list.get(id.get()).value_or("?"));
    }
    return entries;
}

int failed(const char* what, const std::string& name, int32_t result) {
    std::fprintf(stderr, "console-status: can't %s %s (error %d)\n", what, name.c_str(), result);
    return 1;
}

}  // namespace

void reportSettings() {
    printTitle("Settings");
    Table settings({"Setting", "Value", "State", "Database"});
    for (const Setting& setting : kSettings) {
        const Text value = setting.get();
        const Cell state = !value                     ? Cell("unreadable", kYellow)
                           : setting.isPresent() == 1 ? Cell("set")
                                                      : Cell("default", kDim);
        settings.add({setting.name, value.value_or("?"), state, setting.place});
    }
    settings.print();

    printTitle("Lists");
    Table lists({"List", ">Nodes", "Database"});
    for (const List& list : kLists) {
        const auto entries = entriesOf(list);
        lists.add({list.name, entries ? std::to_string(entries->size()) : "?", "persistent"});
    }
    lists.print();
}

int getSetting(const std::string& name) {
    const Setting* const setting = find(name);
    if (setting == nullptr) {
        return kUsageError;
    }
    const Text value = setting->get();
    if (!value) {
        std::fprintf(stderr, "console-status: can't read %s\n", name.c_str());
        return 1;
    }
    std::printf("%s\n", value->c_str());
    return 0;
}

int setSetting(const std::string& name, const std::string& value) {
    const Setting* const setting = find(name);
    if (setting == nullptr) {
        return kUsageError;
    }
    if (!fits(*setting, value)) {
        const std::string range = setting->highest == kAny
                                      ? "of 32 bits"
                                      : "from 0 to " + std::to_string(setting->highest);
        std::fprintf(stderr, "console-status: %s takes a whole number %s, not '%s'\n", name.c_str(),
                     range.c_str(), value.c_str());
        return kUsageError;
    }
    const int32_t result = setting->set(value.c_str());
    return result == 0 ? 0 : failed("set", name, result);
}

int resetSetting(const std::string& name) {
    const Setting* const setting = find(name);
    if (setting == nullptr) {
        return kUsageError;
    }
    const int32_t result = setting->reset();
    return result == 0 ? 0 : failed("reset", name, result);
}

int printList(const std::string& name) {
    for (const List& list : kLists) {
        if (name != list.name) {
            continue;
        }
        const auto entries = entriesOf(list);
        if (!entries) {
            std::fprintf(stderr, "console-status: can't read %s\n", name.c_str());
            return 1;
        }
        Table table({"Node", "Value"});
        for (const auto& [node, value] : *entries) {
            table.add({node, value});
        }
        table.print();
        return 0;
    }
    std::fprintf(stderr, "console-status: there is no list %s; the lists are", name.c_str());
    for (const List& list : kLists) {
        std::fprintf(stderr, " %s", list.name);
    }
    std::fprintf(stderr, "\n");
    return kUsageError;
}
