// What the Wi-Fi section and a scan tell in the same way.
#pragma once

#include <cstdint>
#include <string>

#include "table.h"

// Whether a status of wifi.h is that of a network to which the port belongs.
bool isJoined(int32_t status);

std::string bssidText(const uint8_t (&bssid)[6]);

// A signal as a bar, from -100 dBm to -50 dBm.
Cell signalBar(double dbm);
