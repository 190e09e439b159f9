#pragma once

#include <memory>

#include "console-manager/wifi.h"

struct CloseHandle {
    void operator()(wifi_data* wifi) const { wifi_scan_close(wifi); }
};

// A scanner handle that is closed at the end of its life.
using Handle = std::unique_ptr<wifi_data, CloseHandle>;
