// The settings and lists of the library, one row each.
#pragma once

#include <cstdint>
#include <string>
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

// After a failure, returns "in the persistent database PATH: CAUSE".
std::string whyFailed(const Database& database);

// Returns why a database can't be used, or null if it can. Makes one call of the library, so it
// waits once for a lock.
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
    Truth,   // a number with the words false and true; others can be stored too
    Number,  // without words
    Word,    // a number with a word; no other can be stored
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
    Json (*get)(const char* node);  // the stored value; null if it can't be read
    int32_t (*set)(const char* node, const Json& value);
    int32_t (*reset)(const char* node);
    int32_t (*isPresent)(const char* node);
    Nodes nodes;  // all null if it isn't a list

    bool isList() const { return nodes.list != nullptr; }
};

// Sorted by name, settings before lists.
extern const std::vector<Setting> kSettings;

// Returns the number's word, or null if it has none.
Json wordOf(const Setting& setting, const Json& value);

// Returns the value of a word in any case of letters, of a number or of a text. Throws UsageError
// if the setting can't have it.
Json parseValue(const Setting& setting, const std::string& text);

// Returns the nodes of a list in order, each with its value, or null if the list can't be read.
// "stored" is false if the node has the default.
Json nodesOf(const Setting& list);

// Returns the report's entry of a setting, a list or, if node isn't null, a node. Its first key is
// "value" or "nodes", which is null if the database can't be used or read.
Json readSetting(const Setting& setting, bool usable, const char* node = nullptr);

// Returns the word of such an entry, or the value if it has none.
std::string textOf(const Json& entry);
