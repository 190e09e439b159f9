// What a setting means, as the catalogue has it.
#include "commands.h"
#include "setting.h"
#include "table.h"

namespace {

Json describe(const Setting& setting) {
    Json description = {{"name", setting.name},
                        {"meaning", setting.meaning},
                        {"list", setting.isList()},
                        {"survives_restart", setting.database == &kPersistent}};
    const Json entry = readSetting({&setting, ""}, false);
    for (const char* const key : {"words", "default", "default_word", "database"}) {
        description[key] = entry[key];
    }
    return description;
}

std::string valuesOf(const Setting& setting) {
    std::string words;
    for (const auto& [number, word] : setting.words) {
        words += (words.empty() ? "" : " ") + word;
    }
    const std::string kind = setting.kind == Kind::Text ? "text" : "number";
    return !words.empty() ? words : setting.isList() ? "(list of " + kind + "s)" : "(" + kind + ")";
}

}  // namespace

int describeSettings(const Arguments& arguments) {
    const bool isAll = arguments.words.size() == 1;
    Json description;
    std::vector<Row> rows;
    for (const Setting& setting : kSettings) {
        description[setting.name] = describe(setting);
        rows.push_back({setting.name, valuesOf(setting), setting.meaning});
    }
    if (!isAll) {
        rows.clear();
        description = describe(*find<Setting>(kSettings, arguments.words[1], "setting or list"));
        for (const auto& [key, value] : description.items()) {
            rows.push_back({key, Cell(value)});
        }
    }
    const Names headings = isAll ? Names{"Name", "Values", "Meaning"} : Names{"", ""};
    print(arguments.has('j') ? jsonText(description, arguments.indent()) : tableOf(headings, rows));
    return kDone;
}
