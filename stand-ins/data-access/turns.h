// Turns to write to a database, in the order of asking. SQLite's own lock goes to whoever tries
// when it happens to be free, so a busy writer would keep all others from it.
#pragma once

#include <sys/types.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "system/descriptor.h"

using Clock = std::chrono::steady_clock;

// How long a call waits for others at most, and the part of that time in which it waits for its
// turn.
constexpr Clock::duration kLongestWait = std::chrono::seconds(10);
constexpr Clock::duration kLongestWaitForTurn = std::chrono::seconds(5);

// Paces the attempts to get a lock whose release isn't signalled. The pauses grow with the time
// waited, so little is lost whether the lock is held for half a millisecond or for a minute.
class Moments {
  public:
    explicit Moments(Clock::time_point deadline) : end(deadline) {}
    explicit Moments(Clock::duration longest) : end(begin + longest) {}

    // Sleeps for a moment. After the deadline it returns false, without sleeping.
    bool pass() const {
        const auto now = Clock::now();
        if (now >= end) {
            return false;
        }
        const Clock::duration moment = std::clamp<Clock::duration>(
            (now - begin) / 8, std::chrono::microseconds(200), std::chrono::milliseconds(2));
        std::this_thread::sleep_for(std::min(moment, end - now));
        return true;
    }

    // Runs work, and repeats it while it returns busy, until the deadline. Returns its last result.
    template <typename Work>
    int32_t whileIs(int32_t busy, Work work) const {
        int32_t result = work();
        while (result == busy && pass()) {
            result = work();
        }
        return result;
    }

    Clock::time_point start() const { return begin; }
    Clock::time_point deadline() const { return end; }

  private:
    Clock::time_point begin = Clock::now();
    Clock::time_point end;
};

// A lock that the threads of a process get in the order of asking. It allocates nothing: each
// waiter is on its thread's stack.
class ThreadQueue {
  public:
    // Returns false, without the lock, after the deadline.
    bool enter(Clock::time_point deadline);
    void leave();

  private:
    struct Waiter {
        std::condition_variable called;
        bool isNext = false;
        Waiter* behind = nullptr;
    };
    Waiter** linkTo(const Waiter* waiter);

    std::mutex mutex;
    bool isHeld = false;
    Waiter* first = nullptr;
};

// The turns of processes: locks on the first bytes of the file "DATABASE-turn", which stays empty.
// The lock of byte 0 is the turn, those of the others are places before it. A process that finds
// the turn taken joins at the last place and moves up as places become free, so none is overtaken.
// They are POSIX locks: a child made by fork doesn't share them, and the kernel releases them when
// the process ends. One thread at a time uses a queue.
class ProcessQueue {
  public:
    // For a database without a file the path is empty.
    explicit ProcessQueue(const std::string& databasePath)
        : database(databasePath), path(databasePath + "-turn") {}

    // Waits for the turn, until the deadline. The caller proceeds in any case: without turns only
    // the order is lost. A process that has kept its lock beyond the deadline (it is stopped) is
    // not waited for again until it has released it.
    void enter(Clock::time_point now, Clock::time_point deadline);
    void leave();

    // The file, opened on first use; below 0 if it can't be opened. It is closed with the queue: a
    // process loses all its locks on a file with the first descriptor of it that it closes.
    int descriptor();

  private:
    struct Holder {
        off_t place;
        pid_t process;
    };
    bool isAlone(Clock::time_point now);
    std::optional<Holder> wait(Clock::time_point deadline);

    std::string database;
    std::string path;
    std::optional<Descriptor> file;
    std::optional<Holder> stopped;
    Clock::time_point nextLook;
};

// The queues of one database, shared by the process's connections to it.
struct Turns {
    explicit Turns(const std::string& database) : processes(database) {}

    // Throws std::bad_alloc.
    static std::shared_ptr<Turns> of(const std::string& database);

    ThreadQueue threads;
    ProcessQueue processes;  // used by the thread that has the lock of threads
};

// Holds a turn until it is destroyed. A thread that doesn't get its turn in time proceeds without.
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
