#include <console-manager/network.h>

#include <string>

#include "port_names.h"
#include "sections.h"
#include "table.h"

namespace {

Cell stateOf(const char* port) {
    CML_NetworkPortStatus status;
    if (CML_getNetworkPortStatus(port, &status) == 0) {
        return "gone";
    }
    if (status.running != 0) {
        return {"up", kGreen};
    }
    return status.up != 0 ? Cell("no link", kYellow) : Cell("down", kDim);
}

}  // namespace

void reportPorts() {
    printTitle("Network ports");
    Table table(
        {"Port", "State", "IPv4", "Mask", "Gateway", "IPv6", "MAC", ">Bytes in", ">Bytes out"});
    for (const std::string& name : portNames()) {
        const char* const port = name.c_str();
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
