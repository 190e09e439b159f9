#include <console-manager/settings.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "messages.h"
#include "setting.h"

namespace fs = std::filesystem;

namespace {

// Returns who keeps the library from locking a database, or an empty text. SQLite locks these bytes
// of the file; with a write-ahead log, readers don't block writers, and writers lock the other
// bytes in the index of the log.
std::string holderOf(const std::string& path) {
    const short type = fs::exists(path + "-wal") ? F_RDLCK : F_WRLCK;
    struct flock ofFile = {type, SEEK_SET, 0x40000000, 512, 0};
    struct flock ofIndex = {F_RDLCK, SEEK_SET, 120, 8, 0};
    for (const auto& [name, lock] :
         {std::pair(path, &ofFile), std::pair(path + "-shm", &ofIndex)}) {
        const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
        const bool isHeld = fcntl(file, F_GETLK, lock) == 0 && lock->l_type != F_UNLCK;
        close(file);
        if (isHeld) {
            return lock->l_pid > 0 ? "process " + std::to_string(lock->l_pid) : "another process";
        }
    }
    return "";
}

bool isDatabase(const fs::path& file) {
    std::string magic(15, '\0');
    std::ifstream(file).read(magic.data(), std::ssize(magic));
    return magic == "SQLite format 3";
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
    if (const std::string holder = exists ? holderOf(file) : ""; !holder.empty()) {
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

std::string failureOf(const std::string& what, const Place& place) {
    const Quiet quiet;
    const Database& database = *place.setting->database;
    const std::string cause = seenFromOutside(database);
    return "can't " + what + " " + nameOf(place) + " in " + nameOf(database) + ": " +
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
