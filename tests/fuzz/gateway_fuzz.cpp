// Feeds bytes to the gateway look-up as the kernel's datagram.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "console-manager/network.h"
#include "support/route_kernel.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    reply.assign(reinterpret_cast<const char*>(data), size);
    const char* const gateway = CML_getNetworkPortIPv4Gateway("lo");
    // A dotted quad or nothing, in 16 bytes.
    if (strnlen(gateway, 16) > 15 || std::strspn(gateway, "0123456789.") != std::strlen(gateway)) {
        std::abort();
    }
    return 0;
}
