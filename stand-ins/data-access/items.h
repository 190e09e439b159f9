// Reads, writes, deletes and lists items and nodes. Results are SQLite's primary codes; invalid
// arguments give SQLITE_MISUSE.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>

#include "stand-ins/data-access/item_address.h"

int32_t readNumber(sqlite3* handle, const KeyPath* path, const Profile& profile, int32_t* value,
                   int32_t defaultValue);
int32_t readString(sqlite3* handle, const KeyPath* path, const Profile& profile, char* buffer,
                   uint32_t* valueInfo, size_t size, const char* defaultValue);
int32_t readStringMalloc(sqlite3* handle, const KeyPath* path, const Profile& profile, char** value,
                         uint32_t* valueInfo);

int32_t writeNumber(sqlite3* handle, const KeyPath* path, const Profile& profile, int32_t value,
                    int32_t minimum, int32_t maximum);
int32_t writeString(sqlite3* handle, const KeyPath* path, const Profile& profile,
                    const char* value);

int32_t deleteItem(sqlite3* handle, const KeyPath* path, const Profile& profile);
int32_t isItemPresent(sqlite3* handle, const KeyPath* path, const Profile& profile);

int32_t deleteNodes(sqlite3* handle, const KeyPath* path, const Profile& profile);
int32_t isNodePresent(sqlite3* handle, const KeyPath* path, const Profile& profile);
char** listNodes(sqlite3* handle, const KeyPath* path, const char* listName,
                 const Profile& profile);
