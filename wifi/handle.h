#pragma once

#include <memory>

#include "console-manager/wifi.h"
#include "system/deleted_by.h"

// A scanner handle that is closed at the end of its life.
using Handle = std::unique_ptr<wifi_data, DeletedBy<wifi_scan_close>>;
