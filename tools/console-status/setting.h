// The settings and lists of the library, one row each.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "report.h"

struct Database {
    const char* name;
    const char* path;
    bool (*isRead)();  // whether a call of the library can read it
};
extern const Database kPersistent;
extern const Database kVolatile;

// Returns what keeps the library from working on a database, or an empty text if nothing is seen.
std::string seenFromOutside(const Database& database);

// Returns why a database can't be used, or null if it can. Makes one call of the library, so it
// waits once for a lock.
Json troubleOf(const Database& database);

using Words = std::map<int32_t, std::string>;

enum class Kind : uint8_t {
    Truth,   // a number with the words false and true; others can be stored too
    Number,  // without words
    Word,    // a number with a word; no other can be stored
    Text,
};

// A setting of one value, or a list with a value for each node. The functions of a setting ignore
// the node.
struct Setting {
    std::string name;
    const char* meaning;
    const Database* database;
    Kind kind;
    Words words;
    Json fallback;                  // the default
    Json (*get)(const char* node);  // the stored value; null if it can't be read
    int32_t (*set)(const char* node, const Json& value);
    int32_t (*reset)(const char* node);
    int32_t (*isPresent)(const char* node);
    // Only of a list.
    char** (*list)() = nullptr;
    int32_t (*isNode)(const char* node) = nullptr;
    int32_t (*remove)(const char* node) = nullptr;
    int32_t (*clear)() = nullptr;

    bool isList() const { return list != nullptr; }
};

// Sorted by name, settings before lists.
extern const std::vector<Setting> kSettings;

// A setting, a whole list, or a node of a list.
struct Place {
    const Setting* setting;
    std::optional<std::string> node;

    bool operator<(const Place& b) const {
        return std::tie(setting, node) < std::tie(b.setting, b.node);
    }
    const char* id() const { return node ? node->c_str() : nullptr; }
};

// "HomeScreenIcon 'map'".
std::string nameOf(const Place& place);

// Returns "can't WHAT NAME in the persistent database PATH: CAUSE".
std::string failureOf(const std::string& what, const Place& place);

// Returns the number's word, or null if it has none.
Json wordOf(const Setting& setting, const Json& value);

// Returns the value of a word in any case of letters, of a number or of a text. Throws UsageError
// if the setting can't have it.
Json parseValue(const Setting& setting, const std::string& text);

// Returns the entry of the report. Its first key is "value" or "nodes", which is null if the
// database can't be used or read.
Json readSetting(const Place& place, bool usable);

// Returns the word of such an entry, or the value if it has none.
const Json& shownOf(const Json& entry);
