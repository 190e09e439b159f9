#include "contracts/data_access.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "stand-ins/data-access/connection_state.h"
#include "stand-ins/data-access/item_address.h"

namespace {

constexpr int kBusyTimeoutMs = 10'000;

int32_t primaryCode(int result) {
    return result & 0xff;
}

int32_t execute(sqlite3* connection, const char* sql) {
    return primaryCode(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr));
}

// One run of a prepared statement. The bound texts belong to the caller, who outlives the run; its
// end gives up their pointers and the locks on the file.
class Run {
  public:
    Run(sqlite3* connection, Verb verb, const Address& address, const Profile& profile) {
        try {
            statement =
                ConnectionState::of(connection).prepared(connection, verb, address, profile);
            status = statement == nullptr ? sqlite3_errcode(connection) : SQLITE_OK;
        } catch (const std::bad_alloc&) {
            return;
        }
        if (address.node != nullptr) {
            bind(kNode, address.node);
        }
        if (address.key != nullptr) {
            bind(kKey, address.key);
        }
        if (!profile.isAll()) {
            bind(kProfile, profile.text());
        }
    }
    ~Run() {
        if (statement != nullptr) {
            sqlite3_reset(statement);
            sqlite3_clear_bindings(statement);
        }
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void bind(Parameter parameter, std::string_view text) {
        if (status == SQLITE_OK) {
            status = sqlite3_bind_text64(statement, parameter, text.data(), text.size(),
                                         SQLITE_STATIC, SQLITE_UTF8);
        }
    }

    // SQLITE_ROW, SQLITE_DONE or a failure.
    int step() { return primaryCode(status == SQLITE_OK ? sqlite3_step(statement) : status); }

    // For a statement that gives no rows: 0 or a failure.
    int32_t finish() {
        const int result = step();
        return result == SQLITE_DONE ? SQLITE_OK : result;
    }

    bool isNull() const { return sqlite3_column_type(statement, 0) == SQLITE_NULL; }

    // The first column of the row; nothing when memory runs out.
    std::optional<std::string_view> text() const {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        if (bytes == nullptr) {
            return std::nullopt;
        }
        return std::string_view(bytes, static_cast<size_t>(sqlite3_column_bytes(statement, 0)));
    }

  private:
    sqlite3_stmt* statement = nullptr;
    int status = SQLITE_NOMEM;
};

// Several statements as one. A savepoint does for both cases: on its own it is a transaction, and
// within the caller's it leaves that as it is.
class Savepoint {
  public:
    explicit Savepoint(sqlite3* on) : connection(on), opened(execute(on, "SAVEPOINT dal")) {}
    ~Savepoint() {
        if (opened == SQLITE_OK && !released) {
            execute(connection, "ROLLBACK TO dal");
            execute(connection, "RELEASE dal");
        }
    }
    Savepoint(const Savepoint&) = delete;
    Savepoint& operator=(const Savepoint&) = delete;

    int32_t result() const { return opened; }

    int32_t release() {
        const int32_t result = execute(connection, "RELEASE dal");
        released = result == SQLITE_OK;
        return result;
    }

  private:
    sqlite3* connection;
    int32_t opened;
    bool released = false;
};

// Looks an item up and hands its text to deliver, or nothing where there is none. deliver is called
// exactly once, whatever fails.
template <typename Deliver>
int32_t readItem(sqlite3* connection, const KeyPath* path, const Profile& profile,
                 Deliver deliver) {
    const auto address = parse(path);
    if (connection == nullptr || !address || !address->isItem() || !profile.isOne()) {
        deliver(std::nullopt);
        return SQLITE_MISUSE;
    }
    const ConnectionLock lock(connection);
    Run run(connection, Verb::kGet, *address, profile);
    const int result = run.step();
    if (result != SQLITE_ROW || run.isNull()) {
        deliver(std::nullopt);
        return result == SQLITE_ROW || result == SQLITE_DONE ? SQLITE_OK : result;
    }
    const auto text = run.text();
    deliver(text);
    return text ? SQLITE_OK : SQLITE_NOMEM;
}

int32_t writeItem(sqlite3* connection, const KeyPath* path, const Profile& profile,
                  std::string_view text) {
    const auto address = parse(path);
    if (connection == nullptr || !address || !address->isItem() || !profile.isOne()) {
        return SQLITE_MISUSE;
    }
    const auto set = [&] {
        Run run(connection, Verb::kSet, *address, profile);
        run.bind(kValue, text);
        return run.finish();
    };
    const ConnectionLock lock(connection);
    if (address->list.empty()) {
        return set();
    }
    Savepoint savepoint(connection);
    if (savepoint.result() != SQLITE_OK) {
        return savepoint.result();
    }
    const Address node{address->list, address->node, nullptr};
    if (const int32_t result = Run(connection, Verb::kAddNode, node, profile).finish()) {
        return result;
    }
    if (const int32_t result = set()) {
        return result;
    }
    return savepoint.release();
}

int32_t deleteRows(sqlite3* connection, const Address& address, const Profile& profile) {
    const ConnectionLock lock(connection);
    return Run(connection, Verb::kDelete, address, profile).finish();
}

int32_t deleteItem(sqlite3* connection, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    if (connection == nullptr || !address || !address->isItem() ||
        !(profile.isOne() || profile.isAll())) {
        return SQLITE_MISUSE;
    }
    return deleteRows(connection, *address, profile);
}

int32_t isPresent(sqlite3* connection, const Address& address, const Profile& profile) {
    if (connection == nullptr || !profile.isOne()) {
        return 0;
    }
    const ConnectionLock lock(connection);
    return Run(connection, Verb::kIsPresent, address, profile).step() == SQLITE_ROW ? 1 : 0;
}

int32_t isItemPresent(sqlite3* connection, const KeyPath* path, const Profile& profile) {
    const auto address = parse(path);
    return address && address->isItem() ? isPresent(connection, *address, profile) : 0;
}

int32_t readNumber(sqlite3* connection, const KeyPath* path, const Profile& profile, int32_t* value,
                   int32_t defaultValue) {
    return readItem(connection, path, profile, [&](std::optional<std::string_view> text) {
        if (value == nullptr) {
            return;
        }
        *value = defaultValue;
        int32_t number = 0;
        if (text) {
            const char* const end = text->data() + text->size();
            const auto [stop, error] = std::from_chars(text->data(), end, number);
            if (error == std::errc() && stop == end) {
                *value = number;
            }
        }
    });
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

int32_t readString(sqlite3* connection, const KeyPath* path, const Profile& profile, char* buffer,
                   uint32_t* valueInfo, size_t size, const char* defaultValue) {
    return readItem(connection, path, profile, [&](std::optional<std::string_view> stored) {
        const std::string_view text =
            stored.value_or(defaultValue == nullptr ? std::string_view() : defaultValue);
        if (valueInfo != nullptr) {
            *valueInfo = static_cast<uint32_t>(text.size());
        }
        if (buffer != nullptr && size > 0) {
            buffer[text.copy(buffer, size - 1)] = '\0';
        }
    });
}

char* copyOf(std::string_view text) {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy != nullptr) {
        copy[text.copy(copy, text.size())] = '\0';
    }
    return copy;
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
    const int32_t result =
        readItem(connection, path, profile, [&](std::optional<std::string_view> text) {
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

int32_t writeString(sqlite3* connection, const KeyPath* path, const Profile& profile,
                    const char* value) {
    return value == nullptr ? SQLITE_MISUSE : writeItem(connection, path, profile, value);
}

struct Free {
    void operator()(void* block) const { std::free(block); }
};

// The ids as DAL_listProfiledNodeItems gives them. Throws std::bad_alloc.
char** listNodes(sqlite3* connection, const Address& list, const Profile& profile) {
    std::vector<std::unique_ptr<char, Free>> ids;
    {
        const ConnectionLock lock(connection);
        Run run(connection, Verb::kListNodes, list, profile);
        int result = run.step();
        for (; result == SQLITE_ROW; result = run.step()) {
            const auto text = run.text();
            std::unique_ptr<char, Free> id(text ? copyOf(*text) : nullptr);
            if (!id) {
                return nullptr;
            }
            ids.push_back(std::move(id));
        }
        if (result != SQLITE_DONE) {
            return nullptr;
        }
    }
    auto** const array = static_cast<char**>(std::malloc((ids.size() + 1) * sizeof(char*)));
    if (array == nullptr) {
        return nullptr;
    }
    char** end =
        std::transform(ids.begin(), ids.end(), array, [](auto& id) { return id.release(); });
    *end = nullptr;
    return array;
}

// The write-ahead journal, because a set must be on the disk when it returns and power can go at
// any moment: with full synchronisation it costs one fsync a commit, where a rollback journal costs
// three or four; a writer doesn't block readers in other processes; and a commit is one append, so
// that a kill leaves either all of it or a tail that the next open drops. Measured on ext4, an
// update and its commit take a quarter to two fifths of the time that the fastest rollback journal
// needs.
// The switch wants the file to itself, and SQLite doesn't wait for that by its busy handler: when
// several processes make it at once, the wait is made here.
int32_t useWriteAheadJournal(sqlite3* connection) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(kBusyTimeoutMs);
    for (;;) {
        const int32_t result = execute(connection, "PRAGMA journal_mode = WAL");
        if (result != SQLITE_BUSY || Clock::now() >= end) {
            return result;
        }
        sqlite3_sleep(5);
    }
}

bool isInTransaction(sqlite3* connection) {
    return sqlite3_get_autocommit(connection) == 0;
}

bool endsTransaction(std::string_view sql) {
    sql.remove_prefix(std::min(sql.find_first_not_of(" \t\r\n"), sql.size()));
    const auto startsWith = [&](std::string_view word) {
        return sqlite3_strnicmp(sql.data(), word.data(), static_cast<int>(word.size())) == 0;
    };
    return startsWith("COMMIT") || startsWith("END");
}

}  // namespace

#pragma GCC visibility push(default)

int32_t DAL_SetDBConfiguration(sqlite3* connection) {
    if (connection == nullptr) {
        return SQLITE_MISUSE;
    }
    sqlite3_busy_timeout(connection, kBusyTimeoutMs);
    int enforced = 0;
    if (sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_FKEY, 1, &enforced) != SQLITE_OK ||
        enforced != 1) {
        return SQLITE_ERROR;
    }
    if (const int32_t result = useWriteAheadJournal(connection)) {
        return result;
    }
    // EXTRA is FULL with the write-ahead journal; on a file system that can't have that journal it
    // also syncs the directory, without which a rollback journal can come back after a power loss.
    return execute(connection, "PRAGMA synchronous = EXTRA");
}

int32_t DAL_CreateFlatKeyTable(sqlite3* connection) {
    // Without a row id a set writes one tree, and a get searches one.
    return connection == nullptr
               ? SQLITE_MISUSE
               : execute(connection,
                         "CREATE TABLE IF NOT EXISTS tbl_dal_key_dal_value ("
                         "c_dal_key TEXT NOT NULL, c_dal_profile_no TEXT NOT NULL, "
                         "c_dal_value TEXT NOT NULL, "
                         "PRIMARY KEY(c_dal_key, c_dal_profile_no)) WITHOUT ROWID;");
}

int32_t DAL_DeleteFlatKeyTable(sqlite3* connection) {
    return connection == nullptr ? SQLITE_MISUSE
                                 : execute(connection, "DELETE FROM tbl_dal_key_dal_value;");
}

int32_t DAL_ExecuteQuery(sqlite3* connection, const char* sql) {
    if (connection == nullptr || sql == nullptr) {
        return SQLITE_MISUSE;
    }
    const ConnectionLock lock(connection);
    ConnectionState* state = nullptr;
    try {
        state = &ConnectionState::of(connection);
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    }
    const bool wasOpen = isInTransaction(connection);
    const int32_t result = execute(connection, sql);
    if (result != SQLITE_OK && endsTransaction(sql) && isInTransaction(connection)) {
        execute(connection, "ROLLBACK");
    }
    // A failure for want of room or memory can end a transaction too, at any statement.
    if (!isInTransaction(connection)) {
        state->transaction.reset();
    } else if (!wasOpen) {
        state->transaction.emplace(connection);
    }
    return result;
}

int32_t DAL_getTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value, BOOL defaultValue) {
    return readNumber(connection, key, Profile::unprofiled(), value, defaultValue);
}

int32_t DAL_getProfiledTypeBOOL(sqlite3* connection, const KeyPath* key, BOOL* value,
                                BOOL defaultValue, int32_t profileNo) {
    return readNumber(connection, key, Profile::number(profileNo), value, defaultValue);
}

int32_t DAL_getTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                       int32_t defaultValue) {
    return readNumber(connection, key, Profile::unprofiled(), value, defaultValue);
}

int32_t DAL_getProfiledTypeInt(sqlite3* connection, const KeyPath* key, int32_t* value,
                               int32_t defaultValue, int32_t profileNo) {
    return readNumber(connection, key, Profile::number(profileNo), value, defaultValue);
}

int32_t DAL_getTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                          uint32_t* valueInfo, size_t size, const char* defaultValue) {
    return readString(connection, key, Profile::unprofiled(), buffer, valueInfo, size,
                      defaultValue);
}

int32_t DAL_getProfiledTypeString(sqlite3* connection, const KeyPath* key, char* buffer,
                                  uint32_t* valueInfo, size_t size, const char* defaultValue,
                                  int32_t profileNo) {
    return readString(connection, key, Profile::number(profileNo), buffer, valueInfo, size,
                      defaultValue);
}

int32_t DAL_getTypeStringMalloc(sqlite3* connection, const KeyPath* key, char** value,
                                uint32_t* valueInfo) {
    return readStringMalloc(connection, key, Profile::unprofiled(), value, valueInfo);
}

int32_t DAL_getProfiledTypeStringMalloc(sqlite3* connection, const KeyPath* key, char** value,
                                        uint32_t* valueInfo, int32_t profileNo) {
    return readStringMalloc(connection, key, Profile::number(profileNo), value, valueInfo);
}

int32_t DAL_setTypeBOOLLimits(sqlite3* connection, const KeyPath* key, BOOL value,
                              uint32_t /*extra*/, int32_t minimum, int32_t maximum) {
    return writeNumber(connection, key, Profile::unprofiled(), value, minimum, maximum);
}

int32_t DAL_setProfiledTypeBOOLLimits(sqlite3* connection, const KeyPath* key, BOOL value,
                                      uint32_t /*extra*/, int32_t minimum, int32_t maximum,
                                      int32_t profileNo) {
    return writeNumber(connection, key, Profile::number(profileNo), value, minimum, maximum);
}

int32_t DAL_setTypeIntLimits(sqlite3* connection, const KeyPath* key, int32_t value,
                             uint32_t /*extra*/, int32_t minimum, int32_t maximum) {
    return writeNumber(connection, key, Profile::unprofiled(), value, minimum, maximum);
}

int32_t DAL_setProfiledTypeIntLimits(sqlite3* connection, const KeyPath* key, int32_t value,
                                     uint32_t /*extra*/, int32_t minimum, int32_t maximum,
                                     int32_t profileNo) {
    return writeNumber(connection, key, Profile::number(profileNo), value, minimum, maximum);
}

int32_t DAL_setTypeString(sqlite3* connection, const KeyPath* key, const char* value,
                          uint32_t /*extra*/) {
    return writeString(connection, key, Profile::unprofiled(), value);
}

int32_t DAL_setProfiledTypeString(sqlite3* connection, const KeyPath* key, const char* value,
                                  uint32_t /*extra*/, int32_t profileNo) {
    return writeString(connection, key, Profile::number(profileNo), value);
}

int32_t DAL_deleteItem(sqlite3* connection, const KeyPath* key) {
    return deleteItem(connection, key, Profile::unprofiled());
}

int32_t DAL_deleteProfiledItem(sqlite3* connection, const KeyPath* key, int32_t profileNo) {
    return deleteItem(connection, key, Profile::number(profileNo));
}

int32_t DAL_isPresent(sqlite3* connection, const KeyPath* key) {
    return isItemPresent(connection, key, Profile::unprofiled());
}

int32_t DAL_isProfiledPresent(sqlite3* connection, const KeyPath* key, int32_t profileNo) {
    return isItemPresent(connection, key, Profile::number(profileNo));
}

int32_t DAL_deleteProfiledNodeItem(sqlite3* connection, const KeyPath* key, int32_t profileNo) {
    const auto address = parse(key);
    const auto profile = Profile::number(profileNo);
    const bool whole = address && address->isWholeList() && profile.isAll();
    const bool single = address && address->isNode() && (profile.isOne() || profile.isAll());
    if (connection == nullptr || !(whole || single)) {
        return SQLITE_MISUSE;
    }
    return deleteRows(connection, *address, profile);
}

int32_t DAL_isProfiledNodePresent(sqlite3* connection, const KeyPath* key, int32_t profileNo) {
    const auto address = parse(key);
    return address && address->isNode()
               ? isPresent(connection, *address, Profile::number(profileNo))
               : 0;
}

char** DAL_listProfiledNodeItems(sqlite3* connection, const KeyPath* key, const char* listName,
                                 int32_t profileNo) {
    const auto address = parse(key);
    const auto profile = Profile::number(profileNo);
    if (connection == nullptr || !address || !address->isWholeList() || !profile.isOne() ||
        listName == nullptr || address->list != listName) {
        return nullptr;
    }
    try {
        return listNodes(connection, *address, profile);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
