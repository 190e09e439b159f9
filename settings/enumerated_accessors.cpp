#include <cstring>
#include <span>

#include "console-manager/settings.h"
#include "settings/item_access.h"

namespace {

struct Word {
    int32_t number;
    const char* text;
};
using Words = std::span<const Word>;  // all of a setting

constexpr size_t kWordSize = 65;

int32_t numberOf(const char* text, Words words, int32_t otherwise) {
    for (const Word& word : words) {
        if (std::strcmp(text, word.text) == 0) {
            return word.number;
        }
    }
    return otherwise;
}

const char* wordOf(int32_t number, Words words) {
    for (const Word& word : words) {
        if (number == word.number) {
            return word.text;
        }
    }
    return "";
}

// The word is looked at whatever the read returned: a failed one has delivered the default.
template <typename Scope>
int32_t getNumber(sqlite3* db, const KeyPath& path, int32_t* value, Words words, int32_t initial) {
    char word[kWordSize];
    uint32_t length = 0;
    const int32_t result =
        Scope::getString(db, path, word, &length, sizeof word, wordOf(initial, words));
    if (value != nullptr) {
        *value = numberOf(word, words, initial);
    }
    return result;
}

template <typename Scope>
int32_t setNumber(sqlite3* db, const KeyPath& path, int32_t value, Words words) {
    return Scope::setString(db, path, wordOf(value, words));
}

}  // namespace

#define ON_ITEM(Store, call) onPlainItem<open##Store##Database, call>

#define ENUMERATED_SETTING(name, key, Scope, Store, initial, ...)                            \
    static constexpr Word k##name##Words[] = {__VA_ARGS__};                                  \
    int32_t DAL_CML_get##name(int32_t* value) {                                              \
        return ON_ITEM(Store, getNumber<Scope>)(key, value, Words(k##name##Words), initial); \
    }                                                                                        \
    int32_t DAL_CML_set##name(int32_t value) {                                               \
        return ON_ITEM(Store, setNumber<Scope>)(key, value, Words(k##name##Words));          \
    }                                                                                        \
    int32_t DAL_CML_get##name##Default(void) {                                               \
        return initial;                                                                      \
    }                                                                                        \
    int32_t DAL_CML_delete##name(void) {                                                     \
        return ON_ITEM(Store, Scope::deleteItem)(key);                                       \
    }                                                                                        \
    int32_t DAL_CML_deleteAll##name(void) {                                                  \
        return ON_ITEM(Store, deleteInAllProfiles)(key);                                     \
    }                                                                                        \
    int32_t DAL_CML_is##name##Present(void) {                                                \
        return ON_ITEM(Store, Scope::isPresent)(key);                                        \
    }

#include "settings/catalogue.def"
