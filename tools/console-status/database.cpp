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

int32_t askPersistent() {
    int32_t value = 0;
    return DAL_CML_getTheme(&value);
}

int32_t askVolatile() {
    int32_t value = 0;
    return DAL_CML_getAutoTheme(&value);
}

// What the library's results mean, whose numbers are those of SQLite; null for all others.
const char* knownMeaning(int32_t result) {
    switch (result) {
        case 5:
            return "another process is writing";
        case 7:
            return "there is no memory left";
        case 8:
            return "it may only be read";
        case 10:
            return "its disk fails";
        case 11:
        case 26:
            return "it is damaged";
        case 13:
            return "its disk is full";
        default:
            return nullptr;
    }
}

// Empty if the rights are there.
std::string refusal(const fs::path& path, int rights) {
    return access(path.c_str(), rights) == 0 ? "" : path.string() + ": " + std::strerror(errno);
}

// Why there is no such file.
std::string whyMissing(const fs::path& file) {
    std::error_code ignored;
    fs::path folder = file.parent_path();
    while (!fs::exists(folder, ignored) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    if (!fs::is_directory(folder, ignored)) {
        return folder.string() + " is no folder";
    }
    const std::string why = refusal(folder, W_OK | X_OK);
    return "there is none, and it can't be made" + (why.empty() ? "" : " in " + why);
}

// Why a file that is there can't be used.
std::string whyUnusable(const fs::path& file) {
    // The journal beside it has to be written even by those who only read.
    for (const auto& [path, rights] :
         {std::pair(file, R_OK | W_OK), std::pair(file.parent_path(), W_OK | X_OK)}) {
        if (std::string why = refusal(path, rights); !why.empty()) {
            return why;
        }
    }
    std::error_code ignored;
    if (fs::space(file, ignored).available == 0) {
        return "its disk is full";
    }
    return "it is damaged, or no database, or another process holds it";
}

}  // namespace

const Database kPersistent = {"persistent", "/mnt/vex-data/m7/console-manager.db", askPersistent};
const Database kVolatile = {"volatile", "/tmp/m7/console-manager.db", askVolatile};

std::string meaningOf(int32_t result) {
    const char* const meaning = knownMeaning(result);
    return meaning != nullptr ? meaning : "error " + std::to_string(result);
}

std::optional<std::string> troubleOf(const Database& database) {
    // The library tells less, and as often as it is asked.
    const Quiet quiet;
    const int32_t result = database.ask();
    if (result == 0) {
        return std::nullopt;
    }
    std::string why;
    if (const char* const meaning = knownMeaning(result)) {
        why = meaning;
    } else {
        const bool isThere = access(database.path, F_OK) == 0 || errno == EACCES;
        why = isThere ? whyUnusable(database.path) : whyMissing(database.path);
    }
    return std::string("the ") + database.name + " database " + database.path +
           " can't be used: " + why;
}
