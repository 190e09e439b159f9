#include <console-manager/device.h>

#include <chrono>
#include <cinttypes>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

#include "sections.h"
#include "table.h"

namespace {

__attribute__((format(printf, 1, 2))) std::string format(const char* pattern, ...) {
    char text[64];
    std::va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

// A ratio of 0 to 1; NaN where there is nothing to divide.
std::string percentage(double ratio) {
    return std::isnan(ratio) ? "-" : format("%.1f %%", 100 * ratio);
}

std::string mebibytes(uint32_t kibibytes) {
    return format("%.1f MiB", kibibytes / 1024.0);
}

std::string readableUpTime() {
    const long double upTime = CML_getUpTime();
    if (upTime == 0) {
        return "-";  // it couldn't be read
    }
    const auto seconds = static_cast<int64_t>(upTime);
    const int64_t minutes = seconds / 60;
    const int64_t hours = minutes / 60;
    const int64_t days = hours / 24;
    return format("%" PRId64 " d %02" PRId64 ":%02" PRId64 ":%02" PRId64, days, hours % 24,
                  minutes % 60, seconds % 60);
}

void reportSoftware() {
    char* kernel = nullptr;
    char* version = nullptr;
    CML_getLinuxReleaseInformation(&kernel, &version);
    Table software({"Software", ""});
    software.add({"Product", orDash(CML_getProductID())});
    software.add({"Release", orDash(CML_getProductRelease())});
    software.add({"Build", orDash(CML_getBuildId())});
    software.add({"Build type", orDash(CML_getBuildType())});
    software.add({"Machine", orDash(CML_getMachineName())});
    software.add({"Kernel", orDash(kernel)});
    software.add({"Kernel version", orDash(version)});
    software.add({"Up-time", readableUpTime()});
    software.print();
    std::free(kernel);
    std::free(version);
}

// A total of 0 stands for a size that couldn't be read.
void addSpace(Table& space, const char* name, uint32_t total, uint32_t used) {
    if (total == 0) {
        space.add({name, "-", "-", "-"});
        return;
    }
    space.add({name, mebibytes(total), mebibytes(used), percentage(1.0 * used / total)});
}

void reportSpace() {
    int32_t memTotal = 0;
    int32_t memFree = 0;
    CML_getMemoryInformation(&memTotal, &memFree);
    uint32_t totalBlocks = 0;
    uint32_t usedBlocks = 0;
    try {
        CML_getStorageInfo(&totalBlocks, &usedBlocks);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "console-status: storage: %s\n", error.what());
    }
    Table space({"Space", ">Size", ">In use", ">Share"});
    addSpace(space, "Memory", static_cast<uint32_t>(memTotal),
             static_cast<uint32_t>(memTotal - memFree));
    addSpace(space, "Storage", totalBlocks, usedBlocks);
    space.print();
}

void reportLoad() {
    int32_t count = 0;
    const long double* usage = CML_getAllCPUUsage(&count);
    // A single figure is that of a first call, which has no interval yet, or of a file that can't
    // be read: every machine has a figure for the whole and one for each core.
    if (count == 1) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        usage = CML_getAllCPUUsage(&count);
    }
    Table load({"Processor", ">Load"});
    for (int32_t i = 0; i < count; ++i) {
        load.add({i == 0 ? "All cores" : format("Core %d", i - 1),
                  count == 1 ? "-" : percentage(static_cast<double>(usage[i]))});
    }
    load.print();
}

}  // namespace

void reportDevice() {
    printTitle("Device");
    reportSoftware();
    std::puts("");
    reportSpace();
    std::puts("");
    reportLoad();
}
