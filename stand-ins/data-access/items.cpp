#include "stand-ins/data-access/items.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <new>
#include <optional>
#include <vector>

#include "stand-ins/data-access/statements.h"
#include "system/deleted_by.h"

namespace {

using Shapes = std::initializer_list<Shape>;
constexpr Shapes kItem = {Shape::PlainItem, Shape::ListItem};

// Runs work on the connection and the address of a path that has one of these shapes.
template <typename Work>
int32_t use(sqlite3* handle, const KeyPath* path, Shapes shapes, bool isProfileValid, Work work) {
    return useConnection(handle, [&](Connection& connection) {
        const auto address = parse(path);
        const bool isValid =
            isProfileValid && address && std::ranges::count(shapes, address->shape) > 0;
        return isValid ? work(connection, *address) : SQLITE_MISUSE;
    });
}

// The text of an item; nothing if there is no such item or it can't be read.
using StoredText = std::optional<std::string_view>;

// Reads an item and passes its text to deliver, which is called exactly once, also on failure.
template <typename Deliver>
int32_t readItem(sqlite3* handle, const KeyPath* path, const Profile& profile, Deliver deliver) {
    bool delivered = false;
    const auto look = [&](Connection& connection, const Address& address) {
        return connection.read([&](Session& session) {
            Run run(session, kGetItem, address, profile);
            const int32_t result = run.step();
            if (result != SQLITE_ROW) {
                return result == SQLITE_DONE ? SQLITE_OK : result;
            }
            const StoredText text = run.text();
            deliver(text);
            delivered = true;
            return text || run.isNull() ? SQLITE_OK : SQLITE_NOMEM;
        });
    };
    const int32_t result = use(handle, path, kItem, profile.isOne(), look);
    if (!delivered) {
        deliver(StoredText());
    }
    return result;
}

int32_t writeItem(sqlite3* handle, const KeyPath* path, const Profile& profile,
                  std::string_view text) {
    return use(handle, path, kItem, profile.isOne(), [&](Connection& used, const Address& address) {
        const auto set = [&] {
            Run run(used.session, kSetItem, address, profile);
            run.bind(kValue, text);
            return run.finish();
        };
        const auto setWithNode = [&] {
            const int32_t result = Run(used.session, kAddNode, address, profile).finish();
            return result == SQLITE_OK ? set() : result;
        };
        return address.shape == Shape::PlainItem
                   ? used.write(set)
                   : used.write([&] { return used.transactions.asOne(setWithNode); });
    });
}

int32_t deleteRows(Connection& connection, const char* pattern, const Address& address,
                   const Profile& profile) {
    return connection.write(
        [&] { return Run(connection.session, pattern, address, profile).finish(); });
}

// Returns SQLITE_ROW if there is a row.
int32_t findRow(Connection& connection, const char* pattern, const Address& address,
                const Profile& profile) {
    return connection.read(
        [&](Session& session) { return Run(session, pattern, address, profile).step(); });
}

// Returns a copy in a block from malloc, or null if there is no memory.
char* copyOf(std::string_view text) {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy != nullptr) {
        copy[text.copy(copy, text.size())] = '\0';
    }
    return copy;
}

using Id = std::unique_ptr<char, DeletedBy<std::free>>;
using Ids = std::vector<Id>;

// Throws std::bad_alloc.
int32_t readNodes(Session& session, const Address& list, const Profile& profile, Ids& ids) {
    ids.clear();
    Run run(session, kListNodes, list, profile);
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

// Returns a 32-bit integer in decimal, nothing for any other text.
std::optional<int32_t> numberIn(std::string_view text) {
    int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}  // namespace

int32_t readNumber(sqlite3* handle, const KeyPath* path, const Profile& profile, int32_t* value,
                   int32_t defaultValue) {
    return readItem(handle, path, profile, [&](StoredText text) {
        if (value != nullptr) {
            *value = text ? numberIn(*text).value_or(defaultValue) : defaultValue;
        }
    });
}

int32_t readString(sqlite3* handle, const KeyPath* path, const Profile& profile, char* buffer,
                   uint32_t* valueInfo, size_t size, const char* defaultValue) {
    return readItem(handle, path, profile, [&](StoredText text) {
        const std::string_view delivered =
            text.value_or(defaultValue == nullptr ? std::string_view() : defaultValue);
        if (valueInfo != nullptr) {
            *valueInfo = static_cast<uint32_t>(delivered.size());
        }
        if (buffer != nullptr && size > 0) {
            buffer[delivered.copy(buffer, size - 1)] = '\0';
        }
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
    const auto remove = [&](Connection& used, const Address& item) {
        const char* const pattern = profile.isAll() ? kDeleteItemInAllProfiles : kDeleteItem;
        return deleteRows(used, pattern, item, profile);
    };
    return use(handle, path, kItem, profile.isOne() || profile.isAll(), remove);
}

int32_t isItemPresent(sqlite3* handle, const KeyPath* path, const Profile& profile) {
    const auto find = [&](Connection& used, const Address& item) {
        return findRow(used, kFindItem, item, profile);
    };
    return use(handle, path, kItem, profile.isOne(), find) == SQLITE_ROW;
}

int32_t deleteNodes(sqlite3* handle, const KeyPath* path, const Profile& profile) {
    const auto remove = [&](Connection& used, const Address& nodes) {
        const bool isOneNode = nodes.shape == Shape::Node;
        return isOneNode == profile.isAll()
                   ? SQLITE_MISUSE
                   : deleteRows(used, isOneNode ? kDeleteNode : kDeleteAllNodes, nodes, profile);
    };
    return use(handle, path, {Shape::Node, Shape::WholeList}, profile.isOne() || profile.isAll(),
               remove);
}

int32_t isNodePresent(sqlite3* handle, const KeyPath* path, const Profile& profile) {
    const auto find = [&](Connection& used, const Address& node) {
        return findRow(used, kFindNode, node, profile);
    };
    return use(handle, path, {Shape::Node}, profile.isOne(), find) == SQLITE_ROW;
}

char** listNodes(sqlite3* handle, const KeyPath* path, const char* listName,
                 const Profile& profile) try {
    Ids ids;
    const auto read = [&](Connection& used, const Address& list) {
        return listName == nullptr || list.list != listName
                   ? SQLITE_MISUSE
                   : used.read([&](Session& it) { return readNodes(it, list, profile, ids); });
    };
    if (use(handle, path, {Shape::WholeList}, profile.isOne(), read) != SQLITE_OK) {
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
