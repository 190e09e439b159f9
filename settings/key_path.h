// The key paths of the settings. They point to the caller's strings.
#pragma once

#include "contracts/data_access.h"

inline KeyPath plainItem(const char* key) {
    return {{{"dal_key", key}}};
}

inline KeyPath listItem(const char* list, const char* nodeId, const char* key) {
    return {{{list, nodeId}, {"dal_key", key}}};
}

inline KeyPath singleNode(const char* list, const char* nodeId) {
    return {{{list, nodeId}}};
}

inline KeyPath wholeList(const char* list) {
    return {{{list, nullptr}}};
}
