#include "stand-ins/data-access/process_queue.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

// What a record lock can come to; some file systems have none.
enum class Locked { kYes, kNotNow, kNever };

Locked lock(int file, short type, off_t place, off_t count) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = place;
    range.l_len = count;
    if (fcntl(file, F_SETLK, &range) == 0) {
        return Locked::kYes;
    }
    return errno == EAGAIN || errno == EACCES ? Locked::kNotNow : Locked::kNever;
}

Locked lock(int file, off_t place, off_t count = 1) {
    return lock(file, F_WRLCK, place, count);
}

void unlock(int file, off_t place, off_t count = 1) {
    lock(file, F_UNLCK, place, count);
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

constexpr off_t kTurn = 0;
constexpr off_t kPlaces =
    8;  // the turn and those in front of it; more processes get in in any order

}  // namespace

int ProcessQueue::descriptor() {
    if (!file || !file->isOpen()) {
        file.emplace(database.empty() ? -1 : openBeside(database, path));
    }
    return file->get();
}

bool ProcessQueue::enter(Clock::time_point deadline) {
    const int places = descriptor();
    switch (lock(places, kTurn, kPlaces)) {
        case Locked::kYes:
            unlock(places, kTurn + 1, kPlaces - 1);
            return true;
        case Locked::kNever:
            return true;
        case Locked::kNotNow:
            break;
    }
    for (off_t place = kPlaces - 1; place >= kTurn; --place) {
        const Moments moments(deadline);
        while (lock(places, place) == Locked::kNotNow) {
            if (!moments.pass()) {
                unlock(places, kTurn, kPlaces);
                return false;
            }
        }
        if (place < kPlaces - 1) {
            unlock(places, place + 1);
        }
    }
    return true;
}

void ProcessQueue::leave() {
    unlock(file->get(), kTurn);
}
