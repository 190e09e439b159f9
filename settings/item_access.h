// The data access calls of a setting, in its scope. path says which item; the arguments are those
// that the setting's own functions take, and the default where there is one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "contracts/data_access.h"
#include "settings/key_path.h"
#include "settings/settings_database.h"

constexpr int32_t kMinimum = std::numeric_limits<int32_t>::min();
constexpr int32_t kMaximum = std::numeric_limits<int32_t>::max();
constexpr int32_t kProfile = 0;  // the one that the settings address
constexpr uint32_t kExtra = 0;

struct Profiled {
    static int32_t getBOOL(sqlite3* db, const KeyPath& path, BOOL* value, BOOL initial) {
        return DAL_getProfiledTypeBOOL(db, &path, value, initial, kProfile);
    }
    static int32_t getInt(sqlite3* db, const KeyPath& path, int32_t* value, int32_t initial) {
        return DAL_getProfiledTypeInt(db, &path, value, initial, kProfile);
    }
    static int32_t getString(sqlite3* db, const KeyPath& path, char* buffer, uint32_t* valueInfo,
                             size_t size, const char* initial) {
        return DAL_getProfiledTypeString(db, &path, buffer, valueInfo, size, initial, kProfile);
    }
    static int32_t getStringMalloc(sqlite3* db, const KeyPath& path, char** value,
                                   uint32_t* valueInfo) {
        return DAL_getProfiledTypeStringMalloc(db, &path, value, valueInfo, kProfile);
    }
    static int32_t setBOOL(sqlite3* db, const KeyPath& path, BOOL value) {
        return DAL_setProfiledTypeBOOLLimits(db, &path, value, kExtra, kMinimum, kMaximum,
                                             kProfile);
    }
    static int32_t setInt(sqlite3* db, const KeyPath& path, int32_t value) {
        return DAL_setProfiledTypeIntLimits(db, &path, value, kExtra, kMinimum, kMaximum, kProfile);
    }
    static int32_t setString(sqlite3* db, const KeyPath& path, const char* value) {
        return DAL_setProfiledTypeString(db, &path, value, kExtra, kProfile);
    }
    static int32_t deleteItem(sqlite3* db, const KeyPath& path) {
        return DAL_deleteProfiledItem(db, &path, kProfile);
    }
    static int32_t isPresent(sqlite3* db, const KeyPath& path) {
        return DAL_isProfiledPresent(db, &path, kProfile);
    }
};

struct Unprofiled {
    static int32_t getBOOL(sqlite3* db, const KeyPath& path, BOOL* value, BOOL initial) {
        return DAL_getTypeBOOL(db, &path, value, initial);
    }
    static int32_t getInt(sqlite3* db, const KeyPath& path, int32_t* value, int32_t initial) {
        return DAL_getTypeInt(db, &path, value, initial);
    }
    static int32_t getString(sqlite3* db, const KeyPath& path, char* buffer, uint32_t* valueInfo,
                             size_t size, const char* initial) {
        return DAL_getTypeString(db, &path, buffer, valueInfo, size, initial);
    }
    static int32_t getStringMalloc(sqlite3* db, const KeyPath& path, char** value,
                                   uint32_t* valueInfo) {
        return DAL_getTypeStringMalloc(db, &path, value, valueInfo);
    }
    static int32_t setBOOL(sqlite3* db, const KeyPath& path, BOOL value) {
        return DAL_setTypeBOOLLimits(db, &path, value, kExtra, kMinimum, kMaximum);
    }
    static int32_t setInt(sqlite3* db, const KeyPath& path, int32_t value) {
        return DAL_setTypeIntLimits(db, &path, value, kExtra, kMinimum, kMaximum);
    }
    static int32_t setString(sqlite3* db, const KeyPath& path, const char* value) {
        return DAL_setTypeString(db, &path, value, kExtra);
    }
    static int32_t deleteItem(sqlite3* db, const KeyPath& path) {
        return DAL_deleteItem(db, &path);
    }
    static int32_t isPresent(sqlite3* db, const KeyPath& path) { return DAL_isPresent(db, &path); }
};

// In all scopes: an unprofiled item has its row under a profile number of the data access library's
// choice, which this call reaches.
inline int32_t deleteInAllProfiles(sqlite3* db, const KeyPath& path) {
    return DAL_deleteProfiledItem(db, &path, DAL_ALL_PROFILES);
}

// Opens the database and makes one of the calls above, or one like them, on an item. Never inlined:
// copies of it in the accessors, which differ in no more than the arguments, would be most of the
// library.
template <auto open, auto call, typename... Arguments>
[[gnu::noinline]] int32_t onPlainItem(const char* key, Arguments... arguments) {
    return call(open(), plainItem(key), arguments...);
}

template <auto call, typename... Arguments>
[[gnu::noinline]] int32_t onListItem(const char* nodeId, const char* list, const char* key,
                                     Arguments... arguments) {
    return call(openPersistentDatabase(), listItem(list, nodeId, key), arguments...);
}
