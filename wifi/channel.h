// A handle's two connections to nl80211, and how requests and replies go over them.
#pragma once

#include <libmnl/libmnl.h>

#include <cstddef>
#include <cstdint>

#include "console-manager/wifi.h"

struct wifi_channel {
    mnl_socket* socket;  // owned
    void* buffer;        // owned, from malloc: requests are built in it, replies received over them
    uint16_t family_id;  // nlmsg_type of nl80211 on this kernel
    uint32_t interface_index;
    uint32_t sequence;  // nlmsg_seq of the next exchange
    void* context;      // what the callback of the running exchange works on
};

struct wifi_data {
    wifi_channel notifications;  // a member of nl80211's scan group
    wifi_channel commands;       // carries every nl80211 request
};

// Size of a channel's buffer, which is as much as the kernel puts into one datagram.
size_t wifi_channel_buffer_size();

// Opens a channel that is all zero. Returns 0, or -1 after a line on stderr if there is no such
// interface; the other failures are fatal. What a failed open has taken stays in the channel.
int wifi_channel_open(wifi_channel& channel, const char* interface);

// Releases what the channel holds, if anything.
void wifi_channel_close(wifi_channel& channel);

// A request at the start of the buffer, without attributes. It is gone with the next receive.
nlmsghdr* wifi_prepare_request(uint16_t nlmsg_type, uint16_t nlmsg_flags, uint8_t cmd, void* buffer,
                               const uint32_t* sequence);

// The same to nl80211, about the channel's interface.
nlmsghdr* wifi_prepare_interface_request(const wifi_channel& channel, uint16_t nlmsg_flags,
                                         uint8_t cmd);

// Sends a request; a failure is fatal.
void wifi_channel_send(const nlmsghdr* message, const mnl_socket* socket);

// Receives one datagram into the buffer, in the socket's present mode.
ssize_t wifi_channel_receive(const wifi_channel& channel);

// Gives each message of a datagram that has been received to the callback, with the channel as its
// data. Returns what mnl_cb_run gives; 0 as sequence or port turns its check of that off.
int wifi_channel_run(wifi_channel& channel, size_t received, uint32_t sequence, uint32_t port,
                     mnl_cb_t callback);

// Receives until the request that has been sent is answered in full, and gives each message to the
// callback, with the channel as its data. Returns 0 at the end, or -1 with errno set for an error
// reply, a reply to something else or a failed receive; the rest of the answer is gone then. The
// sequence moves on in any case.
int wifi_channel_exchange(wifi_channel& channel, mnl_cb_t callback);

// Makes receives on the channel return at once, or wait again; a failure is fatal.
void SetChannelNonBlocking(const wifi_channel& channel, bool on);

// The generic netlink command of a message; 0, which is no command, for one too short to have it.
uint8_t wifi_command_of(const nlmsghdr* message);

// Tells on stderr of a message on `commands` for which its callback has no use.
void wifi_report_ignored(const nlmsghdr* message);
