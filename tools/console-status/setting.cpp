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

// clang-format off
#define NODES(list)                                                                              \
    {DAL_CML_list##list##Nodes, DAL_CML_is##list##NodePresent, DAL_CML_delete##list##Node,  \
     DAL_CML_deleteAll##list##Nodes}
#define ROW(name, Kind, nodes, ...)                                                              \
    {#name, {__VA_ARGS__}, DAL_CML_get##name##Default(), get##Kind<DAL_CML_get##name>,           \
     set##Kind<DAL_CML_set##name>, call<DAL_CML_delete##name>, call<DAL_CML_is##name##Present>, nodes}
// clang-format on

}  // namespace

const std::vector<Setting> kSettings = {
#include "setting_rows.inc"
};

Json wordOf(const Setting& setting, const Json& value) {
    for (const auto& [word, number] : setting.words.items()) {
        if (value == number) {
            return word;
        }
    }
    return nullptr;
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
                {"database", setting.database().name}};
    }
    const Json value = usable ? setting.get(node) : Json();
    Json words;
    for (const auto& [word, number] : setting.words.items()) {
        words.push_back(word);
    }
    return {{"value", value},
            {"word", wordOf(setting, value)},
            {"words", words},
            {"default", setting.fallback},
            {"default_word", wordOf(setting, setting.fallback)},
            {"stored", value.is_null() ? Json() : Json(setting.isPresent(node) != 0)},
            {"database", setting.database().name}};
}

std::string textOf(const Json& told) {
    const Json& text = told[told["word"].is_null() ? "value" : "word"];
    return text.is_string() ? text.get<std::string>() : text.dump();
}
