#include "console-manager/settings.h"
#include "settings/item_access.h"
#include "settings/key_path.h"
#include "settings/settings_database.h"

namespace {

// None of them is inlined, for the reason that item_access.h gives.
[[gnu::noinline]] int32_t deleteNode(const char* nodeId, const char* list) {
    const KeyPath path = singleNode(list, nodeId);
    return DAL_deleteProfiledNodeItem(openPersistentDatabase(), &path, kProfile);
}

[[gnu::noinline]] int32_t deleteAllNodes(const char* list) {
    const KeyPath path = wholeList(list);
    return DAL_deleteProfiledNodeItem(openPersistentDatabase(), &path, DAL_ALL_PROFILES);
}

[[gnu::noinline]] int32_t isNodePresent(const char* nodeId, const char* list) {
    const KeyPath path = singleNode(list, nodeId);
    return DAL_isProfiledNodePresent(openPersistentDatabase(), &path, kProfile);
}

[[gnu::noinline]] char** listNodes(const char* list) {
    const KeyPath path = wholeList(list);
    return DAL_listProfiledNodeItems(openPersistentDatabase(), &path, list, kProfile);
}

}  // namespace

#define REST_OF_ITEM(item, list, key)                               \
    int32_t DAL_CML_delete##item(const char* nodeId) {              \
        return onListItem<Profiled::deleteItem>(nodeId, list, key); \
    }                                                               \
    int32_t DAL_CML_deleteAll##item(const char* nodeId) {           \
        return onListItem<deleteInAllProfiles>(nodeId, list, key);  \
    }                                                               \
    int32_t DAL_CML_is##item##Present(const char* nodeId) {         \
        return onListItem<Profiled::isPresent>(nodeId, list, key);  \
    }

#define NODES(node, list)                                   \
    int32_t DAL_CML_delete##node(const char* nodeId) {      \
        return deleteNode(nodeId, list);                    \
    }                                                       \
    int32_t DAL_CML_deleteAll##node##s(void) {              \
        return deleteAllNodes(list);                        \
    }                                                       \
    int32_t DAL_CML_is##node##Present(const char* nodeId) { \
        return isNodePresent(nodeId, list);                 \
    }                                                       \
    char** DAL_CML_list##node##s(void) {                    \
        return listNodes(list);                             \
    }

#define INT_LIST(item, node, list, key, initial)                                \
    int32_t DAL_CML_get##item(const char* nodeId, int32_t* value) {             \
        return onListItem<Profiled::getInt>(nodeId, list, key, value, initial); \
    }                                                                           \
    int32_t DAL_CML_set##item(const char* nodeId, int32_t value) {              \
        return onListItem<Profiled::setInt>(nodeId, list, key, value);          \
    }                                                                           \
    int32_t DAL_CML_get##item##Default(void) {                                  \
        return initial;                                                         \
    }                                                                           \
    REST_OF_ITEM(item, list, key)                                               \
    NODES(node, list)

#define STRING_LIST(item, node, list, key, initial)                                            \
    int32_t DAL_CML_get##item(const char* nodeId, char* buffer, uint32_t* valueInfo,           \
                              size_t size) {                                                   \
        return onListItem<Profiled::getString>(nodeId, list, key, buffer, valueInfo, size,     \
                                               initial);                                       \
    }                                                                                          \
    int32_t DAL_CML_get##item##Malloc(const char* nodeId, char** value, uint32_t* valueInfo) { \
        return onListItem<Profiled::getStringMalloc>(nodeId, list, key, value, valueInfo);     \
    }                                                                                          \
    int32_t DAL_CML_set##item(const char* nodeId, const char* value) {                         \
        return onListItem<Profiled::setString>(nodeId, list, key, value);                      \
    }                                                                                          \
    const char* DAL_CML_get##item##Default(void) {                                             \
        return initial;                                                                        \
    }                                                                                          \
    REST_OF_ITEM(item, list, key)                                                              \
    NODES(node, list)

#include "settings/catalogue.def"
