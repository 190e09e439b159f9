#include "console-manager/settings.h"
#include "settings/item_access.h"
#include "settings/key_path.h"
#include "settings/settings_database.h"

#define NUMBER_FAMILY(name, key, Scope, Type, Access, initial)                               \
    int32_t DAL_CML_get##name(Type* value) {                                                 \
        return Scope::get##Access(openPersistentDatabase(), plainItem(key), value, initial); \
    }                                                                                        \
    int32_t DAL_CML_set##name(Type value) {                                                  \
        return Scope::set##Access(openPersistentDatabase(), plainItem(key), value);          \
    }                                                                                        \
    Type DAL_CML_get##name##Default(void) {                                                  \
        return initial;                                                                      \
    }                                                                                        \
    REST_OF_FAMILY(name, key, Scope)

#define REST_OF_FAMILY(name, key, Scope)                                      \
    int32_t DAL_CML_delete##name(void) {                                      \
        return Scope::deleteItem(openPersistentDatabase(), plainItem(key));   \
    }                                                                         \
    int32_t DAL_CML_deleteAll##name(void) {                                   \
        return deleteInAllProfiles(openPersistentDatabase(), plainItem(key)); \
    }                                                                         \
    int32_t DAL_CML_is##name##Present(void) {                                 \
        return Scope::isPresent(openPersistentDatabase(), plainItem(key));    \
    }

#define BOOL_SETTING(name, key, Scope, initial) NUMBER_FAMILY(name, key, Scope, BOOL, BOOL, initial)
#define INT_SETTING(name, key, Scope, initial) \
    NUMBER_FAMILY(name, key, Scope, int32_t, Int, initial)
#define STRING_SETTING(name, key, Scope, initial)                                                  \
    int32_t DAL_CML_get##name(char* buffer, uint32_t* valueInfo, size_t size) {                    \
        return Scope::getString(openPersistentDatabase(), plainItem(key), buffer, valueInfo, size, \
                                initial);                                                          \
    }                                                                                              \
    int32_t DAL_CML_get##name##Malloc(char** value, uint32_t* valueInfo) {                         \
        return Scope::getStringMalloc(openPersistentDatabase(), plainItem(key), value, valueInfo); \
    }                                                                                              \
    int32_t DAL_CML_set##name(const char* value) {                                                 \
        return Scope::setString(openPersistentDatabase(), plainItem(key), value);                  \
    }                                                                                              \
    const char* DAL_CML_get##name##Default(void) {                                                 \
        return initial;                                                                            \
    }                                                                                              \
    REST_OF_FAMILY(name, key, Scope)

#include "settings/catalogue.def"
