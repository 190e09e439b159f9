#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "console-manager/network.h"
#include "system/deleted_by.h"
#include "system/text_file.h"

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

// Writes the result of `choose` for the port's first address of the family for which it isn't null.
// Without one the text is empty.
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
        // Some masks come without a family; theirs is that of the address.
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

const char* CML_getNetworkPortMACAddress(const char* port) {
    // An array outlives the handlers and threads that still ask while the process ends. A file of
    // sysfs has at most a page.
    static char address[4096];
    address[0] = '\0';
    const std::string text =
        readText(std::string("/sys/class/net/").append(port).append("/address").c_str());
    const size_t length = text.copy(address, std::min(text.find('\n'), sizeof address - 1));
    address[length] = '\0';
    return address;
}
