// The functions of network.h and device.h next to the bare system calls, or a bare run of the same
// command.
#include <dirent.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/bench.h"
#include "console-manager/device.h"
#include "console-manager/network.h"

namespace {

void bareFlags() {
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
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

// One read returns all of a sysfs file; other files take another one for their end.
Work bareRead(const std::vector<const char*>& paths) {
    return [=, oneRead = std::strncmp(paths[0], "/sys", 4) == 0] {
        char buffer[8192];
        for (const char* const path : paths) {
            const int file = open(path, O_RDONLY | O_CLOEXEC);
            while (read(file, buffer, sizeof buffer) > 0 && !oneRead) {
            }
            close(file);
        }
    };
}

void run(const std::string& command) {
    require(std::system(command.c_str()) == 0, command.c_str());
}

// Adds routes with gateways, none of them through the port in question.
void measureGateway(int foreign) {
    const Work routes = [=] {
        run("ip route flush dev foreign; ip route add 10.9.0.0/24 dev foreign; seq " +
            std::to_string(foreign) +
            " | sed 's,.*,route add 10.8.0.& via 10.9.0.2 dev foreign,' | ip -batch -");
    };
    measure({"CML_getNetworkPortIPv4Gateway, foreign routes: " + std::to_string(foreign),
             [] { CML_getNetworkPortIPv4Gateway("lo"); }, bareRoutes, routes, routes});
}

void linuxRelease() {
    char* release = nullptr;
    char* version = nullptr;
    CML_getLinuxReleaseInformation(&release, &version);
    std::free(release);
    std::free(version);
}

}  // namespace

void measureSystem() {
    static CML_NetworkPortStatus status;
    static int32_t first, second;
    static uint32_t total, used;
    static utsname kernel;
    run("ip link add foreign type veth peer peer; ip link set foreign up; ip link set peer up");
    measure(
        {"CML_getNetworkPortsList", [] { freeList(CML_getNetworkPortsList(0)); }, bareDirectory});
    measure({CALLED(CML_checkNetworkPortActive, "lo"), bareFlags});
    measure({CALLED(CML_getNetworkPortStatus, "lo", &status), bareFlags});
    measure({CALLED(CML_getNetworkPortIPv4Address, "lo"), bareAddresses});
    measure({CALLED(CML_getNetworkPortIPv4NetMask, "lo"), bareAddresses});
    measure({CALLED(CML_getNetworkPortIPv6Address, "lo"), bareAddresses});
    measureGateway(1);
    measureGateway(100);
    measure({CALLED(CML_getNetworkPortMACAddress, "lo"), bareRead({"/sys/class/net/lo/address"})});
    measure({CALLED(CML_getNetworkPortInfo, "lo", &first, &second),
             bareRead({"/sys/class/net/lo/statistics/rx_bytes",
                       "/sys/class/net/lo/statistics/tx_bytes"})});
    measure({CALLED(CML_getHostAvailable, "127.0.0.1", 1, nullptr),
             [] { run("ping -c1 -w1 127.0.0.1 >/dev/null 2>&1"); }});
    const Work forget = [] { os_release.clear(); };
    measure({"CML_getProductID, first call", CML_getProductID, bareRead({"/etc/os-release"}),
             forget, forget, true});
    measure({CALLED(CML_getProductID)});
    measure({CALLED(CML_getBuildType)});
    measure({CALLED(CML_getBuildId)});
    measure({CALLED(CML_getMachineName)});
    measure({CALLED(CML_getProductRelease)});
    measure({"CML_getLinuxReleaseInformation", linuxRelease, [] { uname(&kernel); }});
    measure(
        {CALLED(CML_getStorageInfo, &total, &used), [] { run("df -k /mnt/vex-data >/dev/null"); }});
    measure({CALLED(CML_getMemoryInformation, &first, &second), bareRead({"/proc/meminfo"})});
    measure({CALLED(CML_getAllCPUUsage, nullptr), bareRead({"/proc/stat"})});
    measure({CALLED(CML_getCPUUsage), bareRead({"/proc/stat"})});
    measure({CALLED(CML_getUpTime), bareRead({"/proc/uptime"})});
    measure({CALLED(CML_restoreDisplayBrightness)});
}
