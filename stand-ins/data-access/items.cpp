#include "stand-ins/data-access/items.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "stand-ins/data-access/connection_state.h"
#include "stand-ins/data-access/item_values.h"
#include "stand-ins/data-access/transaction.h"

namespace {

// Looks an item up and hands its text to deliver, or nothing where there is none. deliver is called
// exactly once, whatever fails.
template <typename Deliver>
int32_t readItem(sqlite3* connection, const KeyPath* path, const Profile& profile,
                 Deliver deliver) {
    const auto address = parse(path);
    if (connection == nullptr || !address || !address->isItem() || !profile.isOne()) {
        deliver(StoredText());
        return SQLITE_MISUSE;
    }
    const ConnectionLock lock(connection);
    ConnectionState* const state = ConnectionState::of(connection);
    if (state == nullptr) {
        deliver(StoredText());
        return SQLITE_NOMEM;
    }
    Run run(connection, state->statements, Verb::kGet, *address, profile);
    const int32_t result = run.step();
    if (result != SQLITE_ROW || run.isNull()) {
        deliver(StoredText());
        return result == SQLITE_ROW || result == SQLITE_DONE ? SQLITE_OK : result;
    }
    const StoredText text = run.text();
    deliver(text);
    return text ? SQLITE_OK : SQLITE_NOMEM;
}

int32_t writeItem(sqlite3* connection, const KeyPath* path, const Profile& profile,
                  std::string_view text) {
    const auto address = parse(path);
    if (connection == nullptr || !address || !address->isItem() || !profile.isOne()) {
        return SQLITE_MISUSE;
    }
    const ConnectionLock lock(connection);
    ConnectionState* const state = ConnectionState::of(connection);
    if (state == nullptr) {
        return SQLITE_NOMEM;
    }
    const auto set = [&] {
        Run run(connection, state->statements, Verb::kSet, *address, profile);
        run.bind(kValue, text);
        return run.finish();
    };
    if (address->shape == Shape::kPlainItem) {
        return set();
    }
    Savepoint savepoint(connection);
    int32_t result = savepoint.result();
    if (result == SQLITE_OK) {
        result = Run(connection, state->statements, Verb::kAddNode, *address, profile).finish();
    }
    if (result == SQLITE_OK) {
        result = set();
    }
    return result == SQLITE_OK ? savepoint.release() : result;
}

int32_t deleteRows(sqlite3* connection, const Address& address, const Profile& profile) {
    const ConnectionLock lock(connection);
    ConnectionState* const state = ConnectionState::of(connection);
    if (state == nullptr) {
        return SQLITE_NOMEM;
    }
    const Verb verb = profile.isAll() ? Verb::kDeleteInAllProfiles : Verb::kDelete;
    return Run(connection, state->statements, verb, address, profile).finish();
}

int32_t isPresent(sqlite3* connection, const Address& address, const Profile& profile) {
    const ConnectionLock lock(connection);
    ConnectionState* const state = ConnectionState::of(connection);
    return state != nullptr &&
           Run(connection, state->statements, Verb::kIsPresent, address, profile).step() ==
               SQLITE_ROW;
}

struct Free {
    void operator()(void* block) const { std::free(block); }
};
using Ids = std::vector<std::unique_ptr<char, Free>>;

// False on a failure. Throws std::bad_alloc.
bool readNodes(sqlite3* connection, const Address& list, const Profile& profile, Ids& ids) {
    const ConnectionLock lock(connection);
    ConnectionState* const state = ConnectionState::of(connection);
    if (state == nullptr) {
        return false;
    }
    Run run(connection, state->statements, Verb::kListNodes, list, profile);
    int32_t result = run.step();
    for (; result == SQLITE_ROW; result = run.step()) {
        const StoredText text = run.text();
        std::unique_ptr<char, Free> id(text ? copyOf(*text) : nullptr);
        if (!id) {
            return false;
        }
        ids.push_back(std::move(id));
    }
    return result == SQLITE_DONE;
}

}  // namespace

int32_t readNumber(sqlite3* connection, const KeyPath* path, const Profile& profile, int32_t* value,
                   int32_t defaultValue) {
    return readItem(connection, path, profile,
                    [&](StoredText text) { deliverNumber(text, value, defaultValue); });
}

int32_t readString(sqlite3* connection, const KeyPath* path, const Profile& profile, char* buffer,
                   uint32_t* valueInfo, size_t size, const char* defaultValue) {
    return readItem(connection, path, profile, [&](StoredText text) {
        deliverString(text, buffer, valueInfo, size, defaultValue);
    });
}

int32_t readStringMalloc(sqlite3* connection, const KeyPath* path, const Profile& profile,
                         char** value, uint32_t* valueInfo) {
    if (valueInfo != nullptr) {
        *valueInfo = 0;
    }
    if (value == nullptr) {
        return SQLITE_MISUSE;
    }
    *value = nullptr;
    bool found = false;
    const int32_t result = readItem(connection, path, profile, [&](StoredText text) {
        found = text.has_value();
        *value = found ? copyOf(*text) : nullptr;
        if (*value != nullptr && valueInfo != nullptr) {
            *valueInfo = static_cast<uint32_t>(text->size());
        }
    });
    if (result != SQLITE_OK || *value != nullptr) {
        return result;
    }
    return found ? SQLITE_NOMEM : SQLITE_NOTFOUND;
}

int32_t writeNumber(sqlite3* connection, const KeyPath* path, const Profile& profile, int32_t value,
                    int32_t minimum, int32_t maximum) {
    if (value < minimum || value > maximum) {
        return SQLITE_RANGE;
    }
    std::array<char, 12> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), value).ptr;
    return writeItem(connection, path, profile,
                     {digits.data(), static_cast<size_t>(end - digits.begin())});
}

int32_t writeString(sqlite3* connection, const KeyPath* path, const Profile& profile,
                    const char* value) {
    return value == nullptr ? SQLITE_MISUSE : writeItem(connection, path, profile, value);
}

int32_t deleteItem(sqlite3* connection, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    if (connection == nullptr || !address || !address->isItem() ||
        !(profile.isOne() || profile.isAll())) {
        return SQLITE_MISUSE;
    }
    return deleteRows(connection, *address, profile);
}

int32_t isItemPresent(sqlite3* connection, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    return connection != nullptr && address && address->isItem() && profile.isOne()
               ? isPresent(connection, *address, profile)
               : 0;
}

int32_t deleteNodes(sqlite3* connection, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    const bool whole = address && address->shape == Shape::kWholeList && profile.isAll();
    const bool single =
        address && address->shape == Shape::kNode && (profile.isOne() || profile.isAll());
    if (connection == nullptr || !(whole || single)) {
        return SQLITE_MISUSE;
    }
    return deleteRows(connection, *address, profile);
}

int32_t isNodePresent(sqlite3* connection, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    return connection != nullptr && address && address->shape == Shape::kNode && profile.isOne()
               ? isPresent(connection, *address, profile)
               : 0;
}

char** listNodes(sqlite3* connection, const KeyPath* path, const char* listName,
                 const Profile& profile) try {
    const auto address = parse(path);
    if (connection == nullptr || !address || address->shape != Shape::kWholeList ||
        !profile.isOne() || listName == nullptr || address->list != listName) {
        return nullptr;
    }
    Ids ids;
    if (!readNodes(connection, *address, profile, ids)) {
        return nullptr;
    }
    auto** const array = static_cast<char**>(std::malloc((ids.size() + 1) * sizeof(char*)));
    if (array == nullptr) {
        return nullptr;
    }
    char** const end =
        std::transform(ids.begin(), ids.end(), array, [](auto& id) { return id.release(); });
    *end = nullptr;
    return array;
} catch (const std::bad_alloc&) {
    return nullptr;
}
