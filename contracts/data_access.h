/*
 * Contract of libm7-data-access-library.so.0: typed items on a SQLite connection.
 *
 * On the console this is a closed library. Here stands what the settings count on, whichever
 * library the loader finds; what the one in stand-ins/data-access does beyond it is told there.
 *
 * Connection. Every function takes the sqlite3* first. Null is answered with a failure and has no
 * other effect, except that a getter delivers its default.
 *
 * Key path. Which item is meant is told by a KeyPath, in one of four shapes:
 *
 *     ("dal_key", key)                     a plain item, in the flat key table
 *     (list, node id), ("dal_key", key)    an item of one node of a list
 *     (list, node id)                      a node of a list
 *     (list, null)                         all nodes of a list
 *
 * Path and strings are the caller's; no pointer to them is kept.
 *
 * Tables. A list has a table of nodes, tbl_LIST (c_LIST, c_dal_profile_no), and one of items,
 * tbl_LIST_dal_key_dal_value (c_LIST, c_dal_key, c_dal_profile_no, c_dal_value), which the settings
 * make; all columns are text. The items of a node go with it by a foreign key. The flat key table
 * is the library's own.
 *
 * Profile number. 0 is the one that the settings address, DAL_ALL_PROFILES means all. An unprofiled
 * item is one row as well, and DAL_deleteProfiledItem with DAL_ALL_PROFILES reaches it.
 *
 * Results. 0 is success, anything else a failure; no other number has a meaning here.
 *
 * Threads. All functions run on the caller's thread, on any of them, on one shared connection too.
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

/* Makes the flat key table. A table that is there stays as it is, with its rows. */
int32_t DAL_CreateFlatKeyTable(sqlite3* connection);

/*
 * Removes all items of the flat key table, within the caller's transaction if one is open. The
 * table takes new items straight afterwards.
 */
int32_t DAL_DeleteFlatKeyTable(sqlite3* connection);

/* Executes one statement: a CREATE TABLE, BEGIN TRANSACTION, DELETE FROM or COMMIT. */
int32_t DAL_ExecuteQuery(sqlite3* connection, const char* sql);

/*
 * Getters. They deliver on every path, a failure included: the stored value, or else defaultValue,
 * of which an absent item isn't told apart.
 */
int32_t DAL_getTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value, BOOL defaultValue);
int32_t DAL_getProfiledTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value,
                                BOOL defaultValue, int32_t profileNo);
int32_t DAL_getTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                       int32_t defaultValue);
int32_t DAL_getProfiledTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                               int32_t defaultValue, int32_t profileNo);

/*
 * String getters. buffer receives at most size bytes, the terminator included, which is always
 * there. valueInfo is a word of the caller's, for the library's own use.
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
 * Setters. They store value in place of an earlier one; an item of a list brings its node into
 * being. value lies within minimum and maximum, and extra is 0.
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

/* Delete one item. */
int32_t DAL_deleteItem(sqlite3* connection, const KeyPath* key);

/* Under profile number 0, or with DAL_ALL_PROFILES under all, unprofiled included. */
int32_t DAL_deleteProfiledItem(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/* Not 0 if the item is stored, 0 if not; a default doesn't count. */
int32_t DAL_isPresent(sqlite3* connection, const KeyPath* key);
int32_t DAL_isProfiledPresent(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/* Deletes nodes with their items: one under profile number 0, or a whole list under all. */
int32_t DAL_deleteProfiledNodeItem(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/* Not 0 if the list has the node, 0 if not. */
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
