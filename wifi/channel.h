// The two connections of a handle to nl80211, and the exchange of requests and replies over them.
#pragma once

#include <libmnl/libmnl.h>

#include <cstddef>
#include <cstdint>

#include "console-manager/wifi.h"

struct wifi_channel {
    mnl_socket* socket;  // owned
    void* buffer;        // owned, from malloc; a request and its replies use the same bytes
    uint16_t family_id;  // nlmsg_type of nl80211 on this kernel
    uint32_t interface_index;
    uint32_t sequence;  // nlmsg_seq of the next exchange
    void* context;      // what the callback of the current exchange works on
    bool interrupted;   // the last exchange failed because the list changed while it was read
};

struct wifi_data {
    wifi_channel notifications;  // a member of nl80211's scan group
    wifi_channel commands;       // carries every nl80211 request
    bool port_scans;             // a notification began a scan of this port, and none ended it yet
};

// Returns the size of a channel's buffer, which is the most that the kernel puts into one datagram.
size_t wifi_channel_buffer_size();

// Opens a channel that is all zero. Returns 0, or -1 after a line on stderr if there is no such
// interface; other failures are fatal. The caller closes the channel in both cases.
int wifi_channel_open(wifi_channel& channel, const char* interface);

// Releases what an open or half-open channel holds.
void wifi_channel_close(wifi_channel& channel);

// Returns a request without attributes, at the start of the buffer. The next receive overwrites it.
nlmsghdr* wifi_prepare_request(uint16_t nlmsg_type, uint16_t nlmsg_flags, uint8_t cmd, void* buffer,
                               const uint32_t* sequence);

// Returns a request to nl80211 about the channel's interface, in the channel's buffer.
nlmsghdr* wifi_prepare_interface_request(const wifi_channel& channel, uint16_t nlmsg_flags,
                                         uint8_t cmd);

// Sends a request; a failure is fatal.
void wifi_channel_send(const nlmsghdr* message, const mnl_socket* socket);

// Receives one datagram into the buffer, in the current mode of the socket.
ssize_t wifi_channel_receive(const wifi_channel& channel);

// Passes each message of a received datagram to the callback, with the channel as its data. Returns
// the result of mnl_cb_run, which doesn't check a sequence or port of 0.
int wifi_channel_run(wifi_channel& channel, size_t received, uint32_t sequence, uint32_t port,
                     mnl_cb_t callback);

// Receives the complete reply to the request that was sent, and passes each message to the
// callback, with the channel as its data. Returns 0 at the end, or -1 with errno set for an error
// reply, a reply to another request, an interrupted dump or a failed receive; the rest of the reply
// is dropped then. Always advances the sequence.
int wifi_channel_exchange(wifi_channel& channel, mnl_cb_t callback);

// Switches the socket of the channel to non-blocking mode or back; a failure is fatal. This name,
// GetFamilyAndScanId and ReadPastNotificationsNonBlocking are in another style than the others
// because messages on stderr contain them.
void SetChannelNonBlocking(const wifi_channel& channel, bool on);

// Returns the generic netlink command of a message, or 0, which is no command, if it's too short.
uint8_t wifi_command_of(const nlmsghdr* message);
