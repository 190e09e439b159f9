#include <fstream>
#include <sstream>
#include <string>

#include "console-manager/device.h"

int32_t CML_getMemoryInformation(int32_t* memTotal, int32_t* memFree) {
    std::ifstream file("/proc/meminfo");
    std::istringstream fields;
    fields.imbue(std::locale::classic());
    for (std::string line; std::getline(file, line);) {
        // Taking all of some fifty lines apart would take as long as the kernel takes to write
        // them.
        if (line.find("Mem") == std::string::npos) {
            continue;
        }
        fields.clear();
        fields.str(line);
        std::string label;
        int32_t number;
        if (!(fields >> label >> number)) {
            continue;
        }
        if (label == "MemTotal:") {
            *memTotal = number;
        } else if (label == "MemFree:") {
            *memFree = number;
        }
    }
    return 0;
}
