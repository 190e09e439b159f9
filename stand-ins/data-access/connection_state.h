// What is kept for a connection from its first use until it closes: prepared statements, and the
// lock of a transaction that is open.
#pragma once

#include <sqlite3.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "stand-ins/data-access/item_address.h"

// Holds the connection's own mutex, so that an operation of several statements, or of several calls
// on one prepared statement, is not interleaved with another thread's.
class ConnectionLock {
  public:
    explicit ConnectionLock(sqlite3* connection) : mutex(sqlite3_db_mutex(connection)) {
        sqlite3_mutex_enter(mutex);
    }
    ~ConnectionLock() { sqlite3_mutex_leave(mutex); }
    ConnectionLock(const ConnectionLock&) = delete;
    ConnectionLock& operator=(const ConnectionLock&) = delete;

  private:
    sqlite3_mutex* mutex;
};

enum class Verb { kGet, kSet, kDelete, kIsPresent, kAddNode, kListNodes };

// Numbers of the parameters in every statement; a statement uses those that it needs.
enum Parameter { kNode = 1, kKey, kProfile, kValue };

// Used with the connection's lock held.
class ConnectionState {
  public:
    // The state of a connection, made on first use. Throws std::bad_alloc.
    static ConnectionState& of(sqlite3* connection);

    // The statement that does verb on rows addressed in this way, prepared on first use; null if
    // SQLite refuses it. Throws std::bad_alloc.
    sqlite3_stmt* prepared(sqlite3* connection, Verb verb, const Address& address,
                           const Profile& profile);

    // Held from the BEGIN to the end of the transaction, by the thread that began it.
    std::optional<ConnectionLock> transaction;

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using PreparedStatement = std::unique_ptr<sqlite3_stmt, Finalize>;

    // Looks a list's name up without a copy of it.
    struct Order {
        using is_transparent = void;
        template <typename A, typename B>
        bool operator()(const std::pair<int, A>& a, const std::pair<int, B>& b) const {
            return a.first != b.first ? a.first < b.first
                                      : std::string_view(a.second) < std::string_view(b.second);
        }
    };

    // By form (verb and the columns that select the rows) and list name.
    std::map<std::pair<int, std::string>, PreparedStatement, Order> statements;
};
