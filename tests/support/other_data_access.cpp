// Loaded in front of the stand-in for the data access library: keeps the contract too, but differs
// in what the contract leaves open. A getter fails when nothing is stored, a string getter leaves
// its word alone and an allocating one an invalid pointer behind, presence is negative, a listing
// is in descending order, the delete of an absent item fails, that of a list's item takes the node
// along, and a failure is a negative number.
#include <dlfcn.h>

#include <algorithm>
#include <climits>

#include "contracts/data_access.h"

#define NEXT(function) reinterpret_cast<decltype(&(function))>(dlsym(RTLD_NEXT, #function))
#define OTHER(isSuccess, function, parameters, arguments)               \
    int32_t function parameters {                                       \
        const bool succeeds = (isSuccess);                              \
        return NEXT(function) arguments == 0 && succeeds ? 0 : INT_MIN; \
    }
#define COMMA ,
#define DB_KEY sqlite3 *db, const KeyPath *key
// The functions of one scope; profiled ones have a last parameter.
#define SCOPE(Scope, last, number)                                                               \
    int32_t DAL_is##Scope##Present(DB_KEY last) {                                                \
        return -NEXT(DAL_is##Scope##Present)(db, key number);                                    \
    }                                                                                            \
    OTHER(DAL_is##Scope##Present(db, key number), DAL_get##Scope##TypeBOOL,                      \
          (DB_KEY, BOOL * value, BOOL initial last), (db, key, value, initial number))           \
    OTHER(DAL_is##Scope##Present(db, key number), DAL_get##Scope##TypeInt,                       \
          (DB_KEY, int32_t * value, int32_t initial last), (db, key, value, initial number))     \
    OTHER(DAL_is##Scope##Present(db, key number), DAL_get##Scope##TypeString,                    \
          (DB_KEY, char* text, uint32_t*, size_t size, const char* initial last),                \
          (db, key, text, &ofTheStandIn, size, initial number))                                  \
    int32_t DAL_get##Scope##TypeStringMalloc(DB_KEY, char** text, uint32_t* last) {              \
        *text = reinterpret_cast<char*>(1);                                                      \
        return DAL_is##Scope##Present(db, key number)                                            \
                   ? NEXT(DAL_get##Scope##TypeStringMalloc)(db, key, text, &ofTheStandIn number) \
                   : INT_MIN;                                                                    \
    }

static uint32_t ofTheStandIn = 0;

extern "C" {
SCOPE(, , )
SCOPE(Profiled, COMMA int32_t profile, COMMA profile)

OTHER(DAL_isPresent(db, key), DAL_deleteItem, (DB_KEY), (db, key))
OTHER(true, DAL_setTypeString, (DB_KEY, const char* text, uint32_t extra), (db, key, text, extra))

int32_t DAL_deleteProfiledItem(DB_KEY, int32_t profile) {
    const bool isThere = DAL_isProfiledPresent(db, key, profile);
    const KeyPath node{{key->slots[0]}};
    const int32_t result = key->slots[1].name != nullptr
                               ? NEXT(DAL_deleteProfiledNodeItem)(db, &node, 0)
                               : NEXT(DAL_deleteProfiledItem)(db, key, profile);
    return result == 0 && isThere ? 0 : INT_MIN;
}

char** DAL_listProfiledNodeItems(DB_KEY, const char* list, int32_t profile) {
    char** const ids = NEXT(DAL_listProfiledNodeItems)(db, key, list, profile);
    char** end = ids;
    while (end != nullptr && *end != nullptr) {
        ++end;
    }
    std::reverse(ids, end);
    return ids;
}
}
