#include <console-manager/network.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

#include "sections.h"
#include "table.h"

namespace {

struct FreeNames {
    void operator()(char** names) const {
        for (char** name = names; *name != nullptr; ++name) {
            std::free(*name);
        }
        std::free(names);
    }
};
using Names = std::unique_ptr<char*, FreeNames>;

std::string stateOf(const char* port) {
    CML_NetworkPortStatus status;
    if (CML_getNetworkPortStatus(port, &status) == 0) {
        return "gone";
    }
    return status.running != 0 ? "up" : status.up != 0 ? "no link" : "down";
}

}  // namespace

void reportPorts() {
    printTitle("Network ports");
    Names names;
    try {
        names.reset(CML_getNetworkPortsList(0));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "console-status: can't list the ports: %s\n", failure.what());
        return;
    }
    Table table(
        {"Port", "State", "IPv4", "Mask", "Gateway", "IPv6", "MAC", "Bytes in", "Bytes out"});
    for (char** name = names.get(); name != nullptr && *name != nullptr; ++name) {
        const char* const port = *name;
        int32_t received = 0;
        int32_t sent = 0;
        CML_getNetworkPortInfo(port, &received, &sent);
        table.add({port, stateOf(port), orDash(CML_getNetworkPortIPv4Address(port)),
                   orDash(CML_getNetworkPortIPv4NetMask(port)),
                   orDash(CML_getNetworkPortIPv4Gateway(port)),
                   orDash(CML_getNetworkPortIPv6Address(port)),
                   orDash(CML_getNetworkPortMACAddress(port)), std::to_string(received),
                   std::to_string(sent)});
    }
    table.print();
}
