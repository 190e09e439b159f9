#include "console-manager/settings.h"
#include "settings/item_access.h"

#define ON_ITEM(call) onPlainItem<openPersistentDatabase, call>

#define NUMBER_FAMILY(name, key, Scope, Type, Access, initial)   \
    int32_t DAL_CML_get##name(Type* value) {                     \
        return ON_ITEM(Scope::get##Access)(key, value, initial); \
    }                                                            \
    int32_t DAL_CML_set##name(Type value) {                      \
        return ON_ITEM(Scope::set##Access)(key, value);          \
    }                                                            \
    Type DAL_CML_get##name##Default(void) {                      \
        return initial;                                          \
    }                                                            \
    REST_OF_FAMILY(name, key, Scope)

#define REST_OF_FAMILY(name, key, Scope)          \
    int32_t DAL_CML_delete##name(void) {          \
        return ON_ITEM(Scope::deleteItem)(key);   \
    }                                             \
    int32_t DAL_CML_deleteAll##name(void) {       \
        return ON_ITEM(deleteInAllProfiles)(key); \
    }                                             \
    int32_t DAL_CML_is##name##Present(void) {     \
        return ON_ITEM(Scope::isPresent)(key);    \
    }

#define BOOL_SETTING(name, key, Scope, initial) NUMBER_FAMILY(name, key, Scope, BOOL, BOOL, initial)
#define INT_SETTING(name, key, Scope, initial) \
    NUMBER_FAMILY(name, key, Scope, int32_t, Int, initial)
#define STRING_SETTING(name, key, Scope, initial)                                \
    int32_t DAL_CML_get##name(char* buffer, uint32_t* valueInfo, size_t size) {  \
        return ON_ITEM(Scope::getString)(key, buffer, valueInfo, size, initial); \
    }                                                                            \
    int32_t DAL_CML_get##name##Malloc(char** value, uint32_t* valueInfo) {       \
        return ON_ITEM(Scope::getStringMalloc)(key, value, valueInfo);           \
    }                                                                            \
    int32_t DAL_CML_set##name(const char* value) {                               \
        return ON_ITEM(Scope::setString)(key, value);                            \
    }                                                                            \
    const char* DAL_CML_get##name##Default(void) {                               \
        return initial;                                                          \
    }                                                                            \
    REST_OF_FAMILY(name, key, Scope)

#include "settings/catalogue.def"
