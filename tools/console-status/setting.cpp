#include "setting.h"

#include <console-manager/settings.h>
#include <strings.h>

#include <algorithm>
#include <type_traits>

#include "commands.h"

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

// clang-format off
#define NODES(node)                                                                              \
    {DAL_CML_list##node##s, DAL_CML_is##node##Present, DAL_CML_delete##node, DAL_CML_deleteAll##node##s}
#define ROW(name, database, kind, Form, nodes, ...)                                              \
    {#name, &k##database, Kind::kind, {__VA_ARGS__}, DAL_CML_get##name##Default(),               \
     get##Form<DAL_CML_get##name>, set##Form<DAL_CML_set##name>, call<DAL_CML_delete##name>,     \
     call<DAL_CML_is##name##Present>, nodes},
#define BOOL_SETTING(name, ...) ROW(name, Persistent, Truth, Number, {}, {0, "false"}, {1, "true"})
#define INT_SETTING(name, ...) ROW(name, Persistent, Number, Number, {})
#define STRING_SETTING(name, ...) ROW(name, Persistent, Text, Text, {})
#define ENUMERATED_SETTING(name, key, scope, database, initial, meaning, ...)                    \
    ROW(name, database, Word, Number, {}, __VA_ARGS__)
#define INT_LIST(name, node, ...) ROW(name, Persistent, Number, Number, NODES(node))
#define STRING_LIST(name, node, ...) ROW(name, Persistent, Text, Text, NODES(node))
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

Json valueOf(const Setting& setting, const std::string& text) {
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
        words.push_back(word.text);
    }
    return {{"value", value},
            {"word", wordOf(setting, value)},
            {"words", words},
            {"default", setting.fallback},
            {"default_word", wordOf(setting, setting.fallback)},
            {"stored", value.is_null() ? Json() : Json(setting.isPresent(node) != 0)},
            {"database", setting.database->name}};
}

std::string textOf(const Json& told) {
    const Json& text = told[told["word"].is_null() ? "value" : "word"];
    return text.is_string() ? text.get<std::string>() : text.dump();
}
