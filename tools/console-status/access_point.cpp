#include "access_point.h"

#include <console-manager/wifi.h>

#include <cstdio>

#include "terminal.h"

bool isJoined(int32_t status) {
    return status == CML_BSS_STATUS_ASSOCIATED || status == CML_BSS_STATUS_IBSS_JOINED;
}

std::string bssidText(const uint8_t (&bssid)[6]) {
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", bssid[0], bssid[1], bssid[2],
                  bssid[3], bssid[4], bssid[5]);
    return text;
}

Cell signalBar(double dbm) {
    const double quality = (dbm + 100) / 50;
    return {bar(quality, 8), quality > 0.5 ? kGreen : quality > 0.25 ? kYellow : kRed};
}
