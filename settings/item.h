// The parts of the accessors of the settings: where an item is stored, and a function for each kind
// of call on it. Each function opens the item's database if necessary, makes one call of the data
// access library with the arguments that follow the item, and returns its result.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "console-manager/bool.h"

enum class Database : uint8_t { Persistent, Volatile };
enum class Scope : uint8_t { Profiled, Unprofiled };

// Every list has one kind of item; its enumerator has the item's name.
enum class List : uint8_t {
    None,
#define INT_LIST(item, ...) item,
#define STRING_LIST INT_LIST
#include "settings/catalogue.def"
};

// The key is an array because a pointer would have to be relocated in each process.
struct Item {
    Database database;
    Scope scope;
    List list;
    char key[37];
};

// nodeId is a node of the list, or null for an item that is in no list.
int32_t getBOOL(const Item& item, const char* nodeId, BOOL* value, BOOL initial);
int32_t getInt(const Item& item, const char* nodeId, int32_t* value, int32_t initial);
int32_t getString(const Item& item, const char* nodeId, char* buffer, uint32_t* valueInfo,
                  size_t size, const char* initial);
int32_t getStringMalloc(const Item& item, const char* nodeId, char** value, uint32_t* valueInfo);
int32_t setBOOL(const Item& item, const char* nodeId, BOOL value);
int32_t setInt(const Item& item, const char* nodeId, int32_t value);
int32_t setString(const Item& item, const char* nodeId, const char* value);
int32_t deleteItem(const Item& item, const char* nodeId);
int32_t deleteInAllProfiles(const Item& item, const char* nodeId);
int32_t isPresent(const Item& item, const char* nodeId);

// The nodes of the item's list.
int32_t deleteNode(const Item& item, const char* nodeId);
int32_t deleteAllNodes(const Item& item);
int32_t isNodePresent(const Item& item, const char* nodeId);
char** listNodes(const Item& item);

// An item that is a number for callers and a word in the database.
struct Word {
    int32_t number;
    char text[19];
};
using Words = std::span<const Word>;

int32_t getNumber(const Item& item, Words words, int32_t* value, int32_t initial);
int32_t setNumber(const Item& item, Words words, int32_t value);
