// The functions of the settings, made from the rows of the catalogue.
#include "console-manager/settings.h"
#include "settings/item.h"

#define ITEM(name, database, scope, list, key) \
    static constexpr Item k##name{Database::database, Scope::scope, List::list, key};

// parameters and nodeId are (void) and nullptr, or (const char* nodeId) and nodeId for an item of a
// list.
#define REST_OF_FAMILY(name, parameters, nodeId)     \
    int32_t DAL_CML_delete##name parameters {        \
        return deleteItem(k##name, nodeId);          \
    }                                                \
    int32_t DAL_CML_deleteAll##name parameters {     \
        return deleteInAllProfiles(k##name, nodeId); \
    }                                                \
    int32_t DAL_CML_is##name##Present parameters {   \
        return isPresent(k##name, nodeId);           \
    }

#define NUMBER_SETTING(name, key, scope, Type, Form, initial) \
    ITEM(name, Persistent, scope, None, key)                  \
    int32_t DAL_CML_get##name(Type* value) {                  \
        return get##Form(k##name, nullptr, value, initial);   \
    }                                                         \
    int32_t DAL_CML_set##name(Type value) {                   \
        return set##Form(k##name, nullptr, value);            \
    }                                                         \
    Type DAL_CML_get##name##Default(void) {                   \
        return initial;                                       \
    }                                                         \
    REST_OF_FAMILY(name, (void), nullptr)

#define BOOL_SETTING(name, key, scope, initial, meaning) \
    NUMBER_SETTING(name, key, scope, BOOL, BOOL, initial)

#define INT_SETTING(name, key, scope, initial, meaning) \
    NUMBER_SETTING(name, key, scope, int32_t, Int, initial)

#define STRING_SETTING(name, key, scope, initial, meaning)                      \
    ITEM(name, Persistent, scope, None, key)                                    \
    int32_t DAL_CML_get##name(char* buffer, uint32_t* valueInfo, size_t size) { \
        return getString(k##name, nullptr, buffer, valueInfo, size, initial);   \
    }                                                                           \
    int32_t DAL_CML_get##name##Malloc(char** value, uint32_t* valueInfo) {      \
        return getStringMalloc(k##name, nullptr, value, valueInfo);             \
    }                                                                           \
    int32_t DAL_CML_set##name(const char* value) {                              \
        return setString(k##name, nullptr, value);                              \
    }                                                                           \
    const char* DAL_CML_get##name##Default(void) {                              \
        return initial;                                                         \
    }                                                                           \
    REST_OF_FAMILY(name, (void), nullptr)

#define ENUMERATED_SETTING(name, key, scope, database, initial, meaning, ...) \
    ITEM(name, database, scope, None, key)                                    \
    static constexpr Word k##name##Words[] = {__VA_ARGS__};                   \
    int32_t DAL_CML_get##name(int32_t* value) {                               \
        return getNumber(k##name, k##name##Words, value, initial);            \
    }                                                                         \
    int32_t DAL_CML_set##name(int32_t value) {                                \
        return setNumber(k##name, k##name##Words, value);                     \
    }                                                                         \
    int32_t DAL_CML_get##name##Default(void) {                                \
        return initial;                                                       \
    }                                                                         \
    REST_OF_FAMILY(name, (void), nullptr)

#define NODES(node, item)                                   \
    int32_t DAL_CML_delete##node(const char* nodeId) {      \
        return deleteNode(k##item, nodeId);                 \
    }                                                       \
    int32_t DAL_CML_deleteAll##node##s(void) {              \
        return deleteAllNodes(k##item);                     \
    }                                                       \
    int32_t DAL_CML_is##node##Present(const char* nodeId) { \
        return isNodePresent(k##item, nodeId);              \
    }                                                       \
    char** DAL_CML_list##node##s(void) {                    \
        return listNodes(k##item);                          \
    }

#define INT_LIST(item, node, list, key, initial, meaning)           \
    ITEM(item, Persistent, Profiled, item, key)                     \
    int32_t DAL_CML_get##item(const char* nodeId, int32_t* value) { \
        return getInt(k##item, nodeId, value, initial);             \
    }                                                               \
    int32_t DAL_CML_set##item(const char* nodeId, int32_t value) {  \
        return setInt(k##item, nodeId, value);                      \
    }                                                               \
    int32_t DAL_CML_get##item##Default(void) {                      \
        return initial;                                             \
    }                                                               \
    REST_OF_FAMILY(item, (const char* nodeId), nodeId)              \
    NODES(node, item)

#define STRING_LIST(item, node, list, key, initial, meaning)                                   \
    ITEM(item, Persistent, Profiled, item, key)                                                \
    int32_t DAL_CML_get##item(const char* nodeId, char* buffer, uint32_t* valueInfo,           \
                              size_t size) {                                                   \
        return getString(k##item, nodeId, buffer, valueInfo, size, initial);                   \
    }                                                                                          \
    int32_t DAL_CML_get##item##Malloc(const char* nodeId, char** value, uint32_t* valueInfo) { \
        return getStringMalloc(k##item, nodeId, value, valueInfo);                             \
    }                                                                                          \
    int32_t DAL_CML_set##item(const char* nodeId, const char* value) {                         \
        return setString(k##item, nodeId, value);                                              \
    }                                                                                          \
    const char* DAL_CML_get##item##Default(void) {                                             \
        return initial;                                                                        \
    }                                                                                          \
    REST_OF_FAMILY(item, (const char* nodeId), nodeId)                                         \
    NODES(node, item)

#include "settings/catalogue.def"
