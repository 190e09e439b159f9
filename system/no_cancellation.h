#pragma once

#include <pthread.h>

// Defers the cancellation of the calling thread: one that is cancelled in the middle would keep the
// locks that it holds.
class NoCancellation {
  public:
    NoCancellation() {
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
        ++depth;
    }
    ~NoCancellation() {
        --depth;
        pthread_setcancelstate(before, nullptr);
    }
    NoCancellation(const NoCancellation&) = delete;
    NoCancellation& operator=(const NoCancellation&) = delete;

    // Whether the calling thread is in the middle, as it is in a signal handler that interrupts it.
    static bool isOn() { return depth > 0; }

  private:
    inline static thread_local int depth = 0;
    int before = PTHREAD_CANCEL_ENABLE;
};
