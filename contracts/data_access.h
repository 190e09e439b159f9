/*
 * Contract of libm7-data-access-library.so.0: typed items on a SQLite connection.
 *
 * On the console this is a closed library. The one built here keeps every item as text in the
 * tables that the settings store makes, and integers and truth values as decimal text.
 *
 * Connection. Every function takes the sqlite3* first. Null is answered with a failure and has no
 * other effect, except that a getter delivers its default. What is prepared for a connection is
 * released when the connection is closed.
 *
 * Key path. Which item is meant is told by a KeyPath, in one of four shapes; anything else is
 * refused with SQLITE_MISUSE:
 *
 *     ("dal_key", key)                     a plain item, in the flat key table
 *     (list, node id), ("dal_key", key)    an item of one node of a list
 *     (list, node id)                      a node of a list
 *     (list, null)                         all nodes of a list
 *
 * Path and strings are the caller's and are not kept.
 *
 * Profile number. 0 or above for one profile; DAL_ALL_PROFILES in the two deletes that take it. An
 * unprofiled item is held under a profile number of its own (the empty text), so that it is one
 * row, and DAL_deleteProfiledItem with DAL_ALL_PROFILES reaches it.
 *
 * Results. 0 is success; a failure is SQLite's primary result code (SQLITE_BUSY, SQLITE_FULL ...),
 * or SQLITE_MISUSE for bad arguments, SQLITE_RANGE for a value outside its limits, SQLITE_NOTFOUND
 * for an absent item where no default is given, SQLITE_NOMEM. The presence functions answer 1 or 0,
 * and 0 when they can't tell.
 *
 * Durability. A setter or delete that returned 0 is on the disk. An operation of several rows is
 * done as a whole or not at all. Inside a transaction that the caller has open, both hold from its
 * end on. Another process that is writing is waited for, 10 seconds at most.
 *
 * Threads. Every function may be called from any thread, on one shared connection too. A
 * transaction that DAL_ExecuteQuery has begun belongs to the calling thread: the others wait until
 * that thread has ended it through DAL_ExecuteQuery.
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

/*
 * Prepares a new connection; call it before any other statement. Turns on foreign keys, the
 * write-ahead journal and full synchronisation.
 */
int32_t DAL_SetDBConfiguration(sqlite3* connection);

/* Makes the flat key table. A table that is there stays as it is, with its rows. */
int32_t DAL_CreateFlatKeyTable(sqlite3* connection);

/* Removes all items of the flat key table, within the caller's transaction if one is open. */
int32_t DAL_DeleteFlatKeyTable(sqlite3* connection);

/*
 * Executes one statement. A COMMIT that fails rolls its transaction back, so that what follows is
 * not swallowed by a transaction that nobody will end.
 */
int32_t DAL_ExecuteQuery(sqlite3* connection, const char* sql);

/*
 * Getters. They deliver on every path, a failure included: the stored value, or else defaultValue.
 * An absent item is a success, and so is a stored text that is no 32-bit integer: both give the
 * default. A null value or buffer receives nothing.
 */
int32_t DAL_getTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value, BOOL defaultValue);
int32_t DAL_getProfiledTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value,
                                BOOL defaultValue, int32_t profileNo);
int32_t DAL_getTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                       int32_t defaultValue);
int32_t DAL_getProfiledTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                               int32_t defaultValue, int32_t profileNo);

/*
 * String getters. buffer receives at most size bytes, the terminator included; a longer text is
 * cut. valueInfo may be null; otherwise it receives the length in bytes, without terminator, of the
 * whole text (the default's where that is delivered), so that a cut shows as a length of size or
 * above.
 */
int32_t DAL_getTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                          uint32_t* valueInfo, size_t size, const char* defaultValue);
int32_t DAL_getProfiledTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                                  uint32_t* valueInfo, size_t size, const char* defaultValue,
                                  int32_t profileNo);

/*
 * Allocating string getters. *value receives the whole text in a block from malloc, which the
 * caller frees, or null on a failure; an absent item is a failure (SQLITE_NOTFOUND). valueInfo may
 * be null; otherwise it receives the length in bytes without terminator, 0 on a failure.
 */
int32_t DAL_getTypeStringMalloc(sqlite3* connection, const KeyPath* key, char** value,
                                uint32_t* valueInfo);
int32_t DAL_getProfiledTypeStringMalloc(sqlite3* connection, const KeyPath* key, char** value,
                                        uint32_t* valueInfo, int32_t profileNo);

/*
 * Setters. They store value in place of an earlier one; an item of a list brings its node into
 * being. minimum and maximum are inclusive, and a value outside is refused. extra is 0.
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

/* Deletes one item; one that is absent is a success. The node of a list's item stays. */
int32_t DAL_deleteItem(sqlite3* connection, const KeyPath* key);

/* The same under one profile number, or with DAL_ALL_PROFILES under all, unprofiled included. */
int32_t DAL_deleteProfiledItem(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/* 1 if the item is stored, 0 if not. */
int32_t DAL_isPresent(sqlite3* connection, const KeyPath* key);
int32_t DAL_isProfiledPresent(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/*
 * Deletes a node with its items under profileNo, or with DAL_ALL_PROFILES under all profile
 * numbers. All nodes of a list go only with DAL_ALL_PROFILES: a null node id beside a single
 * profile number is a mistake that must not cost the list, and is refused.
 */
int32_t DAL_deleteProfiledNodeItem(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/* 1 if the list has the node, 0 if not. */
int32_t DAL_isProfiledNodePresent(sqlite3* connection, const KeyPath* key, int32_t profileNo);

/*
 * The node ids of a list in ascending strcmp order, as an array that a null pointer ends; for an
 * empty list it holds only that. Array and ids are blocks from malloc, and the caller frees every
 * id and then the array. Null on a failure. listName repeats the name in key.
 */
char** DAL_listProfiledNodeItems(sqlite3* connection, const KeyPath* key, const char* listName,
                                 int32_t profileNo);

#ifdef __cplusplus
}
#endif

#endif
