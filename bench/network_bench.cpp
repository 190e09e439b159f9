// The network functions beside the bare system calls, on the loopback port.
#include <dirent.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "bench/measure.h"
#include "console-manager/network.h"

namespace {

constexpr char kPort[] = "lo";

void bareFlags() {
    ifreq request{};
    std::strcpy(request.ifr_name, kPort);
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    ioctl(descriptor, SIOCGIFFLAGS, &request);
    close(descriptor);
}

void bareDirectory() {
    DIR* const directory = opendir("/sys/class/net");
    while (readdir(directory) != nullptr) {
    }
    closedir(directory);
}

void bareAddresses() {
    ifaddrs* list = nullptr;
    getifaddrs(&list);
    freeifaddrs(list);
}

void bareRoutes() {
    struct {
        nlmsghdr header;
        rtmsg route;
    } request{{sizeof request, RTM_GETROUTE, NLM_F_REQUEST | NLM_F_DUMP, 0, 0}, {}};
    char reply[4096];
    const timeval limit{1, 0};
    const int descriptor = socket(AF_NETLINK, SOCK_RAW, NETLINK_ROUTE);
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    send(descriptor, &request, sizeof request, 0);
    recv(descriptor, reply, sizeof reply, 0);
    close(descriptor);
}

// The kernel gives a value of sysfs in one read.
void readBare(const char* path) {
    char text[4096];
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC);
    require(read(descriptor, text, sizeof text) > 0, path);
    close(descriptor);
}

void freePortsList(char** list) {
    require(list != nullptr, "a list of ports");
    for (char** name = list; *name != nullptr; ++name) {
        std::free(*name);
    }
    std::free(list);
}

}  // namespace

void measureNetwork() {
    beginSubsystem("network");
    measure({.function = "CML_getNetworkPortsList",
             .call = [] { freePortsList(CML_getNetworkPortsList(0)); },
             .floor = bareDirectory});
    measure({.function = "CML_checkNetworkPortActive",
             .call = [] { require(CML_checkNetworkPortActive(kPort) == 1, "an active port"); },
             .floor = bareFlags});
    measure({.function = "CML_getNetworkPortStatus",
             .call =
                 [] {
                     CML_NetworkPortStatus status;
                     CML_getNetworkPortStatus(kPort, &status);
                 },
             .floor = bareFlags});
    measure({.function = "CML_getNetworkPortIPv4Address",
             .call = [] { CML_getNetworkPortIPv4Address(kPort); },
             .floor = bareAddresses});
    measure({.function = "CML_getNetworkPortIPv4NetMask",
             .call = [] { CML_getNetworkPortIPv4NetMask(kPort); },
             .floor = bareAddresses});
    measure({.function = "CML_getNetworkPortIPv6Address",
             .call = [] { CML_getNetworkPortIPv6Address(kPort); },
             .floor = bareAddresses});
    measure({.function = "CML_getNetworkPortIPv4Gateway",
             .call = [] { CML_getNetworkPortIPv4Gateway(kPort); },
             .floor = bareRoutes});
    measure({.function = "CML_getNetworkPortMACAddress",
             .call = [] { CML_getNetworkPortMACAddress(kPort); },
             .floor = [] { readBare("/sys/class/net/lo/address"); }});
    measure({.function = "CML_getNetworkPortInfo",
             .call =
                 [] {
                     int32_t received = 0;
                     int32_t sent = 0;
                     CML_getNetworkPortInfo(kPort, &received, &sent);
                 },
             .floor =
                 [] {
                     readBare("/sys/class/net/lo/statistics/rx_bytes");
                     readBare("/sys/class/net/lo/statistics/tx_bytes");
                 }});
    measure({.function = "CML_getHostAvailable",
             .call = [] { require(CML_getHostAvailable("127.0.0.1", 1, nullptr) == 0, "a ping"); },
             .floor =
                 [] {
                     require(std::system("ping -c1 -w1 127.0.0.1 >/dev/null 2>&1") == 0,
                             "a bare ping");
                 }});
}
