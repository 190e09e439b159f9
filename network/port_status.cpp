#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cstddef>
#include <cstring>

#include "console-manager/network.h"
#include "system/descriptor.h"

static_assert(sizeof(CML_NetworkPortStatus) == 8 && offsetof(CML_NetworkPortStatus, up) == 0 &&
              offsetof(CML_NetworkPortStatus, running) == 4);

int32_t CML_getNetworkPortStatus(const char* port, CML_NetworkPortStatus* status) {
    constexpr int kUpAndRunning = IFF_UP | IFF_RUNNING;
    *status = {};
    ifreq request{};
    std::strncpy(request.ifr_name, port, IFNAMSIZ - 1);
    const Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket.isOpen() || ioctl(socket.get(), SIOCGIFFLAGS, &request) == -1) {
        return 0;
    }
    status->up = (request.ifr_flags & IFF_UP) != 0 ? 1 : 0;
    status->running = (request.ifr_flags & kUpAndRunning) == kUpAndRunning ? 1 : 0;
    return 1;
}

int32_t CML_checkNetworkPortActive(const char* port) {
    CML_NetworkPortStatus status;
    CML_getNetworkPortStatus(port, &status);
    return static_cast<int32_t>(status.running);
}
