#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "console-manager/network.h"
#include "system/deleted_by.h"

namespace {

using Name = std::unique_ptr<char, DeletedBy<std::free>>;

// Lists every entry, whatever its kind. Throws std::filesystem::filesystem_error.
std::vector<Name> readNames(bool onlyActive) {
    std::vector<Name> names;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/net")) {
        const std::filesystem::path name = entry.path().filename();
        if (onlyActive && CML_checkNetworkPortActive(name.c_str()) == 0) {
            continue;
        }
        Name copy(strdup(name.c_str()));
        if (!copy) {
            return {};
        }
        names.push_back(std::move(copy));
    }
    return names;
}

int compareNames(const void* a, const void* b) {
    return std::strcmp(*static_cast<const char* const*>(a), *static_cast<const char* const*>(b));
}

// Returns the sorted names as the caller owns them, or null if there are none.
char** toArray(std::vector<Name> names) {
    if (names.empty()) {
        return nullptr;
    }
    auto** const list = static_cast<char**>(std::malloc((names.size() + 1) * sizeof(char*)));
    if (list == nullptr) {
        return nullptr;
    }
    char** const end =
        std::transform(names.begin(), names.end(), list, [](Name& name) { return name.release(); });
    *end = nullptr;
    std::qsort(list, names.size(), sizeof *list, compareNames);
    return list;
}

}  // namespace

char** CML_getNetworkPortsList(int32_t onlyActive) {
    try {
        return toArray(readNames(onlyActive != 0));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
