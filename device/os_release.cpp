#include <fcntl.h>

#include <cerrno>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "console-manager/device.h"
#include "system/descriptor.h"
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

// Fills an empty map. Returns false if the file exists but cannot be opened, as for want of a
// descriptor: the next call tries again.
bool readOsRelease() {
    if (!os_release.empty()) {
        return true;
    }
    const Descriptor file(open("/etc/os-release", O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {
        return errno == ENOENT;
    }
    // Moved as a whole: after an exception half-way the map must still be empty.
    std::map<std::string, std::string> entries;
    const std::string text = readText(file.get());
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = takeLine(rest);
        const size_t separator = line.find('=');
        if (separator != std::string_view::npos) {
            entries[std::string(line.substr(0, separator))] =
                withoutQuotes(line.substr(separator + 1));
        }
    }
    os_release = std::move(entries);
    return true;
}

// The lookup enters an absent key, so the map is no longer empty and the file is not read again. An
// entry never moves, so its text stays valid when others are entered.
const char* valueOf(const char* key) {
    const std::lock_guard lock(writing);
    return readOsRelease() ? os_release[key].c_str() : "";
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
