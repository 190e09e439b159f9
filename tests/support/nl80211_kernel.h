// A kernel with nl80211, played: it defines libmnl's socket functions and if_nametoindex for the
// program whose one source includes this, records what the library sends, and answers from a
// script. libmnl's message code stays real.
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

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <deque>
#include <map>
#include <span>
#include <sstream>
#include <vector>

#include "support/fault.h"
#include "support/netlink_message.h"

using Datagrams = std::deque<std::string>;

// Its messages.
namespace nl80211 {

constexpr uint16_t kFamily = 28;
constexpr uint32_t kOfRequest = 0xffffffff;  // sequence and port of whatever request is answered

inline std::string message(uint16_t type, const std::string& payload,
                           uint32_t sequence = kOfRequest, uint32_t port = kOfRequest) {
    const auto length = static_cast<uint32_t>(sizeof(nlmsghdr) + payload.size());
    return bytes(nlmsghdr{length, type, 0, sequence, port}) + payload;
}
inline std::string reply(uint8_t command, const std::string& attributes, uint16_t type = kFamily) {
    return message(type, bytes(genlmsghdr{command, 1, 0}) + attributes);
}
inline std::string notification(uint8_t command, uint32_t sequence = 0, uint32_t port = 0,
                                const std::string& attributes = "") {
    return message(kFamily, bytes(genlmsghdr{command, 1, 0}) + attributes, sequence, port);
}
// What the kernel tells of a port's scan.
inline std::string notificationOf(uint32_t port, uint8_t command) {
    return notification(command, 0, 0, attribute(NL80211_ATTR_IFINDEX, u32(port)));
}
constexpr auto acknowledgement = [](int error = 0) {
    return message(NLMSG_ERROR, bytes(nlmsgerr{error, {}}));
};
constexpr auto done = [] { return message(NLMSG_DONE, u32(0)); };

// What the controller knows: a family with the attributes of its groups, and one group.
inline std::string family(const std::string& groups) {
    return reply(CTRL_CMD_NEWFAMILY,
                 attribute(CTRL_ATTR_FAMILY_NAME, std::string("nl80211\0", 8)) +
                     attribute(CTRL_ATTR_FAMILY_ID, u16(kFamily)) +
                     attribute(CTRL_ATTR_MCAST_GROUPS, groups),
                 GENL_ID_CTRL);
}
inline std::string group(const std::string& name, uint32_t id) {
    return attribute(1, attribute(CTRL_ATTR_MCAST_GRP_ID, u32(id)) +
                            attribute(CTRL_ATTR_MCAST_GRP_NAME, name + '\0'));
}

// One network of a scan, from the attributes of its BSS, and the figures of a link.
inline std::string network(const std::string& bss) {
    return reply(NL80211_CMD_NEW_SCAN_RESULTS,
                 attribute(NL80211_ATTR_IFINDEX, u32(7)) + attribute(NL80211_ATTR_BSS, bss));
}
inline std::string station(const std::string& info) {
    return reply(NL80211_CMD_NEW_STATION, attribute(NL80211_ATTR_STA_INFO, info));
}

inline std::string elements(const std::string& payload) {
    return attribute(NL80211_BSS_INFORMATION_ELEMENTS, payload);
}

inline std::string ssid(const std::string& name) {
    return elements('\0' + u8(static_cast<uint8_t>(name.size())) + name + "\x01\x01\x02");
}

// A dump of networks by number, each with its status behind a colon if it has one: "1 2:1 3". All
// that is told of a network follows from its number.
inline Datagrams networks(const std::string& list) {
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

inline std::string answerTo(uint32_t sequence, uint32_t port, std::string datagram) {
    nlmsghdr head;
    for (size_t at = 0; at + sizeof head <= datagram.size();
         at += std::max(aligned(head.nlmsg_len), sizeof head)) {
        std::memcpy(&head, datagram.data() + at, sizeof head);
        if (head.nlmsg_seq == kOfRequest) {
            datagram.replace(at + offsetof(nlmsghdr, nlmsg_seq), 8, u32(sequence) + u32(port));
        }
    }
    return datagram;
}

// In place of a datagram: a receive that fails.
constexpr auto failure = [](int error) { return std::string(1, static_cast<char>(error)); };

}  // namespace nl80211

struct mnl_socket {
    int descriptor;  // any whose mode can be switched
    unsigned port;
    Datagrams queue;

    bool waits() const { return (fcntl(descriptor, F_GETFL) & O_NONBLOCK) == 0; }
};

inline struct Nl80211Kernel {
    // The script.
    std::map<int, Datagrams> on;  // the answer to each command
    Datagrams notifications;      // wait on the first socket of a handle
    Datagrams later;              // the same, but come when a scan has been triggered

    // What was seen since there was no socket open.
    std::vector<std::string> sent;  // requests, in hexadecimal digits
    std::string commands;           // their commands and numbers: "33/1 32/2 "
    int openSockets = 0;
    uint32_t joinedGroup = 0;
    mnl_socket* notifying = nullptr;  // the first socket of a handle
    mnl_socket* commanded = nullptr;  // the one that was sent a request last

    // A kernel that knows nl80211 and its scan group, and answers with no more than its
    // acknowledgement.
    void reset() {
        using namespace nl80211;
        *this = {};
        on[CTRL_CMD_GETFAMILY] = {family(group("config", 5) + group("scan", 6) + group("mlme", 8)),
                                  acknowledgement()};
        on[NL80211_CMD_TRIGGER_SCAN] = {acknowledgement()};
        on[NL80211_CMD_GET_SCAN] = {done()};
        on[NL80211_CMD_GET_STATION] = {acknowledgement()};
    }

    static bool fails(const char* function) {
        if (!fault.hits(function)) {
            return false;
        }
        errno = ENOBUFS;
        return true;
    }

    // Takes a request, and queues the answer with the sequence and port of that request.
    void take(mnl_socket* socket, const uint8_t* request, size_t size) {
        const auto& head = *reinterpret_cast<const nlmsghdr*>(request);
        const int command = request[sizeof head];
        sent.emplace_back(socket == notifying ? "notifications " : "commands ");
        for (const uint8_t byte : std::span(request, size)) {
            sent.back() += {"0123456789abcdef"[byte / 16], "0123456789abcdef"[byte % 16]};
        }
        commands += std::to_string(command) + "/" + std::to_string(head.nlmsg_seq) + " ";
        commanded = socket;
        for (const std::string& datagram : on[command]) {
            socket->queue.push_back(nl80211::answerTo(head.nlmsg_seq, socket->port, datagram));
        }
        if (command == NL80211_CMD_TRIGGER_SCAN) {
            notifications.insert(notifications.end(), later.begin(), later.end());
        }
    }
} kernel;

extern "C" {

unsigned if_nametoindex(const char* name) noexcept {
    if (kernel.fails("if_nametoindex") || std::strcmp(name, "wlan7") != 0) {
        errno = ENODEV;
        return 0;
    }
    return 7;
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
    const int descriptor = eventfd(0, EFD_CLOEXEC);
    auto* const opened = new mnl_socket{descriptor, 1000u + unsigned(kernel.openSockets), {}};
    kernel.notifying = ++kernel.openSockets % 2 == 1 ? opened : kernel.notifying;
    return opened;
}

int mnl_socket_bind(mnl_socket*, unsigned groups, pid_t port) {
    return kernel.fails("mnl_socket_bind") || groups != 0 || port != 0 ? -1 : 0;
}

int mnl_socket_close(mnl_socket* socket) {
    close(socket->descriptor);
    delete socket;
    --kernel.openSockets;
    return 0;
}

int mnl_socket_get_fd(const mnl_socket* socket) {
    // A descriptor of this kind tells its flags, but doesn't let them be changed.
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

ssize_t mnl_socket_sendto(const mnl_socket* socket, const void* request, size_t size) {
    if (kernel.fails("mnl_socket_sendto")) {
        return -1;
    }
    const Within test(false);
    kernel.take(const_cast<mnl_socket*>(socket), static_cast<const uint8_t*>(request), size);
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

// For what is left of an answer; a receive that waits is another socket's, and real.
ssize_t recv(int descriptor, void* buffer, size_t size, int flags) {
    static const auto next = reinterpret_cast<decltype(&recv)>(dlsym(RTLD_NEXT, "recv"));
    if (kernel.fails("recv")) {
        return -1;
    }
    if (flags != MSG_DONTWAIT) {
        return next(descriptor, buffer, size, flags);
    }
    mnl_socket* const socket = kernel.commanded;
    errno = EAGAIN;
    return descriptor != socket->descriptor || socket->queue.empty()
               ? -1
               : mnl_socket_recvfrom(socket, buffer, size);
}

}  // extern "C"
