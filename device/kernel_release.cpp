#include <sys/utsname.h>

#include <cstring>

#include "console-manager/device.h"

int32_t CML_getLinuxReleaseInformation(char** kernelRelease, char** kernelVersion) {
    utsname kernel;
    if (uname(&kernel) != 0) {
        return 0;
    }
    *kernelRelease = strdup(kernel.release);
    *kernelVersion = strdup(kernel.version);
    return 0;
}
