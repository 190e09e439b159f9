#pragma once

#include <cstdint>
#include <optional>

// The kernel's flags of a port (IFF_UP ...), or nothing if it can't be asked or has no such port.
// Of the name the first 15 bytes count.
std::optional<uint16_t> readPortFlags(const char* port);

// Up, and with a link; one without the other isn't running.
bool isRunning(uint16_t flags);
