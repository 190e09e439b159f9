#include <cstdlib>
#include <memory>

#include "setting.h"
#include "table.h"
#include "terminal.h"

namespace {

struct Free {
    void operator()(void* block) const { std::free(block); }
};

// {"node": ..., "value": ...} each; null if the list can't be read.
Json nodesOf(const Setting& list) {
    const std::unique_ptr<char*, Free> nodes(list.nodes->list());
    if (!nodes) {
        return nullptr;
    }
    Json entries = Json::array();
    for (char** node = nodes.get(); *node != nullptr; ++node) {
        const std::unique_ptr<char, Free> id(*node);
        entries.push_back({{"node", id.get()}, {"value", list.get(id.get())}});
    }
    return entries;
}

bool isReadable(const Json& told) {
    return !told.contains("nodes") ? !told["value"].is_null() : !told["nodes"].is_null();
}

Cell stateOf(const Json& told) {
    return told["stored"] == true ? Cell("stored", kGreen) : Cell("default", kDim);
}

std::string showTroubles(const Json& databases) {
    std::string text;
    for (const Json& database : databases) {
        if (database["error"].is_string()) {
            text += paragraph({database["error"].get<std::string>(), kYellow});
        }
    }
    return text;
}

}  // namespace

Json readSetting(const Setting& setting, bool usable, const char* node) {
    const Json value = usable ? setting.get(node) : Json();
    return {{"value", value},
            {"word", wordOf(setting, value)},
            {"default", setting.fallback},
            {"default_word", wordOf(setting, setting.fallback)},
            {"stored", value.is_null() ? Json() : Json(setting.isPresent(node) == 1)},
            {"database", setting.database->name}};
}

Json readList(const Setting& list, bool usable) {
    return {{"nodes", usable ? nodesOf(list) : Json()},
            {"default", list.fallback},
            {"database", list.database->name}};
}

std::string showNodes(const Setting& list, const Json& nodes) {
    Table table({"Node", "Value"});
    for (const Json& node : nodes) {
        table.add({node["node"].get<std::string>(), textOf(list, node["value"])});
    }
    return table.text();
}

void readSettings(Json& report) {
    Json databases;
    for (const Database* database : {&kPersistent, &kVolatile}) {
        const auto trouble = troubleOf(*database);
        databases[database->name] = {{"path", database->path},
                                     {"error", trouble ? Json(*trouble) : Json()}};
    }
    Json scalars;
    Json lists;
    for (const Setting& setting : settings()) {
        Json& error = databases[setting.database->name]["error"];
        const bool usable = error.is_null();
        const Json told =
            setting.isList() ? readList(setting, usable) : readSetting(setting, usable);
        if (usable && !isReadable(told)) {
            error = std::string("the ") + setting.database->name + " database can't be read from " +
                    setting.name + " on";
        }
        (setting.isList() ? lists : scalars)[setting.name] = told;
    }
    report["databases"] = databases;
    report["settings"] = scalars;
    report["lists"] = lists;
}

std::string showSettings(const Json& report) {
    Table scalars({"Setting", "State", "Value"});
    Table lists({"List", ">Nodes"});
    for (const Setting& setting : settings()) {
        const Json& told = report[setting.isList() ? "lists" : "settings"][setting.name];
        if (!isReadable(told)) {
            continue;
        }
        if (setting.isList()) {
            lists.add({setting.name, std::to_string(told["nodes"].size())});
        } else {
            scalars.add({setting.name, stateOf(told), textOf(setting, told["value"])});
        }
    }
    return title("Settings") + showTroubles(report["databases"]) + scalars.text() + title("Lists") +
           lists.text();
}
