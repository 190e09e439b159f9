#include <string>
#include <string_view>

#include "console-manager/device.h"
#include "system/text_fields.h"
#include "system/text_file.h"

long double CML_getUpTime(void) {
    const std::string text = readText("/proc/uptime");
    std::string_view rest = text;
    double seconds = 0;
    takeNumber(rest, seconds);
    return seconds;
}
