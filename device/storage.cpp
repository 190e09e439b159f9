#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "console-manager/device.h"

namespace {

struct PipeCloser {
    void operator()(FILE* pipe) const { pclose(pipe); }
};

std::string outputOf(const char* command) {
    const std::unique_ptr<FILE, PipeCloser> pipe(popen(command, "r"));
    if (!pipe) {
        throw std::runtime_error("popen() failed!");
    }
    std::string output;
    char piece[128];
    while (std::fgets(piece, sizeof piece, pipe.get()) != nullptr) {
        output += piece;
    }
    return output;
}

}  // namespace

int32_t CML_getStorageInfo(uint32_t* totalBlocks, uint32_t* usedBlocks) {
    *totalBlocks = 0;
    *usedBlocks = 0;
    std::istringstream output(outputOf("df -k /mnt/vex-data"));
    std::istringstream fields;
    fields.imbue(std::locale::classic());
    for (std::string line; std::getline(output, line);) {
        fields.clear();
        fields.str(line);
        std::string source;
        // A line that fails half-way has written what it had; the next one is tried all the same.
        if (fields >> source && source.starts_with("/dev/") &&
            fields >> *totalBlocks >> *usedBlocks) {
            break;
        }
    }
    return 0;
}
