#include <console-manager/settings.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "child.h"
#include "quiet.h"
#include "setting.h"

namespace fs = std::filesystem;

namespace {

// Returns who holds a lock on these bytes of a file that conflicts with one of that type, or an
// empty text.
std::string holderOf(const std::string& path, short type, off_t start, off_t length) {
    struct flock lock = {
        .l_type = type, .l_whence = SEEK_SET, .l_start = start, .l_len = length, .l_pid = 0};
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool held = fcntl(file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    close(file);
    return !held            ? ""
           : lock.l_pid > 0 ? "process " + std::to_string(lock.l_pid)
                            : "another process";
}

// SQLite locks certain bytes of the database. With a write-ahead log, readers don't block writers,
// and writers lock bytes of the log's index.
std::string lockOf(const std::string& path) {
    constexpr off_t kPendingByte = 0x40000000;
    constexpr off_t kLockBytes = 512;
    constexpr off_t kIndexLockBytes = 120;
    const bool writesAhead = fs::exists(path + "-wal");
    const std::string holder =
        holderOf(path, writesAhead ? F_RDLCK : F_WRLCK, kPendingByte, kLockBytes);
    return writesAhead && holder.empty() ? holderOf(path + "-shm", F_RDLCK, kIndexLockBytes, 8)
                                         : holder;
}

bool isDatabase(const fs::path& file) {
    constexpr const char kMagic[] = "SQLite format 3";
    char magic[sizeof kMagic] = {};
    std::ifstream(file).read(magic, sizeof magic);
    return std::memcmp(magic, kMagic, sizeof magic) == 0;
}

// Returns why a database can't be used, or an empty text if the file shows no cause.
std::string causeOf(const fs::path& file) {
    constexpr uintmax_t kLeastRoom = 65536;  // for a write-ahead log and its index
    fs::path folder = file.parent_path();    // or the nearest one that exists
    while (access(folder.c_str(), F_OK) != 0 && errno == ENOENT) {
        folder = folder.parent_path();
    }
    // Readers need both rights, because they write to the log's index.
    for (const fs::path& path : {folder, file}) {
        if (access(path.c_str(), R_OK | W_OK) != 0 && errno != ENOENT) {
            const std::string cause = std::strerror(errno);
            return path == file ? cause : path.string() + ": " + cause;
        }
    }
    std::error_code ignored;
    const bool exists = fs::exists(file, ignored);
    if (exists && fs::file_size(file, ignored) != 0 && !isDatabase(file)) {
        return "it is no database";
    }
    if (const std::string holder = exists ? lockOf(file) : ""; !holder.empty()) {
        return "it is locked by " + holder;
    }
    return fs::space(folder, ignored).available < kLeastRoom ? "its disk is full"
           : exists                                          ? ""
                                                             : "it can't be made";
}

std::string nameOf(const Database& database) {
    return std::string("the ") + database.name + " database " + database.path;
}

}  // namespace

const Database kPersistent = {"persistent", "/mnt/vex-data/m7/console-manager.db", [] {
                                  char** const nodes = DAL_CML_listHomeScreenIconsNodes();
                                  take(nodes);
                                  return nodes != nullptr;
                              }};
const Database kVolatile = {"volatile", "/tmp/m7/console-manager.db", [] {
                                int32_t value = 0;
                                return DAL_CML_getAutoTheme(&value) == 0;
                            }};

// In a child process, because closing a file releases all locks that the process has on it, those
// of the library too.
std::string seenFromOutside(const Database& database) {
    return saidByChild([&] { std::fputs(causeOf(database.path).c_str(), stderr); });
}

std::string whyFailed(const Database& database) {
    const Quiet quiet;
    const std::string cause = seenFromOutside(database);
    return "in " + nameOf(database) + ": " +
           (!cause.empty()      ? cause
            : database.isRead() ? "the data access library refuses it"
                                : "it is damaged");
}

Json troubleOf(const Database& database) {
    const Quiet quiet;  // the library would log the failure
    if (database.isRead()) {
        return nullptr;
    }
    const std::string cause = seenFromOutside(database);
    // A data access library may fail a getter when nothing is stored.
    return cause.empty() && &database == &kVolatile
               ? Json()
               : Json(nameOf(database) +
                      " can't be used: " + (cause.empty() ? "it is damaged" : cause));
}
