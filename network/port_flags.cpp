#include "network/port_flags.h"

#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cstring>

#include "system/descriptor.h"

std::optional<uint16_t> readPortFlags(const char* port) {
    ifreq request{};
    std::strncpy(request.ifr_name, port, IFNAMSIZ - 1);
    const Descriptor socket(::socket(AF_INET, SOCK_DGRAM, 0));
    if (!socket.isOpen() || ioctl(socket.get(), SIOCGIFFLAGS, &request) == -1) {
        return std::nullopt;
    }
    return static_cast<uint16_t>(request.ifr_flags);
}

bool isRunning(uint16_t flags) {
    constexpr unsigned kUpAndRunning = IFF_UP | IFF_RUNNING;
    return (flags & kUpAndRunning) == kUpAndRunning;
}
