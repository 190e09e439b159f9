// How long a call may wait for others, and how it does.
#pragma once

#include <algorithm>
#include <chrono>
#include <thread>

using Clock = std::chrono::steady_clock;

// For all that a call waits for in a database, and of that for its turn: a program that has been
// stopped while it had the turn costs the others time and no more.
constexpr Clock::duration kLongestWait = std::chrono::seconds(10);
constexpr Clock::duration kLongestWaitForTurn = std::chrono::seconds(5);

// The moments between the tries for something whose end nobody tells. They grow with the time that
// has been waited, so that little is lost by them, whether a lock lasts for half a millisecond or
// for a minute.
class Moments {
  public:
    explicit Moments(Clock::time_point deadline) : end(deadline) {}
    explicit Moments(Clock::duration longest) : end(begin + longest) {}

    // Sleeps for a moment; false, at once, if the time is over.
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

    Clock::time_point start() const { return begin; }
    Clock::time_point deadline() const { return end; }

  private:
    Clock::time_point begin = Clock::now();
    Clock::time_point end;
};
