#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "console-manager/device.h"
#include "system/deleted_by.h"
#include "system/text_fields.h"
#include "system/text_file.h"

namespace {

std::string outputOf(const char* command) {
    const std::unique_ptr<FILE, DeletedBy<pclose>> pipe(popen(command, "re"));
    if (!pipe) {
        throw std::runtime_error("popen() failed!");
    }
    return readText(fileno(pipe.get()));
}

// Returns what fgets with a buffer of 128 bytes would read: each piece is a line, or 127 bytes of
// one, up to its first NUL. fgets itself drops what it has read when a signal arrives.
std::string withoutNuls(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const std::string_view piece = bytes.substr(0, std::min<size_t>(bytes.find('\n'), 126) + 1);
        text += piece.substr(0, piece.find('\0'));
        bytes.remove_prefix(piece.size());
    }
    return text;
}

}  // namespace

int32_t CML_getStorageInfo(uint32_t* totalBlocks, uint32_t* usedBlocks) {
    *totalBlocks = 0;
    *usedBlocks = 0;
    const std::string output = withoutNuls(outputOf("df -k /mnt/vex-data"));
    for (std::string_view rest = output; !rest.empty();) {
        std::string_view line = takeLine(rest);
        // A line without a second number has set *totalBlocks; the next line may still set both.
        if (takeWord(line).starts_with("/dev/") && takeNumber(line, *totalBlocks) &&
            takeNumber(line, *usedBlocks)) {
            break;
        }
    }
    return 0;
}
