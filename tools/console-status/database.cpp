#include <console-manager/settings.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "quiet.h"
#include "setting.h"

namespace fs = std::filesystem;

const Database kPersistent = {"persistent", "/mnt/vex-data/m7/console-manager.db",
                              DAL_CML_getTheme};
const Database kVolatile = {"volatile", "/tmp/m7/console-manager.db", DAL_CML_getAutoTheme};

std::string whyUnusable(const Database& database) {
    const fs::path file = database.path;
    fs::path folder = file.parent_path();  // or the nearest above, in which it has to be made
    while (access(folder.c_str(), F_OK) != 0 && errno == ENOENT) {
        folder = folder.parent_path();
    }
    // The journal beside the file has to be written even by those who only read.
    for (const fs::path& path : {folder, file}) {
        if (access(path.c_str(), R_OK | W_OK) != 0 && errno != ENOENT) {
            return path.string() + ": " + std::strerror(errno);
        }
    }
    std::error_code ignored;
    return fs::space(folder, ignored).available == 0 ? "its disk is full"
           : !fs::exists(file, ignored)              ? "it can't be made"
                                                     : "it is damaged, or another process holds it";
}

Json troubleOf(const Database& database) {
    const Quiet quiet;  // the library tells less, and as often as it is asked
    int32_t value = 0;
    return database.get(&value) == 0
               ? Json()
               : Json(std::string("the ") + database.name + " database " + database.path +
                      " can't be used: " + whyUnusable(database));
}
