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
    const std::unique_ptr<FILE, DeletedBy<pclose>> pipe(popen(command, "r"));
    if (!pipe) {
        throw std::runtime_error("popen() failed!");
    }
    return readText(fileno(pipe.get()));
}

// What fgets with a buffer of 128 bytes would make of it: a piece is a line or 127 bytes of it, and
// counts up to its first NUL. fgets itself loses what it has read when a signal comes.
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
        // A line that fails half-way has written what it had; the next one is tried all the same.
        if (takeWord(line).starts_with("/dev/") && takeNumber(line, *totalBlocks) &&
            takeNumber(line, *usedBlocks)) {
            break;
        }
    }
    return 0;
}
