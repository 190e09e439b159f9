/** @file
 * Wi-Fi: scanning for networks, and the state of the link, over nl80211.
 *
 * CML_getWifiStatus() answers in one call how the link of a port stands. For scanning, or for more
 * about the link, there is a handle: wifi_scan_init() opens it on one port (a network interface,
 * known by the kernel's name of it), wifi_scan_all() and wifi_scan_station() use it any number of
 * times, wifi_scan_close() gives it back.
 *
 * FATAL FAILURES. Most failures end the whole process by exit(1), after a line on stderr: memory
 * for a handle runs out, a netlink socket can't be opened, switched, written or read, the kernel
 * has no nl80211. There is no way to turn that off. An application that can't accept it makes the
 * call in a child process, as the example wifi_scan.c does. Each function below says which failures
 * come back to the caller.
 *
 * Messages. All go to stderr. Some tell of a fault in what the kernel sent that costs one
 * attribute, one network's name or one message, and the call goes on.
 *
 * Threads. Nothing runs in the background, and no lock is taken. A handle serves one thread at a
 * time; two handles, also of one port, can be used at the same time.
 */
#ifndef CONSOLE_MANAGER_WIFI_H
#define CONSOLE_MANAGER_WIFI_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** A scanner for one port. What is in it is the library's own. */
typedef struct wifi_data wifi_data;

/** How a port stands to a network. */
enum CML_BssStatus {
    CML_BSS_STATUS_NONE = -1,         /**< it doesn't belong to it */
    CML_BSS_STATUS_AUTHENTICATED = 0, /**< authenticated only: it doesn't belong to it yet */
    CML_BSS_STATUS_ASSOCIATED = 1,    /**< it belongs to it */
    CML_BSS_STATUS_IBSS_JOINED = 2    /**< it belongs to it, a network without an access point */
};

/** A network as a scan finds it: one BSS, that of one access point. */
typedef struct wifi_bss_record {
    uint8_t bssid[6];   /**< MAC address of the access point, in the order in which it's written */
    uint32_t frequency; /**< in MHz */
    char ssid[33];      /**< name of the network, NUL-terminated bytes of no certain encoding; empty
                           if it is hidden or can't be read */
    int32_t status;     /**< a CML_BssStatus */
    int32_t signal_mbm; /**< in mBm, hundredths of a dBm */
    uint32_t seen_ms_ago; /**< in milliseconds */
} wifi_bss_record;

/** The link of the port to its network. */
typedef struct wifi_station_record {
    uint8_t bssid[6];      /**< of the network, as the next two: see wifi_bss_record */
    char ssid[33];         /**< its name */
    int32_t status;        /**< a CML_BssStatus */
    int8_t signal_dbm;     /**< of the last packet, in dBm */
    int8_t signal_avg_dbm; /**< average, in dBm */
    uint32_t rx_packets;   /**< received from the access point */
    uint32_t tx_packets;   /**< sent to the access point */
} wifi_station_record;

/**
 * Opens a handle on a port and listens for the results of scans from then on.
 *
 * @param interface Name of the port, not null. Any network port will do, a wired one too.
 * @return the handle, which the caller gives back by wifi_scan_close(), or null, after a line on
 *         stderr, if there is no such port; nothing is kept then. Every other failure is fatal.
 */
wifi_data* wifi_scan_init(const char* interface);

/** Ends a handle, not null, and releases all that it holds. */
void wifi_scan_close(wifi_data* wifi);

/**
 * Lists the networks around the port.
 *
 * It takes the results of a scan that anybody has started or finished since the handle was opened
 * or last scanned, if there was one, and otherwise starts a scan of all channels itself. It waits
 * until the kernel has the results, for which there is no time limit: some seconds as a rule. A
 * scan of another wireless port counts like one of this port, and the list may then be an old one;
 * if it is given up, though, this call goes on with a scan of its own port.
 *
 * A network that the port belongs to, by its status, is in element 0, wherever the kernel listed it
 * and however small the array is. The array isn't cleared: a figure that the kernel didn't send
 * keeps what the element held before, status alone is always written. A list that can't be read, or
 * breaks off, counts as far as it was read.
 *
 * Fatal: a failure of the handle's sockets. A signal that ends the wait is one, if its handler was
 * set without SA_RESTART. So is a queue of notifications that overflows between two calls: with the
 * kernel's default buffers some 75 scans by others, of any port, fill it. Scan more often than
 * that, or open a handle for each scan. wifi_scan_station() and CML_getWifiStatus() don't use the
 * queue.
 *
 * @param wifi The handle, not null.
 * @param[out] records The caller's array; may be null if capacity is 0.
 * @param capacity Its number of elements.
 * @return how many networks the kernel listed, which can be more than capacity: the array then
 *         holds the first ones. -1 if the kernel refused the scan (the port is down or isn't
 *         wireless, another scan keeps the radio busy, the process lacks CAP_NET_ADMIN) or gave up
 *         this port's scan while it was waited for (the port was taken down, for one). The handle
 *         stays good, and the next call tries anew.
 */
int32_t wifi_scan_all(wifi_data* wifi, wifi_bss_record* records, int32_t capacity);

/**
 * Tells which network the port belongs to, and how the link to it is. It doesn't scan, and is done
 * at once: the kernel's present list is what counts.
 *
 * Fatal: a request that can't be sent.
 *
 * @param wifi The handle, not null.
 * @param[in,out] station The caller's record, not null. It receives bssid, ssid and status of the
 *        network that the port belongs to; if it belongs to none, of the first in the list, which
 *        a status other than CML_BSS_STATUS_ASSOCIATED and CML_BSS_STATUS_IBSS_JOINED tells. The
 *        four figures of the link are written as far as the kernel sends them, and none without a
 *        link: they keep what the record held, so set it to zero before.
 * @return 1; or 0 if the kernel lists no network, and the record is as it was.
 */
int32_t wifi_scan_station(wifi_data* wifi, wifi_station_record* station);

/** The Wi-Fi link of a port in short. */
typedef struct CML_WifiStatus {
    const char* ssid;  /**< name of the network; empty if not connected; null if there is no port */
    int32_t signalDbm; /**< in dBm */
    uint32_t rxPackets; /**< received from the access point */
    uint32_t txPackets; /**< sent to the access point */
} CML_WifiStatus;

/**
 * Tells how the Wi-Fi link of a port stands, without a handle and without a scan.
 *
 * The library owns the text of ssid; the caller neither writes nor frees it. There is one buffer in
 * the process, which the next call that finds a network fills anew: callers on several threads take
 * turns, and copy the text before the next call.
 *
 * Fatal: whatever is fatal to wifi_scan_init(), such as a kernel without nl80211, or to
 * wifi_scan_station().
 *
 * @param port Its name.
 * @param[out] result The caller's record. Its ssid is the network's name if packets have gone
 *             either way and the signal isn't 1, else the empty text; the figures are 0 without a
 *             link.
 * @return 1, for a wired port too. 0 if either argument is null, and nothing is written, or if
 *         there is no such port, and all of the record is zero, ssid null.
 */
int32_t CML_getWifiStatus(const char* port, CML_WifiStatus* result);

/**
 * What an attribute of the kernel's messages must be, if it comes. The tables below hold such rules
 * for one message or nest each; an attribute without a rule is taken as it is. The tables are
 * constant, and each _LENGTH is the number of rows.
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
