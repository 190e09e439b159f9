#include "setting.h"

#include <console-manager/settings.h>
#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <type_traits>

#include "commands.h"

namespace {

// Calls a function of the library, with the node as first argument if it takes one.
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

template <auto kGetMalloc>
Json getText(const char* node) {
    char* text = nullptr;
    uint32_t ofLibrary = 0;
    if (call<kGetMalloc>(node, &text, &ofLibrary) != 0 || text == nullptr) {
        return nullptr;  // text may be invalid
    }
    Json value = text;
    std::free(text);
    return value;
}

template <auto kSet>
int32_t setNumber(const char* node, const Json& value) {
    return call<kSet>(node, value.get<int32_t>());
}

template <auto kSet>
int32_t setText(const char* node, const Json& value) {
    return call<kSet>(node, value.get_ref<const std::string&>().c_str());
}

// clang-format off
#define ROW(name, meaning, database, kind, getter, Form, words, ...)                             \
    {#name, meaning, &k##database, Kind::kind, words, DAL_CML_get##name##Default(), getter,      \
     set##Form<DAL_CML_set##name>, call<DAL_CML_delete##name>, call<DAL_CML_is##name##Present>, __VA_ARGS__},
#define NUMBER(name, meaning, database, kind, ...)                                               \
    ROW(name, meaning, database, kind, getNumber<DAL_CML_get##name>, Number, __VA_ARGS__)
#define TEXT(name, meaning, ...)                                                                 \
    ROW(name, meaning, Persistent, Text, getText<DAL_CML_get##name##Malloc>, Text, __VA_ARGS__)
#define NODES(node)                                                                              \
    DAL_CML_list##node##s, DAL_CML_is##node##Present, DAL_CML_delete##node, DAL_CML_deleteAll##node##s
#define BOOL_SETTING(name, key, scope, initial, meaning)                                         \
    NUMBER(name, meaning, Persistent, Truth, Words({{0, "false"}, {1, "true"}}))
#define INT_SETTING(name, key, scope, initial, meaning) NUMBER(name, meaning, Persistent, Number, {})
#define STRING_SETTING(name, key, scope, initial, meaning) TEXT(name, meaning, {})
#define ENUMERATED_SETTING(name, key, scope, database, initial, meaning, ...)                    \
    NUMBER(name, meaning, database, Word, Words({__VA_ARGS__}))
#define INT_LIST(name, node, list, key, initial, meaning)                                        \
    NUMBER(name, meaning, Persistent, Number, {}, NODES(node))
#define STRING_LIST(name, node, list, key, initial, meaning) TEXT(name, meaning, {}, NODES(node))
// clang-format on

std::vector<Setting> sorted(std::vector<Setting> settings) {
    std::ranges::sort(settings, {}, [](const Setting& setting) {
        return std::pair(setting.isList(), setting.name);
    });
    return settings;
}

// Returns the nodes of a list in order, each with its value, or null if the list can't be read.
// "stored" is false if the node has the default.
Json nodesOf(const Setting& list) {
    char** const nodes = list.list();
    Names names = take(nodes);
    std::ranges::sort(names);
    Json entries = nodes != nullptr ? Json::array() : Json();
    for (const std::string& name : names) {
        const bool isStored = list.isPresent(name.c_str()) != 0;
        const Json value = isStored ? list.get(name.c_str()) : list.fallback;
        if (value.is_null()) {
            return nullptr;
        }
        entries.push_back({{"node", name}, {"value", value}, {"stored", isStored}});
    }
    return entries;
}

}  // namespace

const std::vector<Setting> kSettings = sorted({
#include "settings/catalogue.def"
});

std::string nameOf(const Place& place) {
    return place.setting->name + (place.node ? " " + quoted(*place.node) : "");
}

Json wordOf(const Setting& setting, const Json& value) {
    const auto word = value.is_number() ? setting.words.find(value) : setting.words.end();
    return word != setting.words.end() ? Json(word->second) : Json();
}

Json parseValue(const Setting& setting, const std::string& text) {
    if (setting.kind == Kind::Text) {
        return text;
    }
    const auto number = numberOf(text);
    std::string takes;
    Names words;
    for (const auto& [ofWord, word] : setting.words) {
        if (number == ofWord || strcasecmp(text.c_str(), word.c_str()) == 0) {
            return ofWord;
        }
        takes += words.emplace_back(word) + " (" + std::to_string(ofWord) + "), ";
    }
    const bool takesAny = setting.kind != Kind::Word;
    if (number && takesAny) {
        return *number;
    }
    throw UsageError(setting.name + " takes " + takes +
                     (takesAny ? "a whole number of 32 bits, " : "") + "not " + quoted(text) +
                     suggestion(text, words));
}

Json readSetting(const Place& place, bool usable) {
    const Setting& setting = *place.setting;
    if (setting.isList() && !place.node) {
        return {{"nodes", usable ? nodesOf(setting) : Json()},
                {"default", setting.fallback},
                {"database", setting.database->name}};
    }
    const bool isStored = usable && setting.isPresent(place.id()) != 0;
    const Json value = !usable ? Json() : isStored ? setting.get(place.id()) : setting.fallback;
    Json words;
    for (const auto& [number, word] : setting.words) {
        words.push_back(word);
    }
    return {{"value", value},
            {"word", wordOf(setting, value)},
            {"words", words},
            {"default", setting.fallback},
            {"default_word", wordOf(setting, setting.fallback)},
            {"stored", value.is_null() ? Json() : Json(isStored)},
            {"database", setting.database->name}};
}

const Json& shownOf(const Json& entry) {
    return entry[entry["word"].is_null() ? "value" : "word"];
}
