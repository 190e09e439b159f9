#include <linux/nl80211.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "console-manager/wifi.h"
#include "wifi/channel.h"
#include "wifi/fatal.h"
#include "wifi/scan_results.h"

namespace {

// What the notifications of one call have told, whichever interface they were about.
struct wifi_notification_flags {
    uint32_t new_scan_results;  // a scan has ended, and its results are there
    uint32_t scan_triggered;    // a scan is running
    uint32_t scan_aborted;      // a scan was given up
};

int wifi_on_notification(const nlmsghdr* message, void* data) {
    auto& flags = *static_cast<wifi_notification_flags*>(static_cast<wifi_channel*>(data)->context);
    const uint8_t command = wifi_command_of(message);
    switch (command) {
        case NL80211_CMD_TRIGGER_SCAN:
            flags.scan_triggered = 1;
            return MNL_CB_OK;
        case NL80211_CMD_NEW_SCAN_RESULTS:
            // Only the kernel's own word counts.
            if (message->nlmsg_pid == 0 && message->nlmsg_seq == 0) {
                flags.new_scan_results = 1;
            }
            return MNL_CB_OK;
        case NL80211_CMD_SCAN_ABORTED:
            flags.scan_triggered = 0;
            flags.scan_aborted = 1;
            break;
        default:
            break;
    }
    std::fprintf(stderr, "Ignoring generic netlink command type %u seq %u pid  %u genl cmd %u\n",
                 unsigned{message->nlmsg_type}, unsigned{message->nlmsg_seq},
                 unsigned{message->nlmsg_pid}, unsigned{command});
    return MNL_CB_OK;
}

// Notifications carry 0 as sequence and port.
int readNotifications(wifi_channel& channel, ssize_t received) {
    return wifi_channel_run(channel, static_cast<size_t>(received), 0, 0, wifi_on_notification);
}

// Reads what has queued up since the last call.
void ReadPastNotificationsNonBlocking(wifi_channel& channel) {
    for (;;) {
        const ssize_t received = wifi_channel_receive(channel);
        if (received < 0) {
            break;
        }
        if (readNotifications(channel, received) <= 0) {
            wifi_fatal_errno("ReadPastNotificationsNonBlocking mnl_cb_run failed");
        }
    }
    if (errno != EAGAIN && errno != EINPROGRESS) {
        wifi_fatal_errno("ReadPastNotificationsNonBlocking mnl_socket_recv failed");
    }
}

// Starts a passive scan of all channels. Returns 0, or -1 if the kernel refuses.
int triggerScan(wifi_channel& commands) {
    nlmsghdr* const request = wifi_prepare_interface_request(commands, NLM_F_REQUEST | NLM_F_ACK,
                                                             NL80211_CMD_TRIGGER_SCAN);
    wifi_channel_send(request, commands.socket);
    return wifi_channel_exchange(commands, wifi_on_scan_result);
}

// Waits for results, however long it takes. Returns false if the scan was given up: no results
// would come of it.
bool waitForResults(wifi_channel& notifications, wifi_notification_flags& flags) {
    flags.scan_aborted = 0;
    while (flags.new_scan_results == 0 && flags.scan_aborted == 0) {
        const ssize_t received = wifi_channel_receive(notifications);
        if (received <= 0) {
            wifi_fatal_errno("Waiting for new scan results failed - mnl_socket_recvfrom");
        }
        if (readNotifications(notifications, received) <= 0) {
            wifi_fatal_errno("Processing notificatoins failed - mnl_cb_run");
        }
    }
    return flags.new_scan_results != 0;
}

}  // namespace

int32_t wifi_scan_all(wifi_data* wifi, wifi_bss_record* records, int32_t capacity) {
    wifi_notification_flags flags{};
    wifi_scan_results results{records, capacity, 0};
    wifi->notifications.context = &flags;
    wifi->commands.context = &results;

    SetChannelNonBlocking(wifi->notifications, true);
    ReadPastNotificationsNonBlocking(wifi->notifications);
    SetChannelNonBlocking(wifi->notifications, false);

    // A scan that runs, or has ended since the last call, serves as well as one of our own.
    const bool scanned = flags.new_scan_results != 0 || flags.scan_triggered != 0;
    if (!scanned && triggerScan(wifi->commands) == -1) {
        return -1;
    }
    if (!waitForResults(wifi->notifications, flags)) {
        return -1;
    }
    wifi_dump_scan(wifi->commands);
    return results.count;
}
