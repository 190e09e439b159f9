#include "settings/item.h"

#include <cstring>
#include <limits>

#include "contracts/data_access.h"
#include "settings/settings_database.h"

namespace {

constexpr int32_t kMinimum = std::numeric_limits<int32_t>::min();
constexpr int32_t kMaximum = std::numeric_limits<int32_t>::max();
constexpr int32_t kProfile = 0;  // that the settings address
constexpr uint32_t kExtra = 0;
constexpr size_t kWordSize = 65;

constexpr char kListNames[][30] = {
    "",
#define INT_LIST(item, node, list, ...) list,
#define STRING_LIST INT_LIST
#include "settings/catalogue.def"
};

const char* listName(const Item& item) {
    return kListNames[static_cast<size_t>(item.list)];
}

sqlite3* connectionOf(const Item& item) {
    return item.database == Database::Persistent ? openPersistentDatabase()
                                                 : openVolatileDatabase();
}

bool isProfiled(const Item& item) {
    return item.scope == Scope::Profiled;
}

KeyPath itemPath(const Item& item, const char* nodeId) {
    KeyPath path{};
    KeyPathSlot* slot = path.slots;
    if (item.list != List::None) {
        *slot++ = {listName(item), nodeId};
    }
    *slot = {"dal_key", item.key};
    return path;
}

// All nodes of the list if nodeId is null.
KeyPath nodePath(const Item& item, const char* nodeId) {
    return {{{listName(item), nodeId}}};
}

int32_t numberOf(const char* text, Words words, int32_t otherwise) {
    for (const Word& word : words) {
        if (std::strcmp(text, word.text) == 0) {
            return word.number;
        }
    }
    return otherwise;
}

const char* textOf(int32_t number, Words words) {
    for (const Word& word : words) {
        if (word.number == number) {
            return word.text;
        }
    }
    return "";
}

}  // namespace

int32_t getBOOL(const Item& item, const char* nodeId, BOOL* value, BOOL initial) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return isProfiled(item) ? DAL_getProfiledTypeBOOL(db, &path, value, initial, kProfile)
                            : DAL_getTypeBOOL(db, &path, value, initial);
}

int32_t getInt(const Item& item, const char* nodeId, int32_t* value, int32_t initial) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return isProfiled(item) ? DAL_getProfiledTypeInt(db, &path, value, initial, kProfile)
                            : DAL_getTypeInt(db, &path, value, initial);
}

int32_t getString(const Item& item, const char* nodeId, char* buffer, uint32_t* valueInfo,
                  size_t size, const char* initial) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return isProfiled(item)
               ? DAL_getProfiledTypeString(db, &path, buffer, valueInfo, size, initial, kProfile)
               : DAL_getTypeString(db, &path, buffer, valueInfo, size, initial);
}

int32_t getStringMalloc(const Item& item, const char* nodeId, char** value, uint32_t* valueInfo) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return isProfiled(item) ? DAL_getProfiledTypeStringMalloc(db, &path, value, valueInfo, kProfile)
                            : DAL_getTypeStringMalloc(db, &path, value, valueInfo);
}

int32_t setBOOL(const Item& item, const char* nodeId, BOOL value) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return isProfiled(item) ? DAL_setProfiledTypeBOOLLimits(db, &path, value, kExtra, kMinimum,
                                                            kMaximum, kProfile)
                            : DAL_setTypeBOOLLimits(db, &path, value, kExtra, kMinimum, kMaximum);
}

int32_t setInt(const Item& item, const char* nodeId, int32_t value) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return isProfiled(item) ? DAL_setProfiledTypeIntLimits(db, &path, value, kExtra, kMinimum,
                                                           kMaximum, kProfile)
                            : DAL_setTypeIntLimits(db, &path, value, kExtra, kMinimum, kMaximum);
}

int32_t setString(const Item& item, const char* nodeId, const char* value) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return isProfiled(item) ? DAL_setProfiledTypeString(db, &path, value, kExtra, kProfile)
                            : DAL_setTypeString(db, &path, value, kExtra);
}

int32_t deleteItem(const Item& item, const char* nodeId) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return isProfiled(item) ? DAL_deleteProfiledItem(db, &path, kProfile)
                            : DAL_deleteItem(db, &path);
}

// In both scopes: this call also deletes an unprofiled item, whose row has a profile number of the
// data access library's choice.
int32_t deleteInAllProfiles(const Item& item, const char* nodeId) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return DAL_deleteProfiledItem(db, &path, DAL_ALL_PROFILES);
}

int32_t isPresent(const Item& item, const char* nodeId) {
    sqlite3* const db = connectionOf(item);
    const KeyPath path = itemPath(item, nodeId);
    return isProfiled(item) ? DAL_isProfiledPresent(db, &path, kProfile) : DAL_isPresent(db, &path);
}

int32_t deleteNode(const Item& item, const char* nodeId) {
    const KeyPath path = nodePath(item, nodeId);
    return DAL_deleteProfiledNodeItem(connectionOf(item), &path, kProfile);
}

int32_t deleteAllNodes(const Item& item) {
    const KeyPath path = nodePath(item, nullptr);
    return DAL_deleteProfiledNodeItem(connectionOf(item), &path, DAL_ALL_PROFILES);
}

int32_t isNodePresent(const Item& item, const char* nodeId) {
    const KeyPath path = nodePath(item, nodeId);
    return DAL_isProfiledNodePresent(connectionOf(item), &path, kProfile);
}

char** listNodes(const Item& item) {
    const KeyPath path = nodePath(item, nullptr);
    return DAL_listProfiledNodeItems(connectionOf(item), &path, listName(item), kProfile);
}

// The result doesn't matter for the word: a read that fails has delivered the default.
int32_t getNumber(const Item& item, Words words, int32_t* value, int32_t initial) {
    char text[kWordSize];
    uint32_t length = 0;
    const int32_t result =
        getString(item, nullptr, text, &length, sizeof text, textOf(initial, words));
    if (value != nullptr) {
        *value = numberOf(text, words, initial);
    }
    return result;
}

int32_t setNumber(const Item& item, Words words, int32_t value) {
    return setString(item, nullptr, textOf(value, words));
}
