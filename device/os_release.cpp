#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "console-manager/device.h"
#include "system/text_fields.h"
#include "system/text_file.h"

// Also when the header withholds the declaration from a build with _GLIBCXX_DEBUG.
extern "C" {
__attribute__((visibility("default"))) std::map<std::string, std::string> os_release;
}

namespace {

std::mutex writing;

std::string_view withoutQuotes(std::string_view value) {
    if (value.size() < 2 || value.front() != '"' || value.back() != '"') {
        return value;
    }
    return value.substr(1, value.size() - 2);
}

void readOsRelease() {
    if (!os_release.empty()) {
        return;
    }
    // Moved in whole: an exception half-way must not leave a map that counts as read.
    std::map<std::string, std::string> entries;
    const std::string text = readText("/etc/os-release");
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = takeLine(rest);
        const size_t separator = line.find('=');
        if (separator != std::string_view::npos) {
            entries[std::string(line.substr(0, separator))] =
                withoutQuotes(line.substr(separator + 1));
        }
    }
    os_release = std::move(entries);
}

// Entering an absent key keeps the map from being empty, so that a missing file isn't looked for
// again. An entry never moves, and so the text stays good when others are entered.
const char* valueOf(const char* key) {
    const std::lock_guard lock(writing);
    readOsRelease();
    return os_release[key].c_str();
}

}  // namespace

const char* CML_getBuildType(void) {
    return valueOf("BUILD_MODE");
}

const char* CML_getProductID(void) {
    return valueOf("ID");
}

const char* CML_getBuildId(void) {
    return valueOf("BUILD_ID");
}

const char* CML_getMachineName(void) {
    return valueOf("MACHINE");
}

const char* CML_getProductRelease(void) {
    return valueOf("VERSION");
}
