// The settings and lists of the library, one row each.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report.h"

struct Database {
    const char* name;
    const char* path;
    bool (*isRead)();  // whether the library can read it
};
extern const Database kPersistent;
extern const Database kVolatile;

// "in the persistent database PATH: CAUSE", after a failure of the library.
std::string whyFailed(const Database& database);

// Why a database can't be used, or null if it can. Waits once if the database is locked.
Json troubleOf(const Database& database);

// A name for a number.
struct Word {
    int32_t number;
    const char* text;
};
using Words = std::vector<Word>;

// The functions that only a list has.
struct Nodes {
    char** (*list)();
    int32_t (*isPresent)(const char* node);
    int32_t (*remove)(const char* node);
    int32_t (*clear)();
};

enum class Kind : uint8_t {
    Truth,   // a number whose words are false and true; other numbers can be stored too
    Number,  // without words
    Word,    // a number that has a word; the library stores no other
    Text,
};

// A setting of one value, or a list with a value for each node. The functions of a setting ignore
// the node.
struct Setting {
    std::string name;
    const Database* database;
    Kind kind;
    Words words;                    // by number
    Json fallback;                  // the default
    Json (*get)(const char* node);  // of what is stored; null if that can't be read
    int32_t (*set)(const char* node, const Json& value);
    int32_t (*reset)(const char* node);
    int32_t (*isPresent)(const char* node);
    Nodes nodes;  // all null if it isn't a list

    bool isList() const { return nodes.list != nullptr; }
};

// Settings first, then lists; both by name.
extern const std::vector<Setting> kSettings;

// The number's word, or null if it has none.
Json wordOf(const Setting& setting, const Json& value);

// The value that a text stands for: a word in any case of letters, a number or the text itself.
// Throws UsageError if the setting can't have it.
Json parseValue(const Setting& setting, const std::string& text);

// The nodes of a list, sorted, each with its value; null if the list can't be read. "stored" is
// false for a node that has no value of its own.
Json nodesOf(const Setting& list);

// What the report has of a setting, a list or, if node isn't null, a node of it: "value" or "nodes"
// comes first, and is null if the database isn't usable or can't be read.
Json readSetting(const Setting& setting, bool usable, const char* node = nullptr);

// The word of what readSetting gives, or the value where there is none.
std::string textOf(const Json& told);
