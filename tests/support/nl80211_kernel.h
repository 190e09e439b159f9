// Plays a kernel with nl80211: defines if_nametoindex and those functions of libmnl that send and
// receive, for the program whose only source includes this. It records what the library sends, and
// replies from a script. The sockets and libmnl's other code are real.
#pragma once

#include <dlfcn.h>
#include <fcntl.h>
#include <libmnl/libmnl.h>
#include <linux/genetlink.h>
#include <linux/nl80211.h>
#include <net/if.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <iterator>
#include <map>
#include <span>
#include <sstream>
#include <vector>

#include "support/fault.h"
#include "support/netlink_message.h"

using Text = const std::string&;
using Datagrams = std::deque<std::string>;

// Messages of the kernel.
namespace nl80211 {

using namespace std::string_literals;

constexpr uint16_t kFamily = 28;
constexpr uint32_t kOfRequest = 0xffffffff;  // replaced by the sequence and port of the request

inline std::string message(uint16_t type, Text payload, uint16_t flags = 0,
                           uint32_t sequence = kOfRequest, uint32_t port = kOfRequest) {
    return u32(sizeof(nlmsghdr) + payload.size()) + u16(type) + u16(flags) + u32(sequence) +
           u32(port) + payload;
}
inline std::string reply(uint8_t command, Text attributes, uint16_t type = kFamily) {
    return message(type, bytes(genlmsghdr{command, 1, 0}) + attributes);
}
inline std::string notification(uint8_t command, Text attributes = "", uint32_t sequence = 0,
                                uint32_t port = 0) {
    return message(kFamily, bytes(genlmsghdr{command, 1, 0}) + attributes, 0, sequence, port);
}
constexpr auto acknowledgement = [](int error = 0) {
    return message(NLMSG_ERROR, bytes(nlmsgerr{error, {}}));
};
constexpr auto done = [] { return message(NLMSG_DONE, u32(0)); };
// The end of a dump whose list changed meanwhile.
constexpr auto interrupted = [] { return message(NLMSG_DONE, u32(0), NLM_F_DUMP_INTR); };

// The controller's reply about a family, with any attributes or with groups and an id.
inline std::string controllerReply(Text attributes) {
    return reply(CTRL_CMD_NEWFAMILY, attributes, GENL_ID_CTRL);
}
inline std::string family(Text groups, Text id = u16(kFamily)) {
    return controllerReply(attribute(CTRL_ATTR_FAMILY_ID, id) +
                           attribute(CTRL_ATTR_MCAST_GROUPS, groups));
}
inline std::string group(Text name, Text id) {
    return attribute(
        1, attribute(CTRL_ATTR_MCAST_GRP_ID, id) + attribute(CTRL_ATTR_MCAST_GRP_NAME, name));
}

// One network of a scan, from the attributes of its BSS, and a link, from its figures.
inline std::string network(Text bss) {
    return reply(NL80211_CMD_NEW_SCAN_RESULTS,
                 attribute(NL80211_ATTR_IFINDEX, u32(7)) + attribute(NL80211_ATTR_BSS, bss));
}
inline std::string station(Text info) {
    return reply(NL80211_CMD_NEW_STATION, attribute(NL80211_ATTR_STA_INFO, info));
}
inline std::string station(int signal, uint32_t received, uint32_t sent) {
    return station(attribute(NL80211_STA_INFO_SIGNAL, u8(signal)) +
                   attribute(NL80211_STA_INFO_SIGNAL_AVG, u8(signal - 1)) +
                   attribute(NL80211_STA_INFO_RX_PACKETS, u32(received)) +
                   attribute(NL80211_STA_INFO_TX_PACKETS, u32(sent)));
}

constexpr auto elements = [](Text all) { return attribute(NL80211_BSS_INFORMATION_ELEMENTS, all); };

inline std::string ssid(Text name) {
    return elements('\0' + u8(name.size()) + name + "\x01\x01\x02");
}

// A dump of networks by number, each with its status after a colon if it has one: "1 2:1 3". All
// attributes of a network follow from its number.
inline Datagrams networks(Text list) {
    Datagrams dump;
    std::istringstream words(list);
    for (std::string word; words >> word;) {
        const int id = word[0] - '0';
        dump.push_back(network(
            attribute(NL80211_BSS_BSSID, "\2\2\2\2\2" + u8(id)) +
            attribute(NL80211_BSS_FREQUENCY, u32(2400 + id)) + ssid("net" + word.substr(0, 1)) +
            (word.size() > 1 ? attribute(NL80211_BSS_STATUS, u32(word.back() - '0')) : "") +
            attribute(NL80211_BSS_SIGNAL_MBM, u32(-100 * id)) +
            attribute(NL80211_BSS_SEEN_MS_AGO, u32(id))));
    }
    dump.push_back(done());
    return dump;
}

// In place of a datagram: a receive that fails.
constexpr auto failure = [](int error) { return std::string(1, static_cast<char>(error)); };

}  // namespace nl80211

// Whether a receive on the socket waits.
inline bool waits(const mnl_socket* socket) {
    return (fcntl(mnl_socket_get_fd(socket), F_GETFL) & O_NONBLOCK) == 0;
}

inline struct Nl80211Kernel {
    // The script.
    std::deque<Datagrams> dumps;  // the replies to the first dumps, before on[NL80211_CMD_GET_SCAN]
    std::map<int, Datagrams> on;  // the reply to each command
    Datagrams notifications;
    Datagrams later;  // notifications that are sent when a scan was triggered

    // What the library has sent since it last opened a handle: requests, in hexadecimal digits, and
    // their commands, as "33 32 ".
    std::vector<std::string> sent;
    std::string commands;
    const mnl_socket* notifying = nullptr;  // the first socket of a handle that sends
    Datagrams replies;                      // to the requests

    // Knows nl80211 and its scan group, and replies with acknowledgements only. Of the groups with
    // nearly that name, one begins with it, one precedes the right one, and one lacks its NUL.
    void reset() {
        using namespace nl80211;
        *this = {};
        on[CTRL_CMD_GETFAMILY] = {family(group("scan\0"s, u32(5)) + group("scan\0"s, u32(6)) +
                                         group("scans\0"s, u32(8)) + group("scan", u32(9))),
                                  acknowledgement()};
        on[NL80211_CMD_TRIGGER_SCAN] = {acknowledgement()};
        on[NL80211_CMD_GET_SCAN] = {done()};
        on[NL80211_CMD_GET_STATION] = {acknowledgement()};
    }

    static bool fails(const char* name) { return fault.hits(name) && (errno = ENOBUFS) != 0; }
} kernel;

extern "C" {

unsigned if_nametoindex(const char* name) noexcept {
    errno = ENODEV;
    return kernel.fails("if_nametoindex") || std::strcmp(name, "wlan7") != 0 ? 0 : 7;
}

mnl_socket* mnl_socket_open(int bus) {
    const bool fails = kernel.fails("mnl_socket_open") || bus != NETLINK_GENERIC;
    return fails ? nullptr : mnl_socket_open2(bus, 0);
}

int mnl_socket_bind(mnl_socket*, unsigned groups, pid_t port) {
    return kernel.fails("mnl_socket_bind") || groups != 0 || port != 0 ? -1 : 0;
}

unsigned mnl_socket_get_portid(const mnl_socket* socket) {
    return socket == kernel.notifying ? 1000 : 1001;
}

int mnl_socket_setsockopt(const mnl_socket* socket, int option, void* value, socklen_t length) {
    const bool joins = socket == kernel.notifying && option == NETLINK_ADD_MEMBERSHIP &&
                       std::string(static_cast<const char*>(value), length) == u32(6);
    return kernel.fails("mnl_socket_setsockopt") || !joins ? -1 : 0;
}

// Queues the reply to the request, with its sequence and port.
ssize_t mnl_socket_sendto(const mnl_socket* socket, const void* data, size_t size) {
    if (kernel.fails("mnl_socket_sendto")) {
        return -1;
    }
    const Within test(false);
    const auto* const request = static_cast<const uint8_t*>(data);
    const auto& head = *static_cast<const nlmsghdr*>(data);
    const int command = request[sizeof head];
    Datagrams reply = kernel.on[command];
    if (command == CTRL_CMD_GETFAMILY) {
        kernel.notifying = socket;
        kernel.sent = {};
        kernel.commands = {};
        kernel.replies = {};
    } else if (command == NL80211_CMD_GET_SCAN && !kernel.dumps.empty()) {
        reply = kernel.dumps.front();
        kernel.dumps.pop_front();
    } else if (command == NL80211_CMD_TRIGGER_SCAN) {
        std::ranges::copy(kernel.later, std::back_inserter(kernel.notifications));
    }
    kernel.commands += std::to_string(command) + " ";
    kernel.sent.emplace_back(socket == kernel.notifying ? "notifications " : "commands ");
    for (const uint8_t byte : std::span(request, size)) {
        kernel.sent.back() += {"0123456789abcdef"[byte / 16], "0123456789abcdef"[byte % 16]};
    }
    for (std::string& datagram : reply) {
        for (size_t at; (at = datagram.find(std::string(8, '\xff'))) != std::string::npos;) {
            datagram.replace(at, 8, u32(head.nlmsg_seq) + u32(mnl_socket_get_portid(socket)));
        }
        kernel.replies.push_back(datagram);
    }
    return static_cast<ssize_t>(size);
}

ssize_t mnl_socket_recvfrom(const mnl_socket* socket, void* buffer, size_t size) {
    if (kernel.fails("mnl_socket_recvfrom")) {
        return -1;
    }
    const Within test(false);
    const bool isReply = socket != kernel.notifying || !kernel.replies.empty();
    Datagrams& queue = isReply ? kernel.replies : kernel.notifications;
    if (queue.empty()) {
        errno = waits(socket) ? EDEADLK : EAGAIN;  // the former would never return
        return -1;
    }
    const std::string datagram = queue.front();
    queue.pop_front();
    errno = datagram.size() == 1 ? datagram[0] : datagram.size() > size ? ENOSPC : 0;
    return errno == 0 ? static_cast<ssize_t>(datagram.copy(static_cast<char*>(buffer), size)) : -1;
}

// Plays the reading of the rest of a reply. A receive that waits is for another socket, and real.
ssize_t recv(int descriptor, void* buffer, size_t size, int flags) {
    static const auto next = reinterpret_cast<decltype(&recv)>(dlsym(RTLD_NEXT, "recv"));
    if (kernel.fails("recv") || (flags == MSG_DONTWAIT && kernel.replies.empty())) {
        return -1;
    }
    return flags == MSG_DONTWAIT ? mnl_socket_recvfrom(kernel.notifying, buffer, size)
                                 : next(descriptor, buffer, size, flags);
}

}  // extern "C"
