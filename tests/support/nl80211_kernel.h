// Plays a kernel with nl80211: defines libmnl's socket functions and if_nametoindex for the program
// whose only source includes this, records what the library sends, and replies from a script.
// libmnl's message code is the real one.
#pragma once

#include <dlfcn.h>
#include <fcntl.h>
#include <libmnl/libmnl.h>
#include <linux/genetlink.h>
#include <linux/nl80211.h>
#include <net/if.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <deque>
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

constexpr uint16_t kFamily = 28;
constexpr uint32_t kOfRequest = 0xffffffff;  // replaced by the sequence and port of the request

inline std::string message(uint16_t type, Text payload, uint16_t flags = 0,
                           uint32_t sequence = kOfRequest, uint32_t port = kOfRequest) {
    const auto length = static_cast<uint32_t>(sizeof(nlmsghdr) + payload.size());
    return bytes(nlmsghdr{length, type, flags, sequence, port}) + payload;
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

// One network of a scan, from the attributes of its BSS, and the figures of a link.
inline std::string network(Text bss) {
    return reply(NL80211_CMD_NEW_SCAN_RESULTS,
                 attribute(NL80211_ATTR_IFINDEX, u32(7)) + attribute(NL80211_ATTR_BSS, bss));
}
inline std::string station(Text info) {
    return reply(NL80211_CMD_NEW_STATION, attribute(NL80211_ATTR_STA_INFO, info));
}

constexpr auto elements = [](Text all) { return attribute(NL80211_BSS_INFORMATION_ELEMENTS, all); };

inline std::string ssid(Text name) {
    return elements('\0' + u8(static_cast<uint8_t>(name.size())) + name + "\x01\x01\x02");
}

// A dump of networks by number, each with its status after a colon if it has one: "1 2:1 3". All
// attributes of a network follow from its number.
inline Datagrams networks(Text list) {
    Datagrams dump;
    std::istringstream words(list);
    for (std::string word; words >> word;) {
        const auto id = static_cast<uint32_t>(word[0] - '0');
        const auto status = static_cast<uint32_t>(word.back() - '0');
        dump.push_back(network(
            attribute(NL80211_BSS_BSSID, "\2\2\2\2\2" + u8(static_cast<uint8_t>(id))) +
            attribute(NL80211_BSS_FREQUENCY, u32(2400 + id)) + ssid("net" + word.substr(0, 1)) +
            (word.size() > 1 ? attribute(NL80211_BSS_STATUS, u32(status)) : "") +
            attribute(NL80211_BSS_SIGNAL_MBM, u32(0 - 100 * id)) +
            attribute(NL80211_BSS_SEEN_MS_AGO, u32(id))));
    }
    dump.push_back(done());
    return dump;
}

// In place of a datagram: a receive that fails.
constexpr auto failure = [](int error) { return std::string(1, static_cast<char>(error)); };

}  // namespace nl80211

struct mnl_socket {
    int descriptor;  // any that has a mode and flags
    unsigned port;
    Datagrams queue;

    bool waits() const { return (fcntl(descriptor, F_GETFL) & O_NONBLOCK) == 0; }
};

inline struct Nl80211Kernel {
    // The script.
    std::deque<Datagrams> dumps;  // the replies to the first dumps, before on[NL80211_CMD_GET_SCAN]
    std::map<int, Datagrams> on;  // the reply to each command
    Datagrams notifications;      // wait on the first socket of a handle
    Datagrams later;              // the same, but sent when a scan was triggered

    // What the library did since it had no socket open.
    std::vector<std::string> sent;  // requests, in hexadecimal digits
    std::string commands;           // their commands: "33 32 "
    int openSockets = 0;
    uint32_t joinedGroup = 0;
    mnl_socket* notifying = nullptr;  // the first socket of a handle
    mnl_socket* commanded = nullptr;  // the one that the last request was sent on

    // Knows nl80211 and its scan group, and replies with acknowledgements only. Of the groups with
    // nearly that name, one begins with it, one precedes the right one, and one lacks its NUL.
    void reset() {
        using namespace nl80211;
        *this = {};
        on[CTRL_CMD_GETFAMILY] = {
            family(group(std::string("scan\0", 5), u32(5)) +
                   group(std::string("scan\0", 5), u32(6)) +
                   group(std::string("scans\0", 6), u32(8)) + group("scan", u32(9))),
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
    if (kernel.fails("mnl_socket_open") || bus != NETLINK_GENERIC) {
        return nullptr;
    }
    const Within test(false);
    if (kernel.openSockets == 0) {
        std::exchange(kernel.sent, {});
        std::exchange(kernel.commands, {});
    }
    auto* const opened = new mnl_socket{eventfd(0, 0), 1000u + unsigned(kernel.openSockets), {}};
    kernel.notifying = ++kernel.openSockets % 2 == 1 ? opened : kernel.notifying;
    return opened;
}

int mnl_socket_bind(mnl_socket* socket, unsigned groups, pid_t port) {
    const bool fails = kernel.fails("mnl_socket_bind");
    const Within test(false);
    // By now no program that the process starts may inherit the socket.
    return fails || groups != 0 || port != 0 || fcntl(socket->descriptor, F_GETFD) != 1 ? -1 : 0;
}

int mnl_socket_close(mnl_socket* socket) {
    close(socket->descriptor);
    delete socket;
    --kernel.openSockets;
    return 0;
}

int mnl_socket_get_fd(const mnl_socket* socket) {
    // The flags of a descriptor of this kind can be read, but not changed.
    return kernel.fails("F_SETFL")   ? open("/", O_PATH | O_CLOEXEC)
           : kernel.fails("F_GETFL") ? -1
                                     : socket->descriptor;
}

unsigned mnl_socket_get_portid(const mnl_socket* socket) {
    return socket->port;
}

int mnl_socket_setsockopt(const mnl_socket* socket, int option, void* value, socklen_t length) {
    if (kernel.fails("mnl_socket_setsockopt") || socket != kernel.notifying ||
        option != NETLINK_ADD_MEMBERSHIP || length != sizeof kernel.joinedGroup) {
        return -1;
    }
    std::memcpy(&kernel.joinedGroup, value, sizeof kernel.joinedGroup);
    return 0;
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
    kernel.commands += std::to_string(command) + " ";
    kernel.sent.emplace_back(socket == kernel.notifying ? "notifications " : "commands ");
    for (const uint8_t byte : std::span(request, size)) {
        kernel.sent.back() += {"0123456789abcdef"[byte / 16], "0123456789abcdef"[byte % 16]};
    }
    kernel.commanded = const_cast<mnl_socket*>(socket);
    const bool first = command == NL80211_CMD_GET_SCAN && !kernel.dumps.empty();
    for (std::string datagram : first ? kernel.dumps.front() : kernel.on[command]) {
        for (size_t at; (at = datagram.find(std::string(8, '\xff'))) != std::string::npos;) {
            datagram.replace(at, 8, u32(head.nlmsg_seq) + u32(socket->port));
        }
        kernel.commanded->queue.push_back(datagram);
    }
    if (first) {
        kernel.dumps.pop_front();
    }
    if (command == NL80211_CMD_TRIGGER_SCAN) {
        kernel.notifications.insert(kernel.notifications.end(), kernel.later.begin(),
                                    kernel.later.end());
    }
    return static_cast<ssize_t>(size);
}

ssize_t mnl_socket_recvfrom(const mnl_socket* socket, void* buffer, size_t size) {
    if (kernel.fails("mnl_socket_recvfrom")) {
        return -1;
    }
    const Within test(false);
    auto& own = const_cast<mnl_socket*>(socket)->queue;
    auto& queue = own.empty() && socket == kernel.notifying ? kernel.notifications : own;
    // A blocking receive would never return from an empty one.
    const int nothing = socket->waits() ? EDEADLK : EAGAIN;
    const std::string datagram = queue.empty() ? nl80211::failure(nothing) : queue.front();
    if (!queue.empty()) {
        queue.pop_front();
    }
    errno = datagram.size() == 1 ? datagram[0] : datagram.size() > size ? ENOSPC : 0;
    return errno == 0 ? static_cast<ssize_t>(datagram.copy(static_cast<char*>(buffer), size)) : -1;
}

// Plays the reading of the rest of a reply. A receive that waits is for another socket, and real.
ssize_t recv(int descriptor, void* buffer, size_t size, int flags) {
    static const auto next = reinterpret_cast<decltype(&recv)>(dlsym(RTLD_NEXT, "recv"));
    if (kernel.fails("recv") || (flags == MSG_DONTWAIT && kernel.commanded->queue.empty())) {
        return -1;
    }
    return flags == MSG_DONTWAIT ? mnl_socket_recvfrom(kernel.commanded, buffer, size)
                                 : next(descriptor, buffer, size, flags);
}

}  // extern "C"
