#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>
#include <memory>

#include "console-manager/network.h"
#include "system/deleted_by.h"

namespace {

using Choose = const sockaddr* (*)(const ifaddrs&);

const sockaddr* address(const ifaddrs& entry) {
    return entry.ifa_addr;
}

const sockaddr* netMask(const ifaddrs& entry) {
    return entry.ifa_netmask;
}

const void* bytesOf(const sockaddr* of, int family) {
    if (family == AF_INET) {
        return &reinterpret_cast<const sockaddr_in*>(of)->sin_addr;
    }
    return &reinterpret_cast<const sockaddr_in6*>(of)->sin6_addr;
}

// Writes what `choose` gives of the port's first address of the family that has it into text, or
// the empty text.
void writeAddress(const char* port, int family, Choose choose, char* text, socklen_t size) {
    text[0] = '\0';
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) == -1) {
        return;
    }
    const std::unique_ptr<ifaddrs, DeletedBy<freeifaddrs>> list(first);
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != family ||
            choose(*entry) == nullptr || std::strcmp(entry->ifa_name, port) != 0) {
            continue;
        }
        // The kernel leaves the family out of some masks: they are of their address's.
        inet_ntop(family, bytesOf(choose(*entry), family), text, size);
        return;
    }
}

}  // namespace

const char* CML_getNetworkPortIPv4Address(const char* port) {
    static char ipv4AddressText[INET_ADDRSTRLEN];
    writeAddress(port, AF_INET, address, ipv4AddressText, sizeof ipv4AddressText);
    return ipv4AddressText;
}

const char* CML_getNetworkPortIPv4NetMask(const char* port) {
    static char ipv4NetMaskText[INET_ADDRSTRLEN];
    writeAddress(port, AF_INET, netMask, ipv4NetMaskText, sizeof ipv4NetMaskText);
    return ipv4NetMaskText;
}

const char* CML_getNetworkPortIPv6Address(const char* port) {
    static char ipv6AddressText[INET6_ADDRSTRLEN];
    writeAddress(port, AF_INET6, address, ipv6AddressText, sizeof ipv6AddressText);
    return ipv6AddressText;
}
