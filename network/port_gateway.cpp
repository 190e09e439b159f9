#include <arpa/inet.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

#include "console-manager/network.h"
#include "system/descriptor.h"

namespace {

// 32-bit systems have two numbers for this option; the one for 64-bit time takes this timeval.
static_assert(sizeof(timeval) == 16);
#ifdef __arm__
static_assert(SO_RCVTIMEO == 66);
#endif

struct RouteRequest {
    nlmsghdr header;
    rtmsg route;
};
static_assert(sizeof(RouteRequest) == 28);

// Receives the first datagram of the kernel's reply to a dump of all routes and returns its length,
// negative on failure. The kernel truncates it to `size`; the datagrams after it are dropped with
// the socket.
ssize_t receiveRoutes(void* buffer, size_t size) {
    const Descriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
    if (!socket.isOpen()) {
        return -1;
    }
    const timeval oneSecond{1, 0};
    setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &oneSecond, sizeof oneSecond);
    RouteRequest request{};
    request.header.nlmsg_len = sizeof request;
    request.header.nlmsg_type = RTM_GETROUTE;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.header.nlmsg_pid = static_cast<uint32_t>(getpid());
    request.route.rtm_family = AF_UNSPEC;
    if (send(socket.get(), &request, sizeof request, 0) < 0) {
        return -1;
    }
    return recv(socket.get(), buffer, size, 0);
}

struct Route {
    uint32_t portIndex = 0;  // no port has 0
    const in_addr* gateway = nullptr;
};

// Reads an IPv4 route of the main table; any other message has no gateway. The main table has
// routes of other families, too.
Route readRoute(const nlmsghdr& message) {
    Route route;
    const auto* const header = static_cast<const rtmsg*>(NLMSG_DATA(&message));
    if (message.nlmsg_len < NLMSG_LENGTH(sizeof *header) || header->rtm_table != RT_TABLE_MAIN ||
        header->rtm_family != AF_INET) {
        return route;
    }
    auto left = static_cast<int64_t>(RTM_PAYLOAD(&message));
    for (const rtattr* next = RTM_RTA(header); RTA_OK(next, left); next = RTA_NEXT(next, left)) {
        if (next->rta_type == RTA_OIF && RTA_PAYLOAD(next) >= int{sizeof route.portIndex}) {
            route.portIndex = *static_cast<const uint32_t*>(RTA_DATA(next));
        } else if (next->rta_type == RTA_GATEWAY && RTA_PAYLOAD(next) == int{sizeof(in_addr)}) {
            route.gateway = static_cast<const in_addr*>(RTA_DATA(next));
        }
    }
    return route;
}

bool hasName(uint32_t portIndex, const char* port) {
    char name[IF_NAMESIZE];
    return if_indextoname(portIndex, name) != nullptr && std::strcmp(name, port) == 0;
}

// Returns the gateway of the first route through the port that has one, or null.
const in_addr* findGateway(const nlmsghdr* message, int64_t left, const char* port) {
    // Each name costs a system call, and neighbouring routes mostly leave by the same port.
    uint32_t otherPort = 0;
    for (; NLMSG_OK(message, left); message = NLMSG_NEXT(message, left)) {
        const Route route = readRoute(*message);
        if (route.gateway != nullptr && route.portIndex != otherPort) {
            if (hasName(route.portIndex, port)) {
                return route.gateway;
            }
            otherPort = route.portIndex;
        }
    }
    return nullptr;
}

}  // namespace

const char* CML_getNetworkPortIPv4Gateway(const char* port) {
    static char ipv4GatewayText[INET_ADDRSTRLEN];
    ipv4GatewayText[0] = '\0';
    // Each message and attribute starts at a multiple of 4 bytes, as the macros require.
    alignas(nlmsghdr) char buffer[4096] = {};
    const ssize_t length = receiveRoutes(buffer, sizeof buffer);
    const auto* const first = reinterpret_cast<const nlmsghdr*>(buffer);
    if (first->nlmsg_type != NLMSG_ERROR) {
        const in_addr* const gateway = findGateway(first, length, port);
        if (gateway != nullptr) {
            inet_ntop(AF_INET, gateway, ipv4GatewayText, sizeof ipv4GatewayText);
        }
    }
    return ipv4GatewayText;
}
