// The readers of the kernel's files beside a bare open, read and close of the same file, and the
// storage figures beside a bare run of the same command.
#include <fcntl.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/measure.h"
#include "console-manager/device.h"

namespace {

void readBare(const char* path) {
    char buffer[8192];
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    while (read(file, buffer, sizeof buffer) > 0) {
    }
    close(file);
}

void bareStorage() {
    char buffer[4096];
    FILE* const pipe = popen("df -k /mnt/vex-data", "r");
    while (std::fread(buffer, 1, sizeof buffer, pipe) > 0) {
    }
    pclose(pipe);
}

void bareRelease() {
    utsname kernel;
    uname(&kernel);
    std::free(strdup(kernel.release));
    std::free(strdup(kernel.version));
}

}  // namespace

void measureDevice() {
    beginSubsystem("device");
    measure({.function = "CML_getProductID (first call)",
             .call = [] { CML_getProductID(); },
             .floor = [] { readBare("/etc/os-release"); },
             .beforeCall = [] { os_release.clear(); }});
    measure({.function = "CML_getProductID", .call = [] { CML_getProductID(); }});
    measure({.function = "CML_getBuildType", .call = [] { CML_getBuildType(); }});
    measure({.function = "CML_getBuildId", .call = [] { CML_getBuildId(); }});
    measure({.function = "CML_getMachineName", .call = [] { CML_getMachineName(); }});
    measure({.function = "CML_getProductRelease", .call = [] { CML_getProductRelease(); }});
    measure({.function = "CML_getLinuxReleaseInformation",
             .call =
                 [] {
                     char* release = nullptr;
                     char* version = nullptr;
                     CML_getLinuxReleaseInformation(&release, &version);
                     std::free(release);
                     std::free(version);
                 },
             .floor = bareRelease});
    measure({.function = "CML_getStorageInfo",
             .call =
                 [] {
                     uint32_t total = 0;
                     uint32_t used = 0;
                     CML_getStorageInfo(&total, &used);
                 },
             .floor = bareStorage});
    measure({.function = "CML_getMemoryInformation",
             .call =
                 [] {
                     int32_t total = 0;
                     int32_t free = 0;
                     CML_getMemoryInformation(&total, &free);
                 },
             .floor = [] { readBare("/proc/meminfo"); }});
    measure({.function = "CML_getAllCPUUsage",
             .call = [] { CML_getAllCPUUsage(nullptr); },
             .floor = [] { readBare("/proc/stat"); }});
    measure({.function = "CML_getCPUUsage",
             .call = [] { CML_getCPUUsage(); },
             .floor = [] { readBare("/proc/stat"); }});
    measure({.function = "CML_getUpTime",
             .call = [] { CML_getUpTime(); },
             .floor = [] { readBare("/proc/uptime"); }});
    measure({.function = "CML_restoreDisplayBrightness", .call = CML_restoreDisplayBrightness});
}
