// What a setting means, as the catalogue has it.
#include <map>

#include "commands.h"
#include "setting.h"
#include "table.h"

namespace {

const std::map<std::string, const char*> kMeanings = {
#define BOOL_SETTING(name, key, scope, initial, meaning) {#name, meaning},
#define INT_SETTING BOOL_SETTING
#define STRING_SETTING BOOL_SETTING
#define ENUMERATED_SETTING(name, key, scope, database, initial, meaning, ...) {#name, meaning},
#define INT_LIST(name, node, list, key, initial, meaning) {#name, meaning},
#define STRING_LIST INT_LIST
#include "settings/catalogue.def"
};

Json describe(const Setting& setting) {
    Json description = {{"name", setting.name},
                        {"meaning", kMeanings.at(setting.name)},
                        {"list", setting.isList()},
                        {"survives_restart", setting.database == &kPersistent}};
    const Json entry = readSetting(setting, false, "");
    for (const char* const key : {"words", "default", "default_word", "database"}) {
        description[key] = entry[key];
    }
    return description;
}

std::string valuesOf(const Setting& setting) {
    std::string words;
    for (const Word& word : setting.words) {
        words.append(words.empty() ? "" : " ").append(word.text);
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
        rows.push_back({setting.name, valuesOf(setting), kMeanings.at(setting.name)});
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
