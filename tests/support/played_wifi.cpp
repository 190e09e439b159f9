// Loaded in front of libmnl: a kernel with nl80211 and the port wlan7, which is around the networks
// in NETWORKS (see nl80211::networks) and one of which only the address is known. If NETWORKS is
// empty the kernel has none and refuses to scan; if it isn't set there is no nl80211. Without
// SIGNAL no figures of the link are sent.
#include <cstdlib>

#include "support/nl80211_kernel.h"

[[maybe_unused]] static const bool isPlayed = [] {
    using namespace nl80211;
    const char* const list = std::getenv("NETWORKS");
    const char* const signal = std::getenv("SIGNAL");
    kernel.reset();
    if (list == nullptr) {
        kernel.on[CTRL_CMD_GETFAMILY] = {acknowledgement(-ENOENT)};
    } else if (*list == '\0') {
        kernel.on[NL80211_CMD_TRIGGER_SCAN] = {acknowledgement(-ENETDOWN)};
    } else {
        Datagrams& dump = kernel.on[NL80211_CMD_GET_SCAN] = networks(list);
        dump.push_front(network(attribute(NL80211_BSS_BSSID, "\2\2\2\2\2\5")));
    }
    kernel.on[NL80211_CMD_GET_STATION] = {
        signal == nullptr ? station("") : station(std::atoi(signal), 8, 9), acknowledgement()};
    kernel.later = {notification(NL80211_CMD_NEW_SCAN_RESULTS)};
    return true;
}();
