#include <arpa/inet.h>
#include <console-manager/network.h>

#include <bit>
#include <cstring>
#include <filesystem>

#include "commands.h"
#include "report.h"
#include "table.h"

namespace {

constexpr size_t kMany = 20;  // ports, of which the progress is shown

// 0 from the library means no traffic, 2 GiB or more, or a failure.
Json counted(int32_t bytes) {
    return bytes == 0 ? Json() : Json(bytes);
}

std::string stateOf(const char* port) {
    CML_NetworkPortStatus status;
    // The kernel is asked by the first 15 bytes of a name.
    if (std::strlen(port) > 15 || CML_getNetworkPortStatus(port, &status) == 0) {
        return "gone";
    }
    return status.running != 0 ? "up" : status.up != 0 ? "no link" : "down";
}

Json readPort(const char* port) {
    const std::string state = stateOf(port);
    const Json address = orNull(CML_getNetworkPortIPv4Address(port));
    // Each question costs system calls: without an address there is no mask, on a port that is down
    // no route.
    const Json mask = address.is_null() ? Json() : orNull(CML_getNetworkPortIPv4NetMask(port));
    const bool routed = state == "up" || state == "no link";
    int32_t received = 0;
    int32_t sent = 0;
    CML_getNetworkPortInfo(port, &received, &sent);
    return {{"name", port},
            {"state", state},
            {"ipv4_address", address},
            {"ipv4_mask", mask},
            {"ipv4_gateway", routed ? orNull(CML_getNetworkPortIPv4Gateway(port)) : Json()},
            {"ipv6_address", orNull(CML_getNetworkPortIPv6Address(port))},
            {"mac_address", orNull(CML_getNetworkPortMACAddress(port))},
            {"rx_bytes", counted(received)},
            {"tx_bytes", counted(sent)}};
}

// Name, state, and the address with its prefix length, which is the number of bits in the mask.
Row frontOf(const Json& port) {
    const std::string state = port["state"];
    const Cell address(port["ipv4_address"]);
    in_addr mask{};
    const bool known = inet_aton(Cell(port["ipv4_mask"]).text.c_str(), &mask) != 0;
    return {Cell(port["name"]),
            {state, state == "up"        ? kGreen
                    : state == "no link" ? kYellow
                                         : kDim},
            known ? address.text + "/" + std::to_string(std::popcount(mask.s_addr)) : address};
}

Cell sizeCell(const Json& bytes, const char* unit, const char* unknown) {
    return bytes.is_null() ? Cell(unknown, kDim) : Cell(sizeText(bytes) + unit);
}

void readPorts(Json& report, const Json& ports) {
    Json& states = report["ports"] = ports;
    const size_t all = ports.size();
    for (size_t i = 0; i < all; ++i) {
        states[i] = readPort(ports[i].get<std::string>().c_str());
        if (all >= kMany) {
            const std::string done = std::to_string(i + 1) + " of " + std::to_string(all);
            showProgress(i + 1 < all ? "Read " + done + " ports" : "");
        }
    }
}

std::string showPorts(const Json& report) {
    const Json& ports = report["ports"];
    const bool watched = !ports.empty() && ports[0].contains("history");
    std::vector<Row> rows;
    for (const Json& port : ports) {
        Row& row = rows.emplace_back(frontOf(port));
        const Row back =
            watched
                ? Row{sizeCell(port["rx_bytes_per_second"], "/s", "-"),
                      sizeCell(port["tx_bytes_per_second"], "/s", "-"), sparkline(port["history"])}
                : Row{Cell(port["ipv4_gateway"]), sizeCell(port["rx_bytes"], "", "0 or >2GiB"),
                      sizeCell(port["tx_bytes"], "", "0 or >2GiB"), Cell(port["mac_address"]),
                      Cell(port["ipv6_address"])};
        row.insert(row.end(), back.begin(), back.end());
    }
    const Names now = {"Port", "State", "IPv4", ">In", ">Out", "Trend"};
    const Names all = {"Port", "State", "IPv4", "Gateway", ">Received", ">Sent", "MAC", "IPv6"};
    return title("Network ports") + tableOf(watched ? now : all, rows);
}

}  // namespace

Json portNames() {
    try {
        Names names = take(CML_getNetworkPortsList(0));
        // The bonding driver has a file among the ports.
        std::erase_if(names, [](const std::string& name) {
            return std::filesystem::is_regular_file("/sys/class/net/" + name);
        });
        return names;
    } catch (const std::filesystem::filesystem_error& failure) {
        fail(std::string("the ports can't be listed: ") + failure.what());
        return nullptr;
    }
}

const Section kPortsSection = {"ports", true, readPorts, showPorts};
