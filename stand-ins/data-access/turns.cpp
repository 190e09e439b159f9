#include "stand-ins/data-access/turns.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <utility>

namespace {

constexpr off_t kTurn = 0;
constexpr off_t kLast = 15;

// Never: some file systems have no locks.
enum class Locked { Yes, NotNow, Never };

struct flock placesFrom(off_t first, off_t count, short type) {
    struct flock places {};
    places.l_type = type;
    places.l_whence = SEEK_SET;
    places.l_start = first;
    places.l_len = count;
    return places;
}

Locked lock(int file, off_t place) {
    const struct flock one = placesFrom(place, 1, F_WRLCK);
    if (fcntl(file, F_SETLK, &one) == 0) {
        return Locked::Yes;
    }
    return errno == EAGAIN || errno == EACCES ? Locked::NotNow : Locked::Never;
}

void unlock(int file, off_t place) {
    const struct flock one = placesFrom(place, 1, F_UNLCK);
    fcntl(file, F_SETLK, &one);
}

// Returns another process that has one of the places, or kNobody. The kernel reports a process of
// another namespace as 0, and an OFD lock as -1.
constexpr pid_t kNobody = -2;
pid_t holderOf(int file, off_t first, off_t count) {
    struct flock places = placesFrom(first, count, F_WRLCK);
    return fcntl(file, F_GETLK, &places) != 0 || places.l_type == F_UNLCK ? kNobody : places.l_pid;
}

// Creates the file with the owner and the mode of the database, as SQLite does with its own files.
int openBeside(const std::string& database, const std::string& path) {
    struct stat like {};
    constexpr int kFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW;
    if (stat(database.c_str(), &like) != 0) {
        return -1;
    }
    const mode_t mode = like.st_mode & ACCESSPERMS;
    const int made = open(path.c_str(), kFlags | O_CREAT | O_EXCL, mode);
    if (made < 0) {
        return errno == EEXIST ? open(path.c_str(), kFlags) : -1;
    }
    // Only root can change the owner, and only a file made by root needs that.
    [[maybe_unused]] const bool given =
        fchmod(made, mode) == 0 && fchown(made, like.st_uid, like.st_gid) == 0;
    return made;
}

}  // namespace

bool ThreadQueue::enter(Clock::time_point deadline) {
    std::unique_lock lock(mutex);
    if (!isHeld) {
        isHeld = true;
        return true;
    }
    Waiter self;
    *linkTo(nullptr) = &self;
    if (self.called.wait_until(lock, deadline, [&] { return self.isNext; })) {
        return true;
    }
    *linkTo(&self) = self.behind;
    return false;
}

void ThreadQueue::leave() {
    const std::lock_guard guard(mutex);
    isHeld = first != nullptr;
    if (isHeld) {
        Waiter& next = *first;
        first = next.behind;
        next.isNext = true;
        // With the mutex held, because the waiter is destroyed once it has seen isNext.
        next.called.notify_one();
    }
}

ThreadQueue::Waiter** ThreadQueue::linkTo(const Waiter* waiter) {
    Waiter** link = &first;
    while (*link != waiter) {
        link = &(*link)->behind;
    }
    return link;
}

int ProcessQueue::descriptor() {
    if (!file || !file->isOpen()) {
        file.emplace(database.empty() ? -1 : openBeside(database, path));
    }
    return file->get();
}

// Whether no process waits for the turn. Checking takes as long as locking, so a check is valid for
// 1 ms.
bool ProcessQueue::isAlone(Clock::time_point now) {
    if (now < nextLook) {
        return true;
    }
    if (holderOf(file->get(), kTurn + 1, kLast) != kNobody) {
        return false;
    }
    nextLook = now + std::chrono::milliseconds(1);
    return true;
}

// Moves up from place to place. Returns nothing if it gets the turn, otherwise the process that
// keeps the place before.
std::optional<ProcessQueue::Holder> ProcessQueue::wait(Clock::time_point deadline) {
    std::optional<Holder> keeping;
    for (off_t place = kLast; place >= kTurn && !keeping; --place) {
        const Moments moments(deadline);
        while (!keeping && lock(file->get(), place) == Locked::NotNow) {
            if (!moments.pass()) {
                keeping = {place, holderOf(file->get(), place, 1)};
            }
        }
        unlock(file->get(), place + 1);
    }
    return keeping;
}

void ProcessQueue::enter(Clock::time_point now, Clock::time_point deadline) {
    const Locked atOnce = lock(descriptor(), kTurn);
    if (atOnce == Locked::Never || (atOnce == Locked::Yes && isAlone(now))) {
        stopped.reset();
        return;
    }
    if (atOnce == Locked::Yes) {
        unlock(file->get(), kTurn);
    }
    const pid_t holder = stopped ? holderOf(file->get(), stopped->place, 1) : kNobody;
    if (holder == kNobody || holder != stopped->process) {
        stopped = wait(deadline);
    }
}

void ProcessQueue::leave() {
    unlock(file->get(), kTurn);
}

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
    if (turns->threads.enter(deadline)) {
        held = turns;
        turns->processes.enter(now, deadline);
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
