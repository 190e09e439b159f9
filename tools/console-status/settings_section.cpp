#include "setting.h"
#include "table.h"

namespace {

void readSettings(Json& report, const Json&) {
    Json databases;
    for (const Database* database : {&kPersistent, &kVolatile}) {
        databases[database->name] = {{"path", database->path}, {"error", troubleOf(*database)}};
    }
    Json entries = {{"settings", Json()}, {"lists", Json()}};
    for (const Setting& setting : kSettings) {
        Json& error = databases[setting.database->name]["error"];
        Json& entry = entries[setting.isList() ? "lists" : "settings"][setting.name];
        entry = readSetting(setting, error.is_null());
        if (error.is_null() && entry.front().is_null()) {
            error = "can't read " + setting.name + " " + whyFailed(*setting.database);
        }
    }
    report["databases"] = databases;
    report.update(entries);
}

// Removes what isn't stored, and empty lists.
void readStoredOnly(Json& report, const Json& ports) {
    readSettings(report, ports);
    for (const char* const part : {"settings", "lists"}) {
        Json kept = Json::object();
        for (const auto& [name, entry] : report[part].items()) {
            if (entry.contains("nodes") ? !entry["nodes"].empty() : entry["stored"] == true) {
                kept[name] = entry;
            }
        }
        report[part] = kept;
    }
}

void readLists(Json& report, const Json& ports) {
    readSettings(report, ports);
    report.erase("settings");
}

std::string showTroubles(const Json& report) {
    std::string troubles;
    for (const Json& database : report["databases"]) {
        const Json& error = database["error"];
        troubles += error.is_null() ? "" : paragraph({error.get<std::string>(), kYellow});
    }
    return troubles;
}

std::string showLists(const Json& report) {
    std::vector<Row> rows;
    for (const auto& [name, entry] : report["lists"].items()) {
        for (const Json& node : entry["nodes"]) {
            rows.push_back({name, Cell(node["node"]), Cell(node["value"])});
        }
    }
    return showTroubles(report) + tableOf({"List", "Node", "Value"}, rows);
}

std::string showSettings(const Json& report) {
    std::vector<Row> values;
    for (const auto& [name, entry] : report["settings"].items()) {
        if (const bool isStored = entry["stored"] == true; !entry["value"].is_null()) {
            values.push_back(
                {name, {isStored ? "stored" : "default", isStored ? kGreen : kDim}, textOf(entry)});
        }
    }
    std::vector<Row> lists;
    for (const auto& [name, entry] : report["lists"].items()) {
        if (!entry["nodes"].is_null()) {
            lists.push_back({name, std::to_string(entry["nodes"].size())});
        }
    }
    return title("Settings") + showTroubles(report) +
           tableOf({"Setting", "State", "Value"}, values) +
           (lists.empty() ? "" : title("Lists") + tableOf({"List", ">Nodes"}, lists));
}

std::string showStored(const Json& report) {
    Json values = report;
    values["lists"] = Json::object();
    Json nodes = {{"databases", Json()}, {"lists", report["lists"]}};
    return showSettings(values) + title("Lists") + showLists(nodes);
}

}  // namespace

const Section kSettingsSection = {"settings", false, readSettings, showSettings};
const Section kStoredSection = {"stored", false, readStoredOnly, showStored};
const Section kListsSection = {"list", false, readLists, showLists};
