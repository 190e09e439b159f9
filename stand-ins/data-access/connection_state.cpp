#include "stand-ins/data-access/connection_state.h"

#include <map>
#include <mutex>
#include <new>

namespace {

struct States {
    std::mutex mutex;
    std::map<sqlite3*, ConnectionState> byConnection;
};

// Never destroyed: connections live until the process ends, and other threads may still be calling
// while it does.
States& states() {
    static States& all = *new States;
    return all;
}

int forget(unsigned /*event*/, void* /*context*/, void* connection, void* /*unused*/) {
    const std::lock_guard guard(states().mutex);
    states().byConnection.erase(static_cast<sqlite3*>(connection));
    return 0;
}

}  // namespace

ConnectionState* ConnectionState::of(sqlite3* connection) try {
    const std::lock_guard guard(states().mutex);
    const auto [entry, isNew] = states().byConnection.try_emplace(connection);
    if (isNew) {
        // Called before SQLite looks for unfinished statements, which would make it refuse the
        // close.
        sqlite3_trace_v2(connection, SQLITE_TRACE_CLOSE, forget, nullptr);
    }
    return &entry->second;
} catch (const std::bad_alloc&) {
    return nullptr;
}
