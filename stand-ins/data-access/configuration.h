// What a new connection needs before its first statement.
#pragma once

#include <cstdint>

#include "stand-ins/data-access/connection.h"

int32_t configure(Connection& connection);
