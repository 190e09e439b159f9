#include <linux/genetlink.h>
#include <linux/nl80211.h>

#include <cerrno>
#include <cstdint>

#include "console-manager/wifi.h"
#include "wifi/channel.h"
#include "wifi/report.h"
#include "wifi/scan_results.h"

namespace {

// What the notifications in one call reported.
struct wifi_notification_flags {
    uint32_t new_scan_results = 0;  // a scan of any port ended, and its results are there
    uint32_t scan_triggered = 0;    // a scan of this port is running
    uint32_t others_triggered = 0;  // number of other ports with a running scan
    uint32_t scan_aborted = 0;      // a scan of this port was given up
    bool* port_scans;               // of the handle
};

int takeInterface(const nlattr* attribute, void* index) {
    if (mnl_attr_get_type(attribute) == NL80211_ATTR_IFINDEX &&
        mnl_attr_get_payload_len(attribute) == sizeof(uint32_t)) {
        *static_cast<uint32_t*>(index) = mnl_attr_get_u32(attribute);
    }
    return MNL_CB_OK;
}

// Returns whether a message is about the channel's port. One that names no port counts as such.
bool isOwn(const nlmsghdr* message, const wifi_channel& channel) {
    uint32_t index = channel.interface_index;
    mnl_attr_parse(message, sizeof(genlmsghdr), takeInterface, &index);
    return index == channel.interface_index;
}

void noteTrigger(bool own, wifi_notification_flags& flags) {
    if (own) {
        flags.scan_triggered = 1;
        *flags.port_scans = true;
    } else {
        ++flags.others_triggered;
    }
}

void noteResults(bool own, wifi_notification_flags& flags) {
    flags.new_scan_results = 1;
    if (own) {
        *flags.port_scans = false;
    }
}

void noteAbort(bool own, wifi_notification_flags& flags) {
    if (own) {
        flags.scan_triggered = 0;
        flags.scan_aborted = 1;
        *flags.port_scans = false;
    } else if (flags.others_triggered > 0) {  // else it began before the handle was opened
        --flags.others_triggered;
    }
}

int wifi_on_notification(const nlmsghdr* message, void* data) {
    const auto& channel = *static_cast<wifi_channel*>(data);
    auto& flags = *static_cast<wifi_notification_flags*>(channel.context);
    const bool own = isOwn(message, channel);
    switch (wifi_command_of(message)) {
        case NL80211_CMD_TRIGGER_SCAN:
            noteTrigger(own, flags);
            return MNL_CB_OK;
        case NL80211_CMD_NEW_SCAN_RESULTS:
            // Only a notification from the kernel counts.
            if (message->nlmsg_pid == 0 && message->nlmsg_seq == 0) {
                noteResults(own, flags);
            }
            return MNL_CB_OK;
        case NL80211_CMD_SCAN_ABORTED:
            noteAbort(own, flags);
            break;
        default:
            break;
    }
    wifi_report_ignored("command type", message);
    return MNL_CB_OK;
}

// The sequence and port of notifications are 0.
int readNotifications(wifi_channel& channel, ssize_t received) {
    return wifi_channel_run(channel, static_cast<size_t>(received), 0, 0, wifi_on_notification);
}

// Reads the queued notifications without waiting for more.
void ReadPastNotificationsNonBlocking(wifi_channel& channel) {
    SetChannelNonBlocking(channel, true);
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
    SetChannelNonBlocking(channel, false);
}

// Starts a passive scan of all channels. Returns 0, or -1 with errno set if the kernel refuses.
int triggerScan(wifi_channel& commands) {
    nlmsghdr* const request = wifi_prepare_interface_request(commands, NLM_F_REQUEST | NLM_F_ACK,
                                                             NL80211_CMD_TRIGGER_SCAN);
    wifi_channel_send(request, commands.socket);
    return wifi_channel_exchange(commands, wifi_on_scan_result);
}

// Starts a scan of this port, unless one is running. Returns false if the kernel refuses.
bool startScan(wifi_data& wifi, wifi_notification_flags& flags) {
    if (triggerScan(wifi.commands) == 0) {
        flags.scan_triggered = 1;
        return true;
    }
    if (errno != EBUSY) {
        return false;
    }
    // A scan that makes the radio busy is this port's if its notification was read in an earlier
    // call, or was queued since the last look: the kernel sends it before it refuses.
    ReadPastNotificationsNonBlocking(wifi.notifications);
    flags.scan_triggered = wifi.port_scans ? 1 : 0;
    return flags.scan_triggered != 0 || flags.new_scan_results != 0;
}

// Waits for one datagram of notifications, without a time limit, and reads it.
void waitForNotification(wifi_channel& notifications) {
    const ssize_t received = wifi_channel_receive(notifications);
    if (received <= 0) {
        wifi_fatal_errno("Waiting for new scan results failed - mnl_socket_recvfrom");
    }
    if (readNotifications(notifications, received) <= 0) {
        wifi_fatal_errno("Processing notificatoins failed - mnl_cb_run");
    }
}

// Waits for the results of a running scan, of this port or another, and starts one if there is none
// or if another port's was given up. Returns false if this port's scan was refused or given up, so
// that no results will come.
bool waitForResults(wifi_data& wifi, wifi_notification_flags& flags) {
    flags.scan_aborted = 0;
    while (flags.new_scan_results == 0 && flags.scan_aborted == 0) {
        if (flags.scan_triggered != 0 || flags.others_triggered != 0) {
            waitForNotification(wifi.notifications);
        } else if (!startScan(wifi, flags)) {
            return false;
        }
    }
    return flags.new_scan_results != 0;
}

}  // namespace

int32_t wifi_scan_all(wifi_data* wifi, wifi_bss_record* records, int32_t capacity) {
    wifi_notification_flags flags{.port_scans = &wifi->port_scans};
    wifi_scan_results results{records, capacity, 0};
    wifi->notifications.context = &flags;
    wifi->commands.context = &results;

    // A scan that is running, or ended since the last call, serves as well as a new one.
    ReadPastNotificationsNonBlocking(wifi->notifications);
    if (!waitForResults(*wifi, flags)) {
        return -1;
    }
    wifi_dump_scan(wifi->commands);
    return results.count;
}
