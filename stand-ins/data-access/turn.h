// Turns to write to a database, in the order in which they were asked for: SQLite's own lock goes
// to whoever happens to try when it is free, and a busy writer would keep it from all others.
#pragma once

#include <memory>
#include <string>

#include "stand-ins/data-access/process_queue.h"
#include "stand-ins/data-access/thread_queue.h"
#include "stand-ins/data-access/wait.h"

// Of one database, shared by the process's connections to it.
struct Turns {
    explicit Turns(const std::string& database) : processes(database) {}

    // Throws std::bad_alloc.
    static std::shared_ptr<Turns> of(const std::string& database);

    ThreadQueue threads;
    ProcessQueue processes;  // of the thread whose turn it is
};

// One turn, until the end of its life. Whoever doesn't get it goes on without: what it keeps is
// fairness, not the database.
class Turn {
  public:
    Turn() = default;
    Turn(const std::shared_ptr<Turns>& turns, Clock::time_point now);
    ~Turn();
    Turn(Turn&& other) noexcept = default;
    Turn& operator=(Turn&& other) noexcept;
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

  private:
    std::shared_ptr<Turns> held;  // null without a turn
};
