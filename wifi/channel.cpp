#include "wifi/channel.h"

#include <fcntl.h>
#include <linux/genetlink.h>
#include <linux/nl80211.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "wifi/report.h"

namespace {

// Returns the length of those messages that lie completely within the datagram. libmnl stops at the
// first that doesn't, but up to version 1.0.4 it reads a length of 2 GiB or more as negative and
// steps out of the buffer.
size_t lengthOfMessages(const void* datagram, size_t received) {
    size_t length = 0;
    while (received - length >= sizeof(nlmsghdr)) {
        nlmsghdr head;
        std::memcpy(&head, static_cast<const char*>(datagram) + length, sizeof head);
        if (head.nlmsg_len < sizeof head || head.nlmsg_len > received - length) {
            break;
        }
        length = std::min<size_t>(length + NLMSG_ALIGN(head.nlmsg_len), received);
    }
    return length;
}

// Drops the rest of a reply that failed half-way. Otherwise the next exchange would read it and
// fail in turn, and while a dump runs the kernel refuses the next one. errno stays as it is.
void dropReplies(const wifi_channel& channel) {
    const int failure = errno;
    while (recv(mnl_socket_get_fd(channel.socket), channel.buffer, wifi_channel_buffer_size(),
                MSG_DONTWAIT) > 0) {
    }
    errno = failure;
}

}  // namespace

size_t wifi_channel_buffer_size() {
    return static_cast<size_t>(std::min(sysconf(_SC_PAGESIZE), 8192L));
}

int wifi_channel_open(wifi_channel& channel, const char* interface) {
    channel.sequence = 1;
    channel.buffer = std::malloc(wifi_channel_buffer_size());
    if (channel.buffer == nullptr) {
        wifi_fatal_text("Insufficent memory for netlink socket buffer");
    }
    channel.interface_index = if_nametoindex(interface);
    if (channel.interface_index == 0) {
        wifi_report_errno("Incorrect network interface");
        return -1;
    }
    channel.context = nullptr;
    channel.socket = mnl_socket_open(NETLINK_GENERIC);
    if (channel.socket == nullptr) {
        wifi_fatal_errno("mnl_socket_open");
    }
    // mnl_socket_open can't set the flag itself.
    fcntl(mnl_socket_get_fd(channel.socket), F_SETFD, FD_CLOEXEC);
    if (mnl_socket_bind(channel.socket, 0, MNL_SOCKET_AUTOPID) < 0) {
        wifi_fatal_errno("mnl_socket_bind");
    }
    return 0;
}

void wifi_channel_close(wifi_channel& channel) {
    std::free(channel.buffer);
    if (channel.socket != nullptr) {
        mnl_socket_close(channel.socket);
    }
}

nlmsghdr* wifi_prepare_request(uint16_t nlmsg_type, uint16_t nlmsg_flags, uint8_t cmd, void* buffer,
                               const uint32_t* sequence) {
    // libmnl 1.0.4 doesn't write the padding of attributes, which would then hold old replies.
    std::memset(buffer, 0, wifi_channel_buffer_size());
    nlmsghdr* const message = mnl_nlmsg_put_header(buffer);
    message->nlmsg_type = nlmsg_type;
    message->nlmsg_flags = nlmsg_flags;
    message->nlmsg_seq = *sequence;
    auto* const header =
        static_cast<genlmsghdr*>(mnl_nlmsg_put_extra_header(message, sizeof(genlmsghdr)));
    header->cmd = cmd;
    header->version = 1;
    return message;
}

nlmsghdr* wifi_prepare_interface_request(const wifi_channel& channel, uint16_t nlmsg_flags,
                                         uint8_t cmd) {
    nlmsghdr* const message = wifi_prepare_request(channel.family_id, nlmsg_flags, cmd,
                                                   channel.buffer, &channel.sequence);
    mnl_attr_put_u32(message, NL80211_ATTR_IFINDEX, channel.interface_index);
    return message;
}

void wifi_channel_send(const nlmsghdr* message, const mnl_socket* socket) {
    if (mnl_socket_sendto(socket, message, message->nlmsg_len) < 0) {
        wifi_fatal_errno("mnl_socket_sendto");
    }
}

ssize_t wifi_channel_receive(const wifi_channel& channel) {
    return mnl_socket_recvfrom(channel.socket, channel.buffer, wifi_channel_buffer_size());
}

int wifi_channel_run(wifi_channel& channel, size_t received, uint32_t sequence, uint32_t port,
                     mnl_cb_t callback) {
    return mnl_cb_run(channel.buffer, lengthOfMessages(channel.buffer, received), sequence, port,
                      callback, &channel);
}

int wifi_channel_exchange(wifi_channel& channel, mnl_cb_t callback) {
    const unsigned port = mnl_socket_get_portid(channel.socket);
    ssize_t received = 0;
    int result = 0;
    do {
        received = wifi_channel_receive(channel);
        result = received <= 0 ? static_cast<int>(received)
                               : wifi_channel_run(channel, static_cast<size_t>(received),
                                                  channel.sequence, port, callback);
    } while (result > 0);
    // libmnl's result for a message with NLM_F_DUMP_INTR.
    channel.interrupted = received > 0 && result < 0 && errno == EINTR;
    if (result < 0) {
        dropReplies(channel);
    }
    ++channel.sequence;
    return result;
}

void SetChannelNonBlocking(const wifi_channel& channel, bool on) {
    const int descriptor = mnl_socket_get_fd(channel.socket);
    const int flags = fcntl(descriptor, F_GETFL, 0);
    if (flags == -1) {
        wifi_fatal_errno("SetChannelNonBlocking F_GETFL");
    }
    if (fcntl(descriptor, F_SETFL, on ? flags | O_NONBLOCK : flags & ~O_NONBLOCK) == -1) {
        wifi_fatal_errno("SetChannelNonBlocking F_SETFL");
    }
}

uint8_t wifi_command_of(const nlmsghdr* message) {
    return mnl_nlmsg_get_payload_len(message) == 0
               ? 0
               : *static_cast<const uint8_t*>(mnl_nlmsg_get_payload(message));
}
