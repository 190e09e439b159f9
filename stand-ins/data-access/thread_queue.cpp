#include "stand-ins/data-access/thread_queue.h"

bool ThreadQueue::enter(Clock::time_point deadline) {
    std::unique_lock lock(mutex);
    if (!isHeld) {
        isHeld = true;
        return true;
    }
    Waiter self;
    append(self);
    if (self.called.wait_until(lock, deadline, [&] { return self.isNext; })) {
        return true;
    }
    remove(self);
    return false;
}

void ThreadQueue::leave() {
    const std::lock_guard guard(mutex);
    isHeld = first != nullptr;
    if (isHeld) {
        Waiter& next = *first;
        first = next.behind;
        next.isNext = true;
        // With the mutex held: the waiter is gone once it has seen that it is next.
        next.called.notify_one();
    }
}

void ThreadQueue::append(Waiter& waiter) {
    Waiter** end = &first;
    while (*end != nullptr) {
        end = &(*end)->behind;
    }
    *end = &waiter;
}

void ThreadQueue::remove(const Waiter& waiter) {
    Waiter** place = &first;
    while (*place != &waiter) {
        place = &(*place)->behind;
    }
    *place = waiter.behind;
}
