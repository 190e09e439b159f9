#include "stored.h"

#include "commands.h"
#include "table.h"

namespace {

// A text that isn't UTF-8 becomes an object with its bytes.
Json encodedText(const std::string& text) {
    const bool isUtf8 = Json::parse(jsonText(text, -1)) == text;
    return isUtf8 ? Json(text) : Json{{"bytes", std::vector<uint8_t>(text.begin(), text.end())}};
}

// As a file has it: a number that has a word becomes that word.
Json encodedValue(const Setting& setting, const Json& value) {
    if (value.is_string()) {
        return encodedText(value);
    }
    const Json word = wordOf(setting, value);
    return word.is_null() ? value : setting.kind == Kind::Truth ? Json(value == 1) : word;
}

Json entryOf(const Place& place, const Json& value) {
    const auto& [setting, node] = place;
    Json entry = {{"name", setting->name}};
    if (node) {
        entry["node"] = encodedText(*node);
    }
    if (!value.is_null()) {
        entry["value"] = value.is_discarded() ? Json() : encodedValue(*setting, value);
    }
    return entry;
}

std::string valueText(const Setting& setting, const Json& value) {
    return value.is_discarded() ? "-"
           : value.is_null()    ? "(no value)"
                                : Cell(encodedValue(setting, value)).text;
}

}  // namespace

Stored readStored() {
    Json report;
    kSettingsSection.read(report, nullptr);
    for (const Json& database : report["databases"]) {
        if (const Json& error = database["error"]; !error.is_null()) {
            throw std::runtime_error(error);
        }
    }
    Stored stored;
    for (const Setting& setting : kSettings) {
        const Json& entry = report[setting.isList() ? "lists" : "settings"][setting.name];
        if (entry.value("stored", false)) {
            stored[{&setting, {}}] = entry["value"];
        }
        for (const Json& node : entry.value("nodes", Json())) {
            stored[{&setting, node["node"]}] = node["stored"] == true ? node["value"] : Json();
        }
    }
    return stored;
}

Json valueAt(const Stored& stored, const Place& place) {
    return stored.contains(place) ? stored.at(place) : Json(Json::value_t::discarded);
}

std::string changeText(const Place& place, const Json& before, const Json& after) {
    return Cell(nameOf(place)).text + ": " + valueText(*place.setting, before) + " -> " +
           valueText(*place.setting, after) + "\n";
}

std::string readChanges(Stored& stored, bool asJson) {
    const Stored before = std::exchange(stored, readStored());
    Stored all = before;
    all.insert(stored.begin(), stored.end());
    std::string text;
    for (const auto& [place, either] : all) {
        const Json was = valueAt(before, place);
        const Json is = valueAt(stored, place);
        if (!(was == is)) {
            Json line = {{"time", timeText("%FT%TZ", std::gmtime)}};
            line.update(entryOf(place, is));
            text += asJson ? jsonText(line, -1)
                           : timeText("%F %T  ", std::localtime) + changeText(place, was, is);
        }
    }
    return text;
}

int showStored(const Arguments& arguments) {
    const std::string& what = arguments.words[0];
    Json entries = Json::array();
    std::vector<Row> rows;
    for (const auto& [place, value] : readStored()) {
        const auto& [setting, node] = place;
        if (setting->isList() || what != "list") {
            entries.push_back(entryOf(place, value));
            rows.push_back({setting->name, node.value_or(""), valueText(*setting, value)});
        }
    }
    const bool asJson = what == "export" || arguments.has('j');
    writeOutput(arguments, asJson ? jsonText(entries, arguments.indent())
                                  : tableOf({"Name", "Node", "Value"}, rows));
    return kDone;
}
