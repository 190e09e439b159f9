#include "stand-ins/data-access/items.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "stand-ins/data-access/connection.h"
#include "stand-ins/data-access/item_values.h"
#include "system/deleted_by.h"

namespace {

// Looks an item up and hands its text to deliver, or nothing where there is none. deliver is called
// exactly once, whatever fails.
template <typename Deliver>
int32_t readItem(sqlite3* handle, const KeyPath* path, const Profile& profile, Deliver deliver) {
    const auto address = parse(path);
    if (handle == nullptr || !address || !address->isItem() || !profile.isOne()) {
        deliver(StoredText());
        return SQLITE_MISUSE;
    }
    bool delivered = false;
    const auto look = [&](Connection& connection) {
        Run run(connection.get(), connection.statements, Verb::kGet, *address, profile);
        const int32_t result = run.step();
        if (result != SQLITE_ROW) {
            return result == SQLITE_DONE ? SQLITE_OK : result;
        }
        const StoredText text = run.text();
        deliver(text);
        delivered = true;
        return text || run.isNull() ? SQLITE_OK : SQLITE_NOMEM;
    };
    Connection* const connection = Connection::of(handle);
    const int32_t result =
        connection == nullptr ? SQLITE_NOMEM : connection->read([&] { return look(*connection); });
    if (!delivered) {
        deliver(StoredText());
    }
    return result;
}

int32_t writeItem(sqlite3* handle, const KeyPath* path, const Profile& profile,
                  std::string_view text) {
    const auto address = parse(path);
    if (handle == nullptr || !address || !address->isItem() || !profile.isOne()) {
        return SQLITE_MISUSE;
    }
    Connection* const connection = Connection::of(handle);
    if (connection == nullptr) {
        return SQLITE_NOMEM;
    }
    const auto set = [&] {
        Run run(connection->get(), connection->statements, Verb::kSet, *address, profile);
        run.bind(kValue, text);
        return run.finish();
    };
    const auto setWithNode = [&] {
        const int32_t result =
            Run(connection->get(), connection->statements, Verb::kAddNode, *address, profile)
                .finish();
        return result == SQLITE_OK ? set() : result;
    };
    return address->shape == Shape::kPlainItem
               ? connection->write(set)
               : connection->write([&] { return connection->transactions.asOne(setWithNode); });
}

int32_t deleteRows(sqlite3* handle, const Address& address, const Profile& profile) {
    const Verb verb = profile.isAll() ? Verb::kDeleteInAllProfiles : Verb::kDelete;
    Connection* const connection = Connection::of(handle);
    return connection == nullptr ? SQLITE_NOMEM : connection->write([&] {
        return Run(connection->get(), connection->statements, verb, address, profile).finish();
    });
}

int32_t isPresent(sqlite3* handle, const Address& address, const Profile& profile) {
    Connection* const connection = Connection::of(handle);
    return connection != nullptr && connection->read([&] {
        return Run(connection->get(), connection->statements, Verb::kIsPresent, address, profile)
            .step();
    }) == SQLITE_ROW;
}

using Id = std::unique_ptr<char, DeletedBy<std::free>>;
using Ids = std::vector<Id>;

// Throws std::bad_alloc.
int32_t readNodes(Connection& connection, const Address& list, const Profile& profile, Ids& ids) {
    ids.clear();
    Run run(connection.get(), connection.statements, Verb::kListNodes, list, profile);
    int32_t result = run.step();
    for (; result == SQLITE_ROW; result = run.step()) {
        const StoredText text = run.text();
        Id id(text ? copyOf(*text) : nullptr);
        if (!id) {
            return SQLITE_NOMEM;
        }
        ids.push_back(std::move(id));
    }
    return result == SQLITE_DONE ? SQLITE_OK : result;
}

}  // namespace

int32_t readNumber(sqlite3* handle, const KeyPath* path, const Profile& profile, int32_t* value,
                   int32_t defaultValue) {
    return readItem(handle, path, profile,
                    [&](StoredText text) { deliverNumber(text, value, defaultValue); });
}

int32_t readString(sqlite3* handle, const KeyPath* path, const Profile& profile, char* buffer,
                   uint32_t* valueInfo, size_t size, const char* defaultValue) {
    return readItem(handle, path, profile, [&](StoredText text) {
        deliverString(text, buffer, valueInfo, size, defaultValue);
    });
}

int32_t readStringMalloc(sqlite3* handle, const KeyPath* path, const Profile& profile, char** value,
                         uint32_t* valueInfo) {
    if (valueInfo != nullptr) {
        *valueInfo = 0;
    }
    if (value == nullptr) {
        return SQLITE_MISUSE;
    }
    bool found = false;
    const int32_t result = readItem(handle, path, profile, [&](StoredText text) {
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

int32_t writeNumber(sqlite3* handle, const KeyPath* path, const Profile& profile, int32_t value,
                    int32_t minimum, int32_t maximum) {
    if (value < minimum || value > maximum) {
        return SQLITE_RANGE;
    }
    std::array<char, 12> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), value).ptr;
    return writeItem(handle, path, profile,
                     {digits.data(), static_cast<size_t>(end - digits.begin())});
}

int32_t writeString(sqlite3* handle, const KeyPath* path, const Profile& profile,
                    const char* value) {
    return value == nullptr ? SQLITE_MISUSE : writeItem(handle, path, profile, value);
}

int32_t deleteItem(sqlite3* handle, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    if (handle == nullptr || !address || !address->isItem() ||
        !(profile.isOne() || profile.isAll())) {
        return SQLITE_MISUSE;
    }
    return deleteRows(handle, *address, profile);
}

int32_t isItemPresent(sqlite3* handle, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    return handle != nullptr && address && address->isItem() && profile.isOne()
               ? isPresent(handle, *address, profile)
               : 0;
}

int32_t deleteNodes(sqlite3* handle, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    const bool whole = address && address->shape == Shape::kWholeList && profile.isAll();
    const bool single =
        address && address->shape == Shape::kNode && (profile.isOne() || profile.isAll());
    if (handle == nullptr || !(whole || single)) {
        return SQLITE_MISUSE;
    }
    return deleteRows(handle, *address, profile);
}

int32_t isNodePresent(sqlite3* handle, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    return handle != nullptr && address && address->shape == Shape::kNode && profile.isOne()
               ? isPresent(handle, *address, profile)
               : 0;
}

char** listNodes(sqlite3* handle, const KeyPath* path, const char* listName,
                 const Profile& profile) try {
    const auto address = parse(path);
    if (handle == nullptr || !address || address->shape != Shape::kWholeList || !profile.isOne() ||
        listName == nullptr || address->list != listName) {
        return nullptr;
    }
    Connection* const connection = Connection::of(handle);
    Ids ids;
    if (connection == nullptr || connection->read([&] {
            return readNodes(*connection, *address, profile, ids);
        }) != SQLITE_OK) {
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
