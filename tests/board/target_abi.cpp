// What holds on the console alone, checked by the compiler. Layouts that are the same everywhere
// are asserted beside the code that depends on them.
#include <sys/types.h>

#include <cfloat>
#include <cstddef>

#include "console-manager/wifi.h"

static_assert(sizeof(void*) == 4 && sizeof(size_t) == 4 && sizeof(long) == 4);
// The results of the load and up-time functions.
static_assert(sizeof(long double) == 8 && LDBL_MANT_DIG == 53);
static_assert(sizeof(time_t) == 8 && sizeof(off_t) == 8 && sizeof(ino_t) == 8);
static_assert(sizeof(CML_WifiStatus) == 16 && offsetof(CML_WifiStatus, txPackets) == 12);
