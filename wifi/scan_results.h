// Reads the kernel's list of networks into an array that the caller owns.
#pragma once

#include <libmnl/libmnl.h>

#include <cstdint>

#include "console-manager/wifi.h"
#include "wifi/channel.h"

// What wifi_on_scan_result works on.
struct wifi_scan_results {
    wifi_bss_record* records;
    int32_t capacity;  // elements of records
    int32_t count;     // networks seen, stored or not
};

// Handles one message of an exchange on `commands`, whose context is a wifi_scan_results.
int wifi_on_scan_result(const nlmsghdr* message, void* data);

// Reads the list into the channel's context, a wifi_scan_results with a count of 0. Starts again,
// at most ten times, if the list changes while it's read. Returns the result of the last exchange.
int wifi_dump_scan(wifi_channel& commands);
