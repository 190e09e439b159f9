#include "stand-ins/data-access/connection.h"

#include <map>
#include <mutex>
#include <new>
#include <utility>

namespace {

struct Connections {
    std::mutex mutex;
    std::map<sqlite3*, std::unique_ptr<Connection>> byHandle;
};

// Never destroyed: connections live until the process ends, and other threads may still be calling
// while it does.
Connections& connections() {
    static Connections& all = *new Connections;
    return all;
}

int forget(unsigned /*event*/, void* /*context*/, void* handle, void* /*unused*/) {
    std::unique_ptr<Connection> gone;
    const std::lock_guard guard(connections().mutex);
    const auto found = connections().byHandle.find(static_cast<sqlite3*>(handle));
    if (found != connections().byHandle.end()) {
        gone = std::move(found->second);
        connections().byHandle.erase(found);
    }
    return 0;
}

Connection* find(sqlite3* handle) {
    const std::lock_guard guard(connections().mutex);
    const auto found = connections().byHandle.find(handle);
    return found == connections().byHandle.end() ? nullptr : found->second.get();
}

// The name, or an empty one for a database that has no file.
std::string fileOf(sqlite3* handle) {
    const char* const name = sqlite3_db_filename(handle, "main");
    return name == nullptr ? "" : name;
}

}  // namespace

Connection* Connection::of(sqlite3* handle) try {
    if (Connection* const known = find(handle)) {
        return known;
    }
    const ConnectionLock lock(handle);
    if (Connection* const known = find(handle)) {
        return known;
    }
    auto made = std::make_unique<Connection>(handle);
    Connection* const result = made.get();
    {
        const std::lock_guard guard(connections().mutex);
        connections().byHandle.emplace(handle, std::move(made));
    }
    sqlite3_busy_handler(handle, waitForReaders, result);
    // Called before SQLite looks for unfinished statements, which would make it refuse the close.
    sqlite3_trace_v2(handle, SQLITE_TRACE_CLOSE, forget, nullptr);
    return result;
} catch (const std::bad_alloc&) {
    return nullptr;
}

Connection::Connection(sqlite3* connection)
    : turns(Turns::of(fileOf(connection))), transactions(connection), handle(connection) {}

bool Connection::hasTable(const char* name) {
    return once(Clock::time_point(), [&] {
               return sqlite3_table_column_metadata(handle, "main", name, nullptr, nullptr, nullptr,
                                                    nullptr, nullptr, nullptr);
           }) == SQLITE_OK;
}

// SQLite asks whether to go on trying. Who has the write lock and is held up by readers, in
// rollback mode, keeps it: new ones can't come in. All others wait without the connection.
int Connection::waitForReaders(void* self, int /*tries*/) {
    const auto& connection = *static_cast<const Connection*>(self);
    return sqlite3_txn_state(connection.handle, "main") == SQLITE_TXN_WRITE &&
           Moments(connection.deadline).pass();
}
