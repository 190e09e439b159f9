#include <console-manager/settings.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "quiet.h"
#include "setting.h"

namespace {

namespace fs = std::filesystem;

template <auto kGet>
int32_t ask() {
    int32_t value = 0;
    return kGet(&value);
}

// What every database file begins with, if anything has been written to it.
bool hasHeader(const fs::path& file) {
    char head[16] = "SQLite format 3";
    std::ifstream(file).read(head, sizeof head);
    return std::memcmp(head, "SQLite format 3", sizeof head) == 0;
}

}  // namespace

const Database kPersistent = {"persistent", "/mnt/vex-data/m7/console-manager.db",
                              ask<DAL_CML_getTheme>};
const Database kVolatile = {"volatile", "/tmp/m7/console-manager.db", ask<DAL_CML_getAutoTheme>};

std::string whyUnusable(const Database& database) {
    const fs::path file = database.path;
    fs::path nearest = file;  // that, or the folder in which it has to be made
    while (access(nearest.c_str(), F_OK) != 0 && errno != EACCES) {
        nearest = nearest.parent_path();
    }
    const bool isThere = nearest == file;
    std::error_code ignored;
    if (!isThere && !fs::is_directory(nearest, ignored)) {
        return nearest.string() + " is no folder";
    }
    const std::string start = isThere ? "" : "there is none, and it can't be made in ";
    // The journal beside the file has to be written even by those who only read.
    for (const fs::path& path : {nearest, isThere ? file.parent_path() : nearest}) {
        if (access(path.c_str(), R_OK | W_OK) != 0) {
            return start + path.string() + ": " + std::strerror(errno);
        }
    }
    return fs::space(nearest, ignored).available == 0 ? "its disk is full"
           : !isThere                                 ? start + nearest.string()
           : hasHeader(file)                          ? "it is damaged, or another process holds it"
                                                      : "it is damaged, or no database";
}

std::optional<std::string> troubleOf(const Database& database) {
    const Quiet quiet;  // the library tells less, and as often as it is asked
    return database.ask() == 0
               ? std::nullopt
               : std::optional(std::string("the ") + database.name + " database " + database.path +
                               " can't be used: " + whyUnusable(database));
}
