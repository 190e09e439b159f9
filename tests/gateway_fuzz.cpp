// Feeds bytes to the gateway look-up as the kernel's datagram.
#include <sys/socket.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "console-manager/network.h"

namespace {

std::span<const uint8_t> datagram;

}  // namespace

extern "C" ssize_t send(int, const void*, size_t size, int) {
    return static_cast<ssize_t>(size);
}

extern "C" ssize_t recv(int, void* buffer, size_t size, int) {
    const size_t taken = std::min(size, datagram.size());
    std::copy_n(datagram.begin(), taken, static_cast<uint8_t*>(buffer));
    return static_cast<ssize_t>(taken);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    datagram = {data, size};
    const char* const gateway = CML_getNetworkPortIPv4Gateway("lo");
    // A dotted quad or nothing, in 16 bytes.
    if (strnlen(gateway, 16) > 15 || std::strspn(gateway, "0123456789.") != std::strlen(gateway)) {
        std::abort();
    }
    return 0;
}
