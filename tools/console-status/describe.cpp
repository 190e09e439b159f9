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

}  // namespace

int describeSetting(const Arguments& arguments) {
    const Setting& setting = *find<Setting>(kSettings, arguments.words[1], "setting or list");
    Json described = {{"name", setting.name},
                      {"meaning", kMeanings.at(setting.name)},
                      {"list", setting.isList()},
                      {"survives_restart", setting.database == &kPersistent}};
    const Json entry = readSetting(setting, false, "");
    for (const char* const key : {"words", "default", "default_word", "database"}) {
        described[key] = entry[key];
    }
    std::vector<Row> rows;
    for (const auto& [key, value] : described.items()) {
        rows.push_back({key, Cell(value)});
    }
    print(arguments.has('j') ? jsonText(described, arguments.indent()) : tableOf({"", ""}, rows));
    return kDone;
}
