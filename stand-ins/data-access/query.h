// Statements that a caller hands over as text. One that begins or ends a transaction is not
// executed as it stands.
#pragma once

#include <cstdint>

#include "stand-ins/data-access/connection.h"

int32_t executeQuery(Connection& connection, const char* sql);
