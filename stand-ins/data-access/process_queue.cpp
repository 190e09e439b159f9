#include "stand-ins/data-access/process_queue.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

// What a lock can come to; some file systems have none.
enum class Locked { kYes, kNotNow, kNever };

Locked outcome(int result) {
    if (result == 0) {
        return Locked::kYes;
    }
    return errno == EWOULDBLOCK || errno == EACCES ? Locked::kNotNow : Locked::kNever;
}

struct flock placesOf(short type, off_t first, off_t count) {
    struct flock places {};
    places.l_type = type;
    places.l_whence = SEEK_SET;
    places.l_start = first;
    places.l_len = count;
    return places;
}

constexpr off_t kTurn = 0;
constexpr off_t kLast = 15;  // more processes than have a place get in in any order

Locked lock(int file, off_t place) {
    if (place == kTurn) {
        return outcome(flock(file, LOCK_EX | LOCK_NB));
    }
    const struct flock one = placesOf(F_WRLCK, place, 1);
    return outcome(fcntl(file, F_SETLK, &one));
}

void unlock(int file, off_t place) {
    if (place == kTurn) {
        flock(file, LOCK_UN);
        return;
    }
    const struct flock one = placesOf(F_UNLCK, place, 1);
    fcntl(file, F_SETLK, &one);
}

bool somebodyWaits(int file) {
    struct flock all = placesOf(F_WRLCK, kTurn + 1, kLast);
    return fcntl(file, F_GETLK, &all) == 0 && all.l_type != F_UNLCK;
}

// For whoever may use the database, as SQLite does with its own files beside it.
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
    // Only root may give a file away, and only root has to.
    [[maybe_unused]] const bool given =
        fchmod(made, mode) == 0 && fchown(made, like.st_uid, like.st_gid) == 0;
    return made;
}

}  // namespace

int ProcessQueue::descriptor() {
    if (!file || !file->isOpen()) {
        file.emplace(database.empty() ? -1 : openBeside(database, path));
    }
    return file->get();
}

// Whether the turn that has been taken at once may be kept.
bool ProcessQueue::isKept(Clock::time_point now) {
    if (now < nextLook) {
        return true;
    }
    if (somebodyWaits(file->get())) {
        return false;
    }
    nextLook = now + std::chrono::milliseconds(1);
    return true;
}

bool ProcessQueue::enter(Clock::time_point now, Clock::time_point deadline) {
    const int places = descriptor();
    const Locked atOnce = lock(places, kTurn);
    if (atOnce == Locked::kNever || (atOnce == Locked::kYes && isKept(now))) {
        return true;
    }
    if (atOnce == Locked::kYes) {
        unlock(places, kTurn);
    }
    for (off_t place = kLast; place >= kTurn; --place) {
        const Moments moments(deadline);
        bool inTime = true;
        while (inTime && lock(places, place) == Locked::kNotNow) {
            inTime = moments.pass();
        }
        if (place < kLast) {
            unlock(places, place + 1);
        }
        if (!inTime) {
            return false;
        }
    }
    return true;
}

void ProcessQueue::leave() {
    unlock(file->get(), kTurn);
}
