#include "contracts/data_access.h"

#include "stand-ins/data-access/items.h"
#include "stand-ins/data-access/set_up.h"
#include "stand-ins/data-access/statements.h"

namespace {

// Keeps the result for takeCauseOfNone(), in case the caller closes the connection because of it.
template <typename Work>
int32_t settingUp(sqlite3* handle, Work work) {
    return useConnection(
        handle, [&](Connection& connection) { return connection.failure = work(connection); });
}

}  // namespace

#pragma GCC visibility push(default)

int32_t DAL_SetDBConfiguration(sqlite3* connection) {
    return settingUp(connection, configure);
}

int32_t DAL_CreateFlatKeyTable(sqlite3* connection) {
    return settingUp(connection, createFlatKeyTable);
}

int32_t DAL_DeleteFlatKeyTable(sqlite3* connection) {
    return useConnection(connection, deleteFlatKeyTable);
}

int32_t DAL_ExecuteQuery(sqlite3* connection, const char* sql) {
    return settingUp(connection, [&](Connection& used) {
        return sql == nullptr ? SQLITE_MISUSE : executeQuery(used, sql);
    });
}

int32_t DAL_getTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value, BOOL defaultValue) {
    return readNumber(connection, key, Profile::unprofiled(), value, defaultValue);
}

int32_t DAL_getProfiledTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value,
                                BOOL defaultValue, int32_t profileNo) {
    return readNumber(connection, key, Profile::number(profileNo), value, defaultValue);
}

int32_t DAL_getTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                       int32_t defaultValue) {
    return readNumber(connection, key, Profile::unprofiled(), value, defaultValue);
}

int32_t DAL_getProfiledTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                               int32_t defaultValue, int32_t profileNo) {
    return readNumber(connection, key, Profile::number(profileNo), value, defaultValue);
}

int32_t DAL_getTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                          uint32_t* valueInfo, size_t size, const char* defaultValue) {
    return readString(connection, key, Profile::unprofiled(), buffer, valueInfo, size,
                      defaultValue);
}

int32_t DAL_getProfiledTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                                  uint32_t* valueInfo, size_t size, const char* defaultValue,
                                  int32_t profileNo) {
    return readString(connection, key, Profile::number(profileNo), buffer, valueInfo, size,
                      defaultValue);
}

int32_t DAL_getTypeStringMalloc(sqlite3* connection, const KeyPath* key, char** value,
                                uint32_t* valueInfo) {
    return readStringMalloc(connection, key, Profile::unprofiled(), value, valueInfo);
}

int32_t DAL_getProfiledTypeStringMalloc(sqlite3* connection, const KeyPath* key, char** value,
                                        uint32_t* valueInfo, int32_t profileNo) {
    return readStringMalloc(connection, key, Profile::number(profileNo), value, valueInfo);
}

int32_t DAL_setTypeBOOLLimits(sqlite3* connection, const KeyPath* key, BOOL value,
                              uint32_t /*extra*/, int32_t minimum, int32_t maximum) {
    return writeNumber(connection, key, Profile::unprofiled(), value, minimum, maximum);
}

int32_t DAL_setProfiledTypeBOOLLimits(sqlite3* connection, const KeyPath* key, BOOL value,
                                      uint32_t /*extra*/, int32_t minimum, int32_t maximum,
                                      int32_t profileNo) {
    return writeNumber(connection, key, Profile::number(profileNo), value, minimum, maximum);
}

int32_t DAL_setTypeIntLimits(sqlite3* connection, const KeyPath* key, int32_t value,
                             uint32_t /*extra*/, int32_t minimum, int32_t maximum) {
    return writeNumber(connection, key, Profile::unprofiled(), value, minimum, maximum);
}

int32_t DAL_setProfiledTypeIntLimits(sqlite3* connection, const KeyPath* key, int32_t value,
                                     uint32_t /*extra*/, int32_t minimum, int32_t maximum,
                                     int32_t profileNo) {
    return writeNumber(connection, key, Profile::number(profileNo), value, minimum, maximum);
}

int32_t DAL_setTypeString(sqlite3* connection, const KeyPath* key, const char* value,
                          uint32_t /*extra*/) {
    return writeString(connection, key, Profile::unprofiled(), value);
}

int32_t DAL_setProfiledTypeString(sqlite3* connection, const KeyPath* key, const char* value,
                                  uint32_t /*extra*/, int32_t profileNo) {
    return writeString(connection, key, Profile::number(profileNo), value);
}

int32_t DAL_deleteItem(sqlite3* connection, const KeyPath* key) {
    return deleteItem(connection, key, Profile::unprofiled());
}

int32_t DAL_deleteProfiledItem(sqlite3* connection, const KeyPath* key, int32_t profileNo) {
    return deleteItem(connection, key, Profile::number(profileNo));
}

int32_t DAL_isPresent(sqlite3* connection, const KeyPath* key) {
    return isItemPresent(connection, key, Profile::unprofiled());
}

int32_t DAL_isProfiledPresent(sqlite3* connection, const KeyPath* key, int32_t profileNo) {
    return isItemPresent(connection, key, Profile::number(profileNo));
}

int32_t DAL_deleteProfiledNodeItem(sqlite3* connection, const KeyPath* key, int32_t profileNo) {
    return deleteNodes(connection, key, Profile::number(profileNo));
}

int32_t DAL_isProfiledNodePresent(sqlite3* connection, const KeyPath* key, int32_t profileNo) {
    return isNodePresent(connection, key, Profile::number(profileNo));
}

char** DAL_listProfiledNodeItems(sqlite3* connection, const KeyPath* key, const char* listName,
                                 int32_t profileNo) {
    return listNodes(connection, key, listName, Profile::number(profileNo));
}
