#pragma once

#include <pthread.h>

// Defers the cancellation of the calling thread: one that is cancelled in the middle would keep the
// locks that it holds.
class NoCancellation {
  public:
    NoCancellation() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before); }
    ~NoCancellation() { pthread_setcancelstate(before, nullptr); }
    NoCancellation(const NoCancellation&) = delete;
    NoCancellation& operator=(const NoCancellation&) = delete;

  private:
    int before = PTHREAD_CANCEL_ENABLE;
};
