#pragma once

#include <memory>

#include "console-manager/wifi.h"
#include "system/deleted_by.h"

// Owns a scanner handle and closes it.
using Handle = std::unique_ptr<wifi_data, DeletedBy<wifi_scan_close>>;
