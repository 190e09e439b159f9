#include "stand-ins/data-access/turn.h"

#include <map>
#include <mutex>
#include <utility>

std::shared_ptr<Turns> Turns::of(const std::string& database) {
    static std::mutex mutex;
    static auto& all = *new std::map<std::string, std::weak_ptr<Turns>>;
    const std::lock_guard guard(mutex);
    std::weak_ptr<Turns>& known = all[database];
    std::shared_ptr<Turns> turns = known.lock();
    if (!turns) {
        turns = std::make_shared<Turns>(database);
        known = turns;
    }
    return turns;
}

Turn::Turn(const std::shared_ptr<Turns>& turns, Clock::time_point now) {
    const auto deadline = now + kLongestWaitForTurn;
    if (!turns->threads.enter(deadline)) {
        return;
    }
    if (turns->processes.enter(now, deadline)) {
        held = turns;
    } else {
        turns->threads.leave();
    }
}

Turn::~Turn() {
    if (held) {
        held->processes.leave();
        held->threads.leave();
    }
}

Turn& Turn::operator=(Turn&& other) noexcept {
    std::swap(held, other.held);
    return *this;
}
