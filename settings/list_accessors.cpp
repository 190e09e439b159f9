#include "console-manager/settings.h"
#include "settings/item_access.h"
#include "settings/key_path.h"
#include "settings/settings_database.h"

#define ITEM(list, key) openPersistentDatabase(), listItem(list, nodeId, key)

#define REST_OF_ITEM(item, list, key)                       \
    int32_t DAL_CML_delete##item(const char* nodeId) {      \
        return Profiled::deleteItem(ITEM(list, key));       \
    }                                                       \
    int32_t DAL_CML_deleteAll##item(const char* nodeId) {   \
        return deleteInAllProfiles(ITEM(list, key));        \
    }                                                       \
    int32_t DAL_CML_is##item##Present(const char* nodeId) { \
        return Profiled::isPresent(ITEM(list, key));        \
    }

#define NODES(node, list)                                                                     \
    int32_t DAL_CML_delete##node(const char* nodeId) {                                        \
        const KeyPath path = singleNode(list, nodeId);                                        \
        return DAL_deleteProfiledNodeItem(openPersistentDatabase(), &path, kProfile);         \
    }                                                                                         \
    int32_t DAL_CML_deleteAll##node##s(void) {                                                \
        const KeyPath path = wholeList(list);                                                 \
        return DAL_deleteProfiledNodeItem(openPersistentDatabase(), &path, DAL_ALL_PROFILES); \
    }                                                                                         \
    int32_t DAL_CML_is##node##Present(const char* nodeId) {                                   \
        const KeyPath path = singleNode(list, nodeId);                                        \
        return DAL_isProfiledNodePresent(openPersistentDatabase(), &path, kProfile);          \
    }                                                                                         \
    char** DAL_CML_list##node##s(void) {                                                      \
        const KeyPath path = wholeList(list);                                                 \
        return DAL_listProfiledNodeItems(openPersistentDatabase(), &path, list, kProfile);    \
    }

#define INT_LIST(item, node, list, key, initial)                    \
    int32_t DAL_CML_get##item(const char* nodeId, int32_t* value) { \
        return Profiled::getInt(ITEM(list, key), value, initial);   \
    }                                                               \
    int32_t DAL_CML_set##item(const char* nodeId, int32_t value) {  \
        return Profiled::setInt(ITEM(list, key), value);            \
    }                                                               \
    int32_t DAL_CML_get##item##Default(void) {                      \
        return initial;                                             \
    }                                                               \
    REST_OF_ITEM(item, list, key)                                   \
    NODES(node, list)

#define STRING_LIST(item, node, list, key, initial)                                            \
    int32_t DAL_CML_get##item(const char* nodeId, char* buffer, uint32_t* valueInfo,           \
                              size_t size) {                                                   \
        return Profiled::getString(ITEM(list, key), buffer, valueInfo, size, initial);         \
    }                                                                                          \
    int32_t DAL_CML_get##item##Malloc(const char* nodeId, char** value, uint32_t* valueInfo) { \
        return Profiled::getStringMalloc(ITEM(list, key), value, valueInfo);                   \
    }                                                                                          \
    int32_t DAL_CML_set##item(const char* nodeId, const char* value) {                         \
        return Profiled::setString(ITEM(list, key), value);                                    \
    }                                                                                          \
    const char* DAL_CML_get##item##Default(void) {                                             \
        return initial;                                                                        \
    }                                                                                          \
    REST_OF_ITEM(item, list, key)                                                              \
    NODES(node, list)

#include "settings/catalogue.def"
