#include "stored.h"

#include "commands.h"
#include "table.h"

namespace {

std::string valueText(const Setting& setting, const Json& value) {
    const Json word = wordOf(setting, value);
    return value.is_discarded() ? "-"
           : value.is_null()    ? "(no value)"
                                : Cell(word.is_null() ? value : word).text;
}

// With the keys of the report.
Json changeJson(const Place& place, const Json& value) {
    const auto& [setting, node] = place;
    const bool isStored = !value.is_discarded() && !value.is_null();
    const bool isGone = value.is_discarded() && setting->isList();
    const Json current = isGone ? Json() : isStored ? value : setting->fallback;
    return {{"time", timeText("%FT%TZ", std::gmtime)},
            {"name", setting->name},
            {"node", setting->isList() ? Json(node) : Json()},
            {"value", current},
            {"word", wordOf(*setting, current)},
            {"stored", isGone ? Json() : Json(isStored)}};
}

}  // namespace

Stored readStored() {
    Stored stored;
    for (const Setting& setting : kSettings) {
        const Json entry = readSetting(setting, troubleOf(*setting.database).is_null());
        if (entry.front().is_null()) {
            throw std::runtime_error("can't read " + setting.name + " " +
                                     whyFailed(*setting.database));
        }
        if (!setting.isList() && entry["stored"] == true) {
            stored[{&setting, ""}] = entry["value"];
        }
        for (const Json& node : setting.isList() ? entry["nodes"] : Json()) {
            stored[{&setting, node["node"]}] = node["stored"] == true ? node["value"] : Json();
        }
    }
    return stored;
}

Json valueAt(const Stored& stored, const Place& place) {
    return stored.contains(place) ? stored.at(place) : Json(Json::value_t::discarded);
}

std::string nameOf(const Place& place) {
    return place.first->name + (place.first->isList() ? " " + quoted(place.second) : "");
}

std::string changeText(const Place& place, const Json& before, const Json& after) {
    return Cell(nameOf(place)).text + ": " + valueText(*place.first, before) + " -> " +
           valueText(*place.first, after) + "\n";
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
            text += asJson ? jsonText(changeJson(place, is), -1)
                           : timeText("%F %T  ", std::localtime) + changeText(place, was, is);
        }
    }
    return text;
}
