/*
 * Contract of libm7-data-access-library.so.0: typed items on a SQLite connection.
 *
 * On the console this is a closed library. This header says what the settings rely on, whichever
 * library the loader finds. stand-ins/README.md describes what the stand-in does beyond it.
 *
 * Connection. Every function takes the sqlite3* first. A null connection is an error: the call does
 * nothing, except that a getter still delivers its default.
 *
 * Key path. A KeyPath addresses items and nodes, in one of four shapes:
 *
 *     ("dal_key", key)                     a plain item, in the flat key table
 *     (list, node id), ("dal_key", key)    an item of one node of a list
 *     (list, node id)                      a node of a list
 *     (list, null)                         all nodes of a list
 *
 * Path and strings belong to the caller; the library keeps no pointer to them.
 *
 * Tables. A list has a table of nodes, tbl_LIST (c_LIST, c_dal_profile_no), and one of items,
 * tbl_LIST_dal_key_dal_value (c_LIST, c_dal_key, c_dal_profile_no, c_dal_value), which the settings
 * make; all columns are text. A foreign key deletes the items with their node. The library makes
 * the flat key table itself.
 *
 * Profile number. The settings address number 0; DAL_ALL_PROFILES addresses all. An unprofiled item
 * is one row as well, and DAL_deleteProfiledItem with DAL_ALL_PROFILES deletes it.
 *
 * Results. 0 is success, anything else a failure; no other number has a meaning here.
 *
 * Threads. All functions run on the caller's thread. Any thread may call them, on a shared
 * connection too.
 */
#ifndef M7_CONTRACTS_DATA_ACCESS_H
#define M7_CONTRACTS_DATA_ACCESS_H

#include <sqlite3.h>
#include <stddef.h>
#include <stdint.h>

#include "console-manager/bool.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct KeyPathSlot {
    const char* name;  /* the level's name; null ends the path */
    const char* value; /* the level's value; null for all values of the level */
} KeyPathSlot;

typedef struct KeyPath {
    KeyPathSlot slots[17]; /* unused slots are zero */
} KeyPath;

#define DAL_ALL_PROFILES (-1)

/* Prepares a new connection, before any other statement. Foreign keys are enforced afterwards. */
int32_t DAL_SetDBConfiguration(sqlite3* connection);

/* Makes the flat key table. An existing table keeps its rows. */
int32_t DAL_CreateFlatKeyTable(sqlite3* connection);

/*
 * Removes all items of the flat key table, within the caller's transaction if one is open. The
 * table takes new items straight afterwards.
 */
int32_t DAL_DeleteFlatKeyTable(sqlite3* connection);

/* Executes one statement: a CREATE TABLE, BEGIN TRANSACTION, DELETE FROM or COMMIT. */
int32_t DAL_ExecuteQuery(sqlite3* connection, const char* sql);

/*
 * Getters. They deliver on every path, a failure included: the stored value, otherwise
 * defaultValue. The result of an absent item is the library's choice.
 */
int32_t DAL_getTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value, BOOL defaultValue);
int32_t DAL_getProfiledTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value,
                                BOOL defaultValue, int32_t profileNo);
int32_t DAL_getTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                       int32_t defaultValue);
int32_t DAL_getProfiledTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                               int32_t defaultValue, int32_t profileNo);

/*
 * String getters. buffer receives at most size bytes and is terminated, unless size is 0. valueInfo
 * is a word of the caller's, which the library uses in its own way.
 */
int32_t DAL_getTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                          uint32_t* valueInfo, size_t size, const char* defaultValue);
int32_t DAL_getProfiledTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                                  uint32_t* valueInfo, size_t size, const char* defaultValue,
                                  int32_t profileNo);

/*
 * Allocating string getters. *value receives the stored text in a block from malloc, which the
 * caller frees. There is no default.
 */
int32_t DAL_getTypeStringMalloc(sqlite3* connection, const KeyPath* key, char** value,
                                uint32_t* valueInfo);
int32_t DAL_getProfiledTypeStringMalloc(sqlite3* connection, const KeyPath* key, char** value,
                                        uint32_t* valueInfo, int32_t profileNo);

/*
 * Setters. They store value in place of an earlier one. Storing an item of a list creates its node
 * if there is none. value is within minimum and maximum, and extra is 0.
 */
int32_t DAL_setTypeBOOLLimits(sqlite3* connection, const KeyPath* key, BOOL value, uint32_t extra,
                              int32_t minimum, int32_t maximum);
int32_t DAL_setProfiledTypeBOOLLimits(sqlite3* connection, const KeyPath* key, BOOL value,
                                      uint32_t extra, int32_t minimum, int32_t maximum,
                                      int32_t profileNo);
int32_t DAL_setTypeIntLimits(sqlite3* connection, const KeyPath* key, int32_t value, uint32_t extra,
                             int32_t minimum, int32_t maximum);
int32_t DAL_setProfiledTypeIntLimits(sqlite3* connection, const KeyPath* key, int32_t value,
                                     uint32_t extra, int32_t minimum, int32_t maximum,
                                     int32_t profileNo);
int32_t DAL_setTypeString(sqlite3* connection, const KeyPath* key, const char* value,
                          uint32_t extra);
int32_t DAL_setProfiledTypeString(sqlite3* connection, const KeyPath* key, const char* value,
                                  uint32_t extra, int32_t profileNo);

/* Deletes one item. */
int32_t DAL_deleteItem(sqlite3* connection, const KeyPath* key);

/* Deletes an item under profile number 0, or under all with DAL_ALL_PROFILES (unprofiled too). */
int32_t DAL_deleteProfiledItem(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/* Returns 0 if no such item is stored, otherwise another number. */
int32_t DAL_isPresent(sqlite3* connection, const KeyPath* key);
int32_t DAL_isProfiledPresent(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/* Deletes one node under profile number 0, or all nodes of a list under all, with their items. */
int32_t DAL_deleteProfiledNodeItem(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/* Returns 0 if the list has no such node, otherwise another number. */
int32_t DAL_isProfiledNodePresent(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/*
 * Returns the node ids of a list, in any order, or null on failure. The result is an array from
 * malloc that a null pointer ends, so an empty list is that pointer alone. Each id is a string from
 * malloc. The caller frees each id and then the array. listName repeats the name in key.
 */
char** DAL_listProfiledNodeItems(sqlite3* connection, const KeyPath* key, const char* listName,
                                 int32_t profileNo);

#ifdef __cplusplus
}
#endif

#endif
