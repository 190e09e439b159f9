#include <string>
#include <string_view>

#include "console-manager/device.h"
#include "system/text_fields.h"
#include "system/text_file.h"

int32_t CML_getMemoryInformation(int32_t* memTotal, int32_t* memFree) {
    const std::string text = readText("/proc/meminfo");
    for (std::string_view rest = text; !rest.empty();) {
        std::string_view line = takeLine(rest);
        const std::string_view label = takeWord(line);
        int32_t* const value = label == "MemTotal:"  ? memTotal
                               : label == "MemFree:" ? memFree
                                                     : nullptr;
        int32_t number = 0;
        if (value != nullptr && takeNumber(line, number)) {
            *value = number;
        }
    }
    return 0;
}
