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
        entry = readSetting({&setting, {}}, error.is_null());
        if (error.is_null() && entry.front().is_null()) {
            error = failureOf("read", {&setting, {}});
        }
    }
    report["databases"] = databases;
    report.update(entries);
}

std::string showSettings(const Json& report) {
    std::string troubles;
    for (const Json& database : report["databases"]) {
        const Json& error = database["error"];
        troubles += error.is_null() ? "" : paragraph({error.get<std::string>(), kYellow});
    }
    std::vector<Row> values;
    for (const auto& [name, entry] : report["settings"].items()) {
        if (const bool isStored = entry["stored"] == true; !entry["value"].is_null()) {
            values.push_back({name,
                              {isStored ? "stored" : "default", isStored ? kGreen : kDim},
                              Cell(shownOf(entry))});
        }
    }
    std::vector<Row> lists;
    for (const auto& [name, entry] : report["lists"].items()) {
        if (!entry["nodes"].is_null()) {
            lists.push_back({name, std::to_string(entry["nodes"].size())});
        }
    }
    return title("Settings") + troubles + tableOf({"Setting", "State", "Value"}, values) +
           (lists.empty() ? "" : title("Lists") + tableOf({"List", ">Nodes"}, lists));
}

}  // namespace

const Section kSettingsSection = {"settings", false, readSettings, showSettings};
