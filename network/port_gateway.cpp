#include <arpa/inet.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

#include "console-manager/network.h"
#include "system/descriptor.h"

// Messages are walked here and not by libmnl, whose walk looks at the type, sequence and sender of
// each and ends with the dump: a route counts by its table alone, wherever the datagram has it.

namespace {

// On a 32-bit machine the option has two numbers; the one with 64-bit time goes with this timeval.
static_assert(sizeof(timeval) == 16);
#ifdef __arm__
static_assert(SO_RCVTIMEO == 66);
#endif

struct RouteRequest {
    nlmsghdr header;
    rtmsg route;
};
static_assert(sizeof(RouteRequest) == 28);

using Bytes = std::span<const std::byte>;

// Reads a record at an offset; the caller has made sure that it lies within. Copied, because
// nothing says that the bytes of a reply are aligned.
template <typename Record>
Record recordAt(Bytes bytes, size_t offset) {
    Record record;
    std::memcpy(&record, bytes.data() + offset, sizeof record);
    return record;
}

constexpr size_t aligned(size_t length) {
    return (length + NLMSG_ALIGNTO - 1) & ~size_t{NLMSG_ALIGNTO - 1};
}

// What is behind the first `length` bytes and their padding; the last piece may lack its padding.
Bytes behind(Bytes bytes, size_t length) {
    return aligned(length) < bytes.size() ? bytes.subspan(aligned(length)) : Bytes();
}

// The kernel's reply to a dump of all routes: its first datagram, or nothing. What doesn't fit is
// cut off, and the datagrams that follow are dropped with the socket.
Bytes receiveRoutes(std::span<std::byte> buffer) {
    const Descriptor socket(::socket(AF_NETLINK, SOCK_RAW, NETLINK_ROUTE));
    if (!socket.isOpen()) {
        return {};
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
        return {};
    }
    const ssize_t received = recv(socket.get(), buffer.data(), buffer.size(), 0);
    return received < 0 ? Bytes() : buffer.first(static_cast<size_t>(received));
}

// What a route says of its way out.
struct Route {
    uint32_t portIndex = 0;  // no port has 0
    std::optional<in_addr> gateway;
};

Route readRoute(Bytes attributes) {
    Route route;
    while (attributes.size() >= sizeof(rtattr)) {
        const auto head = recordAt<rtattr>(attributes, 0);
        if (head.rta_len < sizeof(rtattr) || head.rta_len > attributes.size()) {
            break;
        }
        const Bytes value = attributes.subspan(sizeof(rtattr), head.rta_len - sizeof(rtattr));
        if (head.rta_type == RTA_OIF && value.size() >= sizeof(uint32_t)) {
            route.portIndex = recordAt<uint32_t>(value, 0);
        } else if (head.rta_type == RTA_GATEWAY && value.size() == sizeof(in_addr)) {
            route.gateway = recordAt<in_addr>(value, 0);
        }
        attributes = behind(attributes, head.rta_len);
    }
    return route;
}

bool hasName(uint32_t portIndex, const char* port) {
    char name[IF_NAMESIZE];
    return if_indextoname(portIndex, name) != nullptr && std::strcmp(name, port) == 0;
}

bool isRouteReply(Bytes datagram) {
    if (datagram.size() < sizeof(nlmsghdr)) {
        return false;
    }
    const auto first = recordAt<nlmsghdr>(datagram, 0);
    return first.nlmsg_len >= sizeof(nlmsghdr) && first.nlmsg_len <= datagram.size() &&
           first.nlmsg_type != NLMSG_ERROR;
}

// An IPv4 route of the main table, or nothing. Routes of the other families are in that table, too.
std::optional<Route> readMessage(Bytes message) {
    constexpr size_t kAttributes = sizeof(nlmsghdr) + sizeof(rtmsg);
    if (message.size() < kAttributes) {
        return std::nullopt;
    }
    const auto header = recordAt<rtmsg>(message, sizeof(nlmsghdr));
    if (header.rtm_table != RT_TABLE_MAIN || header.rtm_family != AF_INET) {
        return std::nullopt;
    }
    return readRoute(message.subspan(kAttributes));
}

// Writes the gateway of the first fitting route into text, or leaves it as it is.
void findGateway(Bytes datagram, const char* port, char* text) {
    // A name costs a question to the kernel, and neighbouring routes mostly leave by the same port.
    uint32_t otherPort = 0;
    while (datagram.size() >= sizeof(nlmsghdr)) {
        const size_t length = recordAt<nlmsghdr>(datagram, 0).nlmsg_len;
        if (length < sizeof(nlmsghdr) || length > datagram.size()) {
            return;
        }
        const auto route = readMessage(datagram.first(length));
        if (route && route->gateway && route->portIndex != otherPort) {
            if (hasName(route->portIndex, port)) {
                inet_ntop(AF_INET, &*route->gateway, text, INET_ADDRSTRLEN);
                return;
            }
            otherPort = route->portIndex;
        }
        datagram = behind(datagram, length);
    }
}

}  // namespace

const char* CML_getNetworkPortIPv4Gateway(const char* port) {
    static char ipv4GatewayText[INET_ADDRSTRLEN];
    ipv4GatewayText[0] = '\0';
    alignas(nlmsghdr) std::array<std::byte, 4096> buffer{};
    const Bytes datagram = receiveRoutes(buffer);
    if (isRouteReply(datagram)) {
        findGateway(datagram, port, ipv4GatewayText);
    }
    return ipv4GatewayText;
}
