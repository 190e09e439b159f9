#include "stand-ins/data-access/connection.h"

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>

#include "stand-ins/data-access/journal_index.h"

namespace {

struct Connections {
    std::mutex mutex;
    std::map<sqlite3*, std::unique_ptr<Connection>> byHandle;
};

Connections& connections();

// Runs at the normal end of the process. Not in a child made by fork, because the connections are
// its parent's, nor if exit is called by a signal handler that has interrupted a call.
struct AtEnd {
    pid_t process = getpid();
    AtEnd() = default;
    AtEnd(const AtEnd&) = delete;
    AtEnd& operator=(const AtEnd&) = delete;
    ~AtEnd() {
        if (getpid() == process && !NoCancellation::isOn()) {
            const std::lock_guard guard(connections().mutex);
            for (auto& [handle, connection] : connections().byHandle) {
                connection->emptyJournal();
            }
        }
    }
};

// Never destroyed: other threads may still be calling while the process ends.
Connections& connections() {
    static Connections& all = *new Connections;
    static const AtEnd atEnd;
    return all;
}

thread_local int32_t causeOfNone = SQLITE_CANTOPEN;

int forget(unsigned /*event*/, void* /*context*/, void* handle, void* /*unused*/) {
    std::unique_lock guard(connections().mutex);
    const auto gone = connections().byHandle.extract(static_cast<sqlite3*>(handle));
    guard.unlock();
    if (gone && gone.mapped()->failure != SQLITE_OK) {
        causeOfNone = gone.mapped()->failure;
    }
    return 0;
}

// Returns the path, or an empty text for a database without a file.
const char* fileOf(sqlite3* handle) {
    const char* const name = sqlite3_db_filename(handle, "main");
    return name == nullptr ? "" : name;
}

ino_t inodeOf(const char* path) {
    struct stat file {};
    return *path != '\0' && stat(path, &file) == 0 ? file.st_ino : 0;
}

Connection* find(sqlite3* handle) {
    const std::lock_guard guard(connections().mutex);
    const auto known = connections().byHandle.find(handle);
    return known == connections().byHandle.end() ? nullptr : known->second.get();
}

// Returns the SQL of a pattern for this list.
std::string expanded(std::string_view pattern, std::string_view list) {
    constexpr std::string_view kPlaceholder = "LIST";
    std::string sql;
    bool isLeftOut = false;
    for (size_t at = 0; at < pattern.size(); ++at) {
        if (pattern[at] == '{' || pattern[at] == '}') {
            isLeftOut = list.empty() && pattern[at] == '{';
        } else if (pattern.substr(at).starts_with(kPlaceholder) && !isLeftOut) {
            sql += list;
            at += kPlaceholder.size() - 1;
        } else if (!isLeftOut) {
            sql += pattern[at];
        }
    }
    return sql;
}

}  // namespace

sqlite3_stmt* Session::statement(const char* pattern, std::string_view list) {
    auto& ofPattern = statements[pattern];
    const auto known = ofPattern.find(list);
    if (known != ofPattern.end()) {
        return known->second.get();
    }
    Statement made = prepare(handle, expanded(pattern, list));
    return made ? ofPattern.emplace(list, std::move(made)).first->second.get() : nullptr;
}

Connection* Connection::of(sqlite3* handle) try {
    if (Connection* const known = find(handle)) {
        return known;
    }
    // A mutex of its own: SQLite calls forget(), which locks connections().mutex, with a mutex held
    // that the calls below lock, too.
    static std::mutex making;
    const std::lock_guard oneAtATime(making);
    if (Connection* const known = find(handle)) {
        return known;
    }
    auto made = std::make_unique<Connection>(handle);
    Connection& connection = *made;
    guardIndex(handle, Index::Shared);
    // forget() finalizes the statements. SQLite calls it before it looks for statements, with
    // which it would refuse to close.
    sqlite3_trace_v2(handle, SQLITE_TRACE_CLOSE, forget, nullptr);
    {
        const std::lock_guard guard(connections().mutex);
        connections().byHandle.emplace(handle, std::move(made));
    }
    sqlite3_busy_handler(handle, waitForReaders, &connection);
    return &connection;
} catch (const std::bad_alloc&) {
    return nullptr;
}

int32_t Connection::takeCauseOfNone() {
    return std::exchange(causeOfNone, SQLITE_CANTOPEN);
}

Connection::Connection(sqlite3* connection)
    : session(connection), turns(Turns::of(fileOf(connection))), transactions(connection) {}

Connection::~Connection() {
    if (threads) {
        pthread_key_delete(*threads);
    }
}

// Makes giveUp run when the calling thread ends. False if there is no memory for that.
bool Connection::watchThread() {
    const auto end = [](void* self) { static_cast<Connection*>(self)->giveUp(); };
    pthread_key_t key = 0;
    if (!threads && pthread_key_create(&key, end) == 0) {
        threads = key;
    }
    return threads && pthread_setspecific(*threads, this) == 0;
}

int32_t Connection::begin() {
    const Moments moments(kLongestWait);
    Turn turn(turns, moments.start());
    const int32_t result = attempt(moments, [&] {
        transactions.refusals.takeOfThisThread();
        const int32_t begun = !watchThread()              ? SQLITE_NOMEM
                              : mayWrite(moments.start()) ? transactions.begin()
                                                          : SQLITE_READONLY;
        if (begun == SQLITE_OK) {
            transactions.own(std::move(turn));
        }
        return begun;
    });
    if (endsTransaction(result)) {
        const std::lock_guard lock(mutex);
        transactions.refusals.add(result);
    }
    return result;
}

bool Connection::hasTable(const char* name) {
    return readOnce(Clock::time_point(), [&](Session& used) {
               return primaryCode(sqlite3_table_column_metadata(
                   used.get(), "main", name, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
           }) == SQLITE_OK;
}

void Connection::noteJournal() {
    const char* const file = fileOf(get());
    journal = *file == '\0' ? 0 : inodeOf(sqlite3_filename_wal(file));
}

// Whether the database or its write-ahead journal has been removed or replaced. What is written
// then is lost.
bool Connection::isMoved() const {
    int moved = 0;
    sqlite3_file_control(get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0 || (journal != 0 && inodeOf(sqlite3_filename_wal(fileOf(get()))) != journal);
}

// Checking the files takes a tenth of the time of a set in memory, so a check is valid for 1 ms.
bool Connection::mayWrite(Clock::time_point now) {
    if (now >= nextLook && !isMoved()) {
        nextLook = now + std::chrono::milliseconds(1);
    }
    return now < nextLook;
}

// Opens a second connection for one read, which needs no shared index.
Handle Connection::openReader() const {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(fileOf(get()), &opened, SQLITE_OPEN_READONLY, nullptr);
    Handle reader(opened);
    if (result != SQLITE_OK) {
        return nullptr;
    }
    guardIndex(opened, Index::Own);
    return reader;
}

void Connection::emptyJournal() {
    const std::unique_lock lock(mutex, std::try_to_lock);
    if (lock && !isMoved()) {
        sqlite3_wal_checkpoint_v2(get(), "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    }
}

void Connection::giveUp() {
    const std::lock_guard lock(mutex);
    transactions.refusals.takeOfThisThread();
    if (transactions.isMine()) {
        transactions.rollBack();
        transactions.disown();
    }
}

// SQLite's busy handler: returns whether to try again. An operation that has the write lock and
// waits for readers (rollback journal) tries again with the lock held, so no new readers start. All
// others return SQLITE_BUSY and wait with the connection unlocked.
int Connection::waitForReaders(void* self, int /*tries*/) {
    const auto& connection = *static_cast<const Connection*>(self);
    return sqlite3_txn_state(connection.get(), "main") == SQLITE_TXN_WRITE &&
           Moments(connection.deadline).pass();
}
