#include <net/if.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "console-manager/network.h"
#include "network/port_flags.h"
#include "system/text_file.h"

static_assert(sizeof(CML_NetworkPortStatus) == 8 && offsetof(CML_NetworkPortStatus, up) == 0 &&
              offsetof(CML_NetworkPortStatus, running) == 4);

int32_t CML_getNetworkPortStatus(const char* port, CML_NetworkPortStatus* status) {
    *status = {};
    const auto flags = readPortFlags(port);
    if (!flags) {
        return 0;
    }
    status->up = (*flags & IFF_UP) != 0 ? 1 : 0;
    status->running = isRunning(*flags) ? 1 : 0;
    return 1;
}

const char* CML_getNetworkPortMACAddress(const char* port) {
    static std::string address;
    address.clear();
    std::string path = "/sys/class/net/";
    path.append(port).append("/address");
    address = readText(path.c_str());
    address.erase(std::min(address.find('\n'), address.size()));
    return address.c_str();
}
