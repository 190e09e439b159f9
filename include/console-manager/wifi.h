/** @file
 * Wi-Fi: scans for networks and reports the state of the link, over nl80211.
 *
 * CML_getWifiStatus() reports the link of a port (a network interface, by its name in the kernel)
 * in one call. Scans, and more about the link, need a handle: wifi_scan_init() opens it for one
 * port, wifi_scan_all() and wifi_scan_station() use it any number of times, wifi_scan_close()
 * closes it.
 *
 * FATAL FAILURES. Most failures print a line on stderr and end the whole process by exit(1): no
 * memory for a handle, a netlink socket that can't be opened, switched, written or read, a kernel
 * without nl80211. This can't be turned off. An application that can't accept it makes the call in
 * a child process, as the example wifi_scan.c does, and calls fflush(NULL) before fork(): exit() in
 * the child would write the output that the parent had buffered. The description of each function
 * lists the failures that it returns.
 *
 * Messages. All go to stderr. Some report a fault in what the kernel sent: one attribute, the name
 * of one network or one message is lost, and the call continues.
 *
 * Threads. There are no background threads and no locks. A handle serves one thread at a time; two
 * handles, even of the same port, can be used at the same time.
 *
 * Limits.
 * - A handle belongs to the port, not to its name: it follows a rename. After the port was removed,
 *   wifi_scan_all() returns -1 and wifi_scan_station() 0, even if another port gets the name.
 * - A port belongs to a network as soon as it has joined it, before the key is agreed. With a wrong
 *   password it reads as joined or connected for some seconds.
 * - A network whose beacon has some 1.9 KB or more hides itself and all networks after it in the
 *   kernel's list, because the kernel's reply has no room for it and ends there. A port that
 *   belongs to one of these networks reads as not connected.
 * - A name that contains a NUL ends there.
 */
#ifndef CONSOLE_MANAGER_WIFI_H
#define CONSOLE_MANAGER_WIFI_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** A scanner for one port. Its content is private to the library. */
typedef struct wifi_data wifi_data;

/** The relation of a port to a network. */
enum CML_BssStatus {
    CML_BSS_STATUS_NONE = -1,         /**< it doesn't belong to the network */
    CML_BSS_STATUS_AUTHENTICATED = 0, /**< authenticated, but not joined yet */
    CML_BSS_STATUS_ASSOCIATED = 1,    /**< it has joined the network */
    CML_BSS_STATUS_IBSS_JOINED = 2    /**< it has joined a network without an access point */
};

/** A network that a scan found: the BSS of one access point. */
typedef struct wifi_bss_record {
    uint8_t bssid[6];   /**< MAC address of the access point, in the order in which it's written */
    uint32_t frequency; /**< in MHz */
    char ssid[33];      /**< name, NUL-terminated bytes of unknown encoding; empty if it's hidden or
                           can't be read */
    int32_t status;     /**< a CML_BssStatus */
    int32_t signal_mbm; /**< in mBm, hundredths of a dBm */
    uint32_t seen_ms_ago; /**< time since the last beacon or reply, in milliseconds */
} wifi_bss_record;

/** The link of the port to its network. */
typedef struct wifi_station_record {
    uint8_t bssid[6];      /**< of the network, as in wifi_bss_record */
    char ssid[33];         /**< name of the network, as in wifi_bss_record */
    int32_t status;        /**< a CML_BssStatus */
    int8_t signal_dbm;     /**< of the last packet, in dBm */
    int8_t signal_avg_dbm; /**< average, in dBm */
    uint32_t rx_packets;   /**< received from the access point */
    uint32_t tx_packets;   /**< sent to the access point */
} wifi_station_record;

/**
 * Opens a handle for a port and listens for scan results from then on.
 *
 * @param interface Name of the port, not null. Any network port will do, even a wired one.
 * @return the handle, which the caller closes by wifi_scan_close(). Null, after a line on stderr,
 *         if there is no such port. Every other failure is fatal.
 */
wifi_data* wifi_scan_init(const char* interface);

/** Closes a handle, not null, and releases all its resources. */
void wifi_scan_close(wifi_data* wifi);

/**
 * Lists the networks around the port.
 *
 * Open a handle for each list. On a handle that was open before, the call takes the results of any
 * scan that ended since the last call, and the list is empty if they are older than 30 seconds, or
 * short if that scan was for a few channels only. The next call returns the whole list.
 *
 * Without such results the call waits for a scan that began since the handle was opened, and if
 * there is none it scans all channels itself. The wait has no time limit; a scan takes some seconds
 * as a rule. A scan of another wireless port counts like one of this port, and the list may then be
 * an old one. If that scan is given up, the call scans its own port.
 *
 * Element 0 is the network that the port belongs to, if there is one, whatever its place in the
 * kernel's list and the size of the array. The array isn't cleared: a figure that the kernel
 * doesn't send keeps what the element held before, so that 0 in an array of zeros may stand for a
 * signal that wasn't sent. Only status is always written. If the list changes while it is read, the
 * call reads it again, at most ten times; an element then begins as what element 0 held before the
 * call, and those after the last network may have been written. A list that can't be read or that
 * breaks off counts as far as it was read.
 *
 * Fatal: a failure of the handle's sockets, such as
 * - a signal that ends the wait because its handler was set without SA_RESTART,
 * - an overflow of the queue of notifications between two calls. With the kernel's default buffers
 *   some 75 scans by others, of any port, fill it. The other functions don't use this queue.
 *
 * @param wifi The handle, not null.
 * @param[out] records The caller's array; may be null if capacity is 0.
 * @param capacity Its number of elements.
 * @return the number of networks that the kernel listed. If it's more than capacity, the array
 *         holds the first ones. -1 if the kernel refused the scan (the port is down or isn't
 *         wireless, the radio is busy with another port's scan or one from before the handle was
 *         opened, the process lacks CAP_NET_ADMIN), or if this port's scan was given up during the
 *         wait (for example because the port was taken down). The next call on the handle tries
 *         anew.
 */
int32_t wifi_scan_all(wifi_data* wifi, wifi_bss_record* records, int32_t capacity);

/**
 * Reports the network that the port belongs to, and the link to it. It reads the kernel's current
 * list and doesn't scan, so it returns at once.
 *
 * Fatal: a request that can't be sent.
 *
 * @param wifi The handle, not null.
 * @param[in,out] station The caller's record, not null. bssid, ssid and status are those of the
 *        network that the port belongs to. If it belongs to none they are those of the first in the
 *        list, with a status other than CML_BSS_STATUS_ASSOCIATED and CML_BSS_STATUS_IBSS_JOINED. A
 *        mesh port always gets the first in the list. The figures of the link are written as far
 *        as the kernel sends them. It sends none without a link to an access point, so also not in
 *        an IBSS or a mesh. A figure that wasn't sent keeps what the record held: set it to zero
 *        before the call.
 * @return 1, or 0 if the list is empty or can't be read, as for a wired port; the record stays
 *         unchanged then.
 */
int32_t wifi_scan_station(wifi_data* wifi, wifi_station_record* station);

/** The Wi-Fi link of a port in short. */
typedef struct CML_WifiStatus {
    const char* ssid;  /**< name of the network; empty if not connected; null if there is no port */
    int32_t signalDbm; /**< in dBm; 0 also if the kernel didn't send it */
    uint32_t rxPackets; /**< received from the access point */
    uint32_t txPackets; /**< sent to the access point */
} CML_WifiStatus;

/**
 * Reports the Wi-Fi link of a port, without a handle and without a scan.
 *
 * The library owns the text of ssid; the caller neither writes nor frees it. All calls share one
 * buffer, which the next call that finds a network overwrites: callers on several threads take
 * turns, and copy the text before the next call.
 *
 * Fatal: whatever is fatal to wifi_scan_init(), such as a kernel without nl80211, or to
 * wifi_scan_station().
 *
 * @param port Its name.
 * @param[out] result The caller's record. ssid is the name of the network if packets were sent or
 *             received and the signal isn't 1, else the empty text. It is empty for a hidden
 *             network, and for a port in an IBSS or a mesh. The figures are 0 without a link.
 * @return 1, even for a wired port. 0 if an argument is null, and nothing is written. 0 also if
 *         there is no such port, and all of the record is zero, ssid null.
 */
int32_t CML_getWifiStatus(const char* port, CML_WifiStatus* result);

/**
 * What the kernel's attribute must be, if it is there. Each table below holds the rules for one
 * message or nest; an attribute without a rule isn't checked. The tables are constant, and each
 * _LENGTH is the number of rows.
 */
typedef struct wifi_attribute_rule {
    uint32_t attribute; /**< its number within the message or nest */
    uint32_t type;      /**< of libmnl's enum mnl_attr_data_type */
    uint32_t length;    /**< of the payload, in bytes; 0 where the type says enough */
} wifi_attribute_rule;

/** Rules for the reply of the generic netlink controller that describes a family. */
extern const wifi_attribute_rule NL80211_VALIDATION[2];
/** Number of rows of NL80211_VALIDATION. */
extern const int32_t NL80211_VALIDATION_LENGTH;

/** Rules for one multicast group in that reply. */
extern const wifi_attribute_rule NL80211_MCAST_GROUPS_VALIDATION[2];
/** Number of rows of NL80211_MCAST_GROUPS_VALIDATION. */
extern const int32_t NL80211_MCAST_GROUPS_VALIDATION_LENGTH;

/** Rules for the message with one BSS of a scan. */
extern const wifi_attribute_rule NL80211_NEW_SCAN_RESULTS_VALIDATION[3];
/** Number of rows of NL80211_NEW_SCAN_RESULTS_VALIDATION. */
extern const int32_t NL80211_NEW_SCAN_RESULTS_VALIDATION_LENGTH;

/** Rules for the BSS in that message. */
extern const wifi_attribute_rule NL80211_BSS_VALIDATION[6];
/** Number of rows of NL80211_BSS_VALIDATION. */
extern const int32_t NL80211_BSS_VALIDATION_LENGTH;

/** Rules for the message about a station. */
extern const wifi_attribute_rule NL80211_CMD_NEW_STATION_VALIDATION[1];
/** Number of rows of NL80211_CMD_NEW_STATION_VALIDATION. */
extern const int32_t NL80211_CMD_NEW_STATION_VALIDATION_LENGTH;

/** Rules for the figures in that message. */
extern const wifi_attribute_rule NL80211_STA_INFO_VALIDATION[4];
/** Number of rows of NL80211_STA_INFO_VALIDATION. */
extern const int32_t NL80211_STA_INFO_VALIDATION_LENGTH;

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
