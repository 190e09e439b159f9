#include <fstream>

#include "console-manager/device.h"

long double CML_getUpTime(void) {
    double seconds = 0;
    std::ifstream file("/proc/uptime");
    file.imbue(std::locale::classic());
    file >> seconds;
    return seconds;
}
