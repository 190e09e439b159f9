// The table of the plain items, which this library makes itself.
#pragma once

#include <cstdint>

#include "stand-ins/data-access/connection.h"

int32_t createFlatKeyTable(Connection& connection);
int32_t deleteFlatKeyTable(Connection& connection);
