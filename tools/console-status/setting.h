// The settings and lists that the library has, a row each.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report.h"

struct Database {
    const char* name;
    const char* path;
    int32_t (*get)(int32_t* value);  // of a value in it; 0 if the database can be used
};
extern const Database kPersistent;
extern const Database kVolatile;

// Why something on a database fails, as far as the file system tells.
std::string whyUnusable(const Database& database);

// That as a sentence, or null if the database can be used.
Json troubleOf(const Database& database);

// What only a list has.
struct Nodes {
    char** (*list)();
    int32_t (*isPresent)(const char* node);
    int32_t (*remove)(const char* node);
    int32_t (*clear)();
};

// A setting of one value, or a list with a value for each node. The functions of a setting take no
// notice of the node.
struct Setting {
    std::string name;
    Json words;                     // with their numbers; null where any number or text will do
    Json fallback;                  // the default, which tells numbers from texts, too
    Json (*get)(const char* node);  // null if it can't be read
    int32_t (*set)(const char* node, const Json& value);
    int32_t (*reset)(const char* node);
    int32_t (*isPresent)(const char* node);
    Nodes nodes;  // none if it isn't a list

    bool isList() const { return nodes.list != nullptr; }
    const Database& database() const { return name == "AutoTheme" ? kVolatile : kPersistent; }
};

// Settings first, then lists.
extern const std::vector<Setting> kSettings;

// The number's word; null where it has none.
Json wordOf(const Setting& setting, const Json& value);

// The nodes of a list with their values; null if it can't be read.
Json nodesOf(const Setting& list);

// What the report has of a setting, a list or, if node isn't null, a node of it: "value" or "nodes"
// comes first, and is null if the database isn't usable or can't be read.
Json readSetting(const Setting& setting, bool usable, const char* node = nullptr);

// The word of what readSetting gives, or the value where there is none.
std::string textOf(const Json& told);
