#include "setting.h"
#include "table.h"

namespace {

const char* kindOf(const Setting& setting) {
    return setting.isList() ? "lists" : "settings";
}

void read(Json& report, const std::optional<Names>&) {
    Json databases;
    for (const Database* database : {&kPersistent, &kVolatile}) {
        const auto trouble = troubleOf(*database);
        databases[database->name] = {{"path", database->path},
                                     {"error", trouble ? Json(*trouble) : Json()}};
    }
    Json told = {{"settings", Json()}, {"lists", Json()}};
    for (const Setting& setting : kSettings) {
        Json& error = databases[setting.database->name]["error"];
        Json& entry = told[kindOf(setting)][setting.name];
        entry = readSetting(setting, error.is_null());
        if (error.is_null() && entry.front().is_null()) {
            error = std::string("can't read ") + setting.name;
        }
    }
    report["databases"] = databases;
    report.update(told);
}

std::string show(const Json& report) {
    std::string troubles;
    for (const Json& database : report["databases"]) {
        const Json& error = database["error"];
        troubles += error.is_null() ? "" : paragraph({error.get<std::string>(), kYellow});
    }
    std::vector<Row> values;
    std::vector<Row> lists;
    for (const Setting& setting : kSettings) {
        const Json& told = report[kindOf(setting)][setting.name];
        if (told.front().is_null()) {
            continue;
        }
        if (setting.isList()) {
            lists.push_back({setting.name, std::to_string(told["nodes"].size())});
        } else {
            const bool isStored = told["stored"] == true;
            values.push_back({setting.name,
                              {isStored ? "stored" : "default", isStored ? kGreen : kDim},
                              textOf(told)});
        }
    }
    return title("Settings") + troubles + tableOf({"Setting", "State", "Value"}, values) +
           title("Lists") + tableOf({"List", ">Nodes"}, lists);
}

}  // namespace

const Section kSettingsSection = {"settings", false, read, show};
