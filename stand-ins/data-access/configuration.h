// What a new connection needs before its first statement.
#pragma once

#include <sqlite3.h>

#include <cstdint>

int32_t configure(sqlite3* connection);
