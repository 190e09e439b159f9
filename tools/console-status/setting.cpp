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
#define NODES(node)                                                                              \
    DAL_CML_list##node##s, DAL_CML_is##node##Present, DAL_CML_delete##node, DAL_CML_deleteAll##node##s
#define ROW(name, database, kind, getter, Form, words, ...)                                      \
    {#name, &k##database, Kind::kind, words, DAL_CML_get##name##Default(), getter,               \
     set##Form<DAL_CML_set##name>, call<DAL_CML_delete##name>, call<DAL_CML_is##name##Present>, {__VA_ARGS__}},
#define NUMBER(name, database, kind, ...)                                                        \
    ROW(name, database, kind, getNumber<DAL_CML_get##name>, Number, __VA_ARGS__)
#define TEXT(name, ...) ROW(name, Persistent, Text, getText<DAL_CML_get##name##Malloc>, Text, __VA_ARGS__)
#define BOOL_SETTING(name, ...) NUMBER(name, Persistent, Truth, Words({{0, "false"}, {1, "true"}}))
#define INT_SETTING(name, ...) NUMBER(name, Persistent, Number, {})
#define STRING_SETTING(name, ...) TEXT(name, {})
#define ENUMERATED_SETTING(name, key, scope, database, initial, meaning, ...)                    \
    NUMBER(name, database, Word, Words({__VA_ARGS__}))
#define INT_LIST(name, node, ...) NUMBER(name, Persistent, Number, {}, NODES(node))
#define STRING_LIST(name, node, ...) TEXT(name, {}, NODES(node))
// clang-format on

std::vector<Setting> sorted(std::vector<Setting> settings) {
    std::ranges::sort(settings, {}, [](const Setting& setting) {
        return std::pair(setting.isList(), setting.name);
    });
    return settings;
}

}  // namespace

const std::vector<Setting> kSettings = sorted({
#include "settings/catalogue.def"
});

Json wordOf(const Setting& setting, const Json& value) {
    for (const Word& word : setting.words) {
        if (value == word.number) {
            return word.text;
        }
    }
    return nullptr;
}

Json parseValue(const Setting& setting, const std::string& text) {
    if (setting.kind == Kind::Text) {
        return text;
    }
    const auto number = numberOf(text);
    std::string takes;
    Names words;
    for (const Word& word : setting.words) {
        if (number == word.number || strcasecmp(text.c_str(), word.text) == 0) {
            return word.number;
        }
        takes += words.emplace_back(word.text) + " (" + std::to_string(word.number) + "), ";
    }
    const bool takesAny = setting.kind != Kind::Word;
    if (number && takesAny) {
        return *number;
    }
    throw UsageError(setting.name + " takes " + takes +
                     (takesAny ? "a whole number of 32 bits, " : "") + "not " + quoted(text) +
                     suggestion(text, words));
}

Json nodesOf(const Setting& list) {
    char** const nodes = list.nodes.list();
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

Json readSetting(const Setting& setting, bool usable, const char* node) {
    if (setting.isList() && node == nullptr) {
        return {{"nodes", usable ? nodesOf(setting) : Json()},
                {"default", setting.fallback},
                {"database", setting.database->name}};
    }
    const bool isStored = usable && setting.isPresent(node) != 0;
    const Json value = !usable ? Json() : isStored ? setting.get(node) : setting.fallback;
    Json words;
    for (const Word& word : setting.words) {
        words.push_back(word.text);
    }
    return {{"value", value},
            {"word", wordOf(setting, value)},
            {"words", words},
            {"default", setting.fallback},
            {"default_word", wordOf(setting, setting.fallback)},
            {"stored", value.is_null() ? Json() : Json(isStored)},
            {"database", setting.database->name}};
}

std::string textOf(const Json& entry) {
    const Json& text = entry[entry["word"].is_null() ? "value" : "word"];
    return text.is_string() ? text.get<std::string>() : text.dump();
}
