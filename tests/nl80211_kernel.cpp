#include "nl80211_kernel.h"

#include <fcntl.h>
#include <libmnl/libmnl.h>
#include <linux/genetlink.h>
#include <linux/nl80211.h>
#include <net/if.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>

Nl80211Kernel kernel;

namespace nl80211 {

namespace {

// Stands for the sequence and the port of whatever request is answered.
constexpr uint32_t kOfRequest = 0xffffffff;

size_t aligned(size_t length) {
    return (length + 3) / 4 * 4;
}

std::string message(uint16_t type, uint32_t sequence, uint32_t port, const std::string& payload) {
    const auto length = static_cast<uint32_t>(sizeof(nlmsghdr) + payload.size());
    return bytes(nlmsghdr{length, type, 0, sequence, port}) + payload;
}

// Gives the messages of an answer the sequence and port that they answer to.
std::string addressed(std::string datagram, uint32_t sequence, uint32_t port) {
    for (size_t at = 0; at + sizeof(nlmsghdr) <= datagram.size();) {
        nlmsghdr head;
        std::memcpy(&head, datagram.data() + at, sizeof head);
        if (head.nlmsg_seq == kOfRequest) {
            datagram.replace(at + offsetof(nlmsghdr, nlmsg_seq), 8, u32(sequence) + u32(port));
        }
        at += std::max(aligned(head.nlmsg_len), sizeof head);
    }
    return datagram;
}

}  // namespace

std::string attribute(uint16_t type, const std::string& payload, int lengthOff) {
    const auto length = static_cast<uint16_t>(4 + static_cast<int>(payload.size()) + lengthOff);
    std::string whole = u16(length) + u16(type) + payload;
    whole.resize(aligned(whole.size()));
    return whole;
}

std::string reply(uint8_t command, const std::string& attributes, uint16_t type) {
    return message(type, kOfRequest, kOfRequest, bytes(genlmsghdr{command, 1, 0}) + attributes);
}

std::string notification(uint8_t command, uint32_t sequence, uint32_t port) {
    return message(kFamily, sequence, port, bytes(genlmsghdr{command, 1, 0}));
}

std::string acknowledgement(int error) {
    return message(NLMSG_ERROR, kOfRequest, kOfRequest, bytes(nlmsgerr{error, {}}));
}

std::string done() {
    return message(NLMSG_DONE, kOfRequest, kOfRequest, u32(0));
}

std::string family(const std::string& groups) {
    return reply(CTRL_CMD_NEWFAMILY,
                 attribute(CTRL_ATTR_FAMILY_NAME, std::string("nl80211\0", 8)) +
                     attribute(CTRL_ATTR_FAMILY_ID, u16(kFamily)) +
                     attribute(CTRL_ATTR_MCAST_GROUPS, groups),
                 GENL_ID_CTRL);
}

std::string group(const std::string& name, uint32_t id) {
    return attribute(1, attribute(CTRL_ATTR_MCAST_GRP_ID, u32(id)) +
                            attribute(CTRL_ATTR_MCAST_GRP_NAME, name + '\0'));
}

std::string network(const std::string& bssAttributes) {
    return reply(NL80211_CMD_NEW_SCAN_RESULTS, attribute(NL80211_ATTR_IFINDEX, u32(7)) +
                                                   attribute(NL80211_ATTR_BSS, bssAttributes));
}

}  // namespace nl80211

using namespace nl80211;

void Nl80211Kernel::reset() {
    *this = {};
    on[CTRL_CMD_GETFAMILY] = {family(group("config", 5) + group("scan", 6) + group("mlme", 8)),
                              acknowledgement()};
    on[NL80211_CMD_TRIGGER_SCAN] = {acknowledgement()};
    on[NL80211_CMD_GET_SCAN] = {done()};
    on[NL80211_CMD_GET_STATION] = {acknowledgement()};
}

struct mnl_socket {
    int descriptor;  // any whose mode can be switched
    unsigned port;
    Datagrams queue;
};

namespace {

mnl_socket* notifying = nullptr;  // the socket that the kernel's notifications go to
mnl_socket* commanded = nullptr;  // the one that was sent a request last

bool isBlocking(const mnl_socket* socket) {
    return (fcntl(socket->descriptor, F_GETFL) & O_NONBLOCK) == 0;
}

bool fails(const char* function) {
    if (kernel.failing != function || --kernel.failingCall > 0) {
        return false;
    }
    errno = ENOBUFS;
    return true;
}

struct Work {
    Work() { kernel.working = true; }
    ~Work() { kernel.working = false; }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;
};

}  // namespace

bool Nl80211Kernel::waits() {
    return isBlocking(notifying);
}

extern "C" {

unsigned if_nametoindex(const char* name) noexcept {
    if (fails("if_nametoindex") || std::strcmp(name, "wlan7") != 0) {
        errno = ENODEV;
        return 0;
    }
    return 7;
}

mnl_socket* mnl_socket_open(int bus) {
    if (fails("mnl_socket_open") || bus != NETLINK_GENERIC) {
        return nullptr;
    }
    const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    auto* const opened = new mnl_socket{descriptor, 1000u + unsigned(kernel.openSockets), {}};
    if (++kernel.openSockets % 2 == 1) {
        notifying = opened;
    }
    return opened;
}

int mnl_socket_bind(mnl_socket*, unsigned groups, pid_t port) {
    return fails("mnl_socket_bind") || groups != 0 || port != 0 ? -1 : 0;
}

int mnl_socket_close(mnl_socket* socket) {
    close(socket->descriptor);
    delete socket;
    --kernel.openSockets;
    return 0;
}

int mnl_socket_get_fd(const mnl_socket* socket) {
    // A descriptor of this kind tells its flags, but doesn't let them be changed.
    if (fails("F_SETFL")) {
        return open("/", O_PATH | O_CLOEXEC);
    }
    return fails("F_GETFL") ? -1 : socket->descriptor;
}

unsigned mnl_socket_get_portid(const mnl_socket* socket) {
    return socket->port;
}

int mnl_socket_setsockopt(const mnl_socket* socket, int option, void* value, socklen_t length) {
    if (fails("mnl_socket_setsockopt") || socket != notifying || option != NETLINK_ADD_MEMBERSHIP ||
        length != sizeof kernel.joinedGroup) {
        return -1;
    }
    std::memcpy(&kernel.joinedGroup, value, sizeof kernel.joinedGroup);
    return 0;
}

ssize_t mnl_socket_sendto(const mnl_socket* socket, const void* request, size_t size) {
    const Work work;
    if (fails("mnl_socket_sendto")) {
        return -1;
    }
    nlmsghdr head;
    std::memcpy(&head, request, sizeof head);
    const auto* const octets = static_cast<const uint8_t*>(request);
    std::string digits = socket == notifying ? "notifications " : "commands ";
    for (size_t i = 0; i < size; ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", octets[i]);
        digits += pair;
    }
    kernel.sent.push_back(digits);
    commanded = const_cast<mnl_socket*>(socket);
    const uint8_t command = octets[sizeof head];
    kernel.commands += std::to_string(command) + "/" + std::to_string(head.nlmsg_seq) + " ";
    for (const std::string& datagram : kernel.on[command]) {
        commanded->queue.push_back(addressed(datagram, head.nlmsg_seq, socket->port));
    }
    if (command == NL80211_CMD_TRIGGER_SCAN) {
        auto& queue = kernel.notifications;
        queue.insert(queue.end(), kernel.later.begin(), kernel.later.end());
    }
    return static_cast<ssize_t>(size);
}

ssize_t mnl_socket_recvfrom(const mnl_socket* socket, void* buffer, size_t size) {
    const Work work;
    auto& own = const_cast<mnl_socket*>(socket)->queue;
    auto& queue = own.empty() && socket == notifying ? kernel.notifications : own;
    if (queue.empty()) {
        // A blocking receive would never return.
        errno = isBlocking(socket) ? EDEADLK : EAGAIN;
        return -1;
    }
    const std::string datagram = queue.front();
    queue.pop_front();
    if (datagram.size() == 1 || datagram.size() > size) {
        errno = datagram.size() == 1 ? datagram[0] : ENOSPC;
        return -1;
    }
    errno = 0;
    std::memcpy(buffer, datagram.data(), datagram.size());
    return static_cast<ssize_t>(datagram.size());
}

// For what is left of an answer.
ssize_t recv(int descriptor, void* buffer, size_t size, int flags) {
    const bool waits = descriptor != commanded->descriptor || flags != MSG_DONTWAIT;
    return waits || commanded->queue.empty() ? -1 : mnl_socket_recvfrom(commanded, buffer, size);
}

}  // extern "C"
