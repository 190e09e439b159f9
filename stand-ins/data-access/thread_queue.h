#pragma once

#include <condition_variable>
#include <mutex>

#include "stand-ins/data-access/wait.h"

// A lock that the threads of a process get in the order in which they ask for it. It needs no
// memory but its waiters' own.
class ThreadQueue {
  public:
    // False, and nothing is held, if the deadline comes first.
    bool enter(Clock::time_point deadline);
    void leave();

  private:
    struct Waiter {
        std::condition_variable called;
        bool isNext = false;
        Waiter* behind = nullptr;
    };
    void append(Waiter& waiter);
    void remove(const Waiter& waiter);

    std::mutex mutex;
    bool isHeld = false;
    Waiter* first = nullptr;
};
