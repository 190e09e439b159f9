#include <arpa/inet.h>
#include <console-manager/network.h>
#include <unistd.h>

#include <bit>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>

#include "measure.h"
#include "report.h"
#include "table.h"
#include "terminal.h"

namespace {

struct FreeNames {
    void operator()(char** names) const {
        for (char** name = names; *name != nullptr; ++name) {
            std::free(*name);
        }
        std::free(names);
    }
};

// Tells on a terminal how far a long task has come; the line is gone in the end.
class Progress {
  public:
    explicit Progress(size_t all) : total(all) {}
    ~Progress() {
        if (shown) {
            std::fprintf(stderr, "\r%40s\r", "");
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void tell(size_t done) {
        const auto now = std::chrono::steady_clock::now();
        if (now >= next && isTerminal() && isatty(STDERR_FILENO) == 1) {
            std::fprintf(stderr, "\rReading port %zu of %zu", done + 1, total);
            shown = true;
            next = now + kPause;
        }
    }

  private:
    static constexpr std::chrono::milliseconds kPause{300};
    size_t total;
    bool shown = false;
    std::chrono::steady_clock::time_point next = std::chrono::steady_clock::now() + kPause;
};

Json orNull(const char* text) {
    return *text == '\0' ? Json() : Json(text);
}

// The library's 0 can stand for no traffic, for 2 GiB and more, and for a failure.
Json orNull(int32_t bytes) {
    return bytes == 0 ? Json() : Json(bytes);
}

const char* stateOf(const char* port) {
    CML_NetworkPortStatus status;
    if (CML_getNetworkPortStatus(port, &status) == 0) {
        return "gone";
    }
    return status.running != 0 ? "up" : status.up != 0 ? "no link" : "down";
}

Json readPort(const char* port) {
    const std::string state = stateOf(port);
    const Json address = orNull(CML_getNetworkPortIPv4Address(port));
    // Without an address there is no mask, and a port that is down has no route.
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
            {"rx_bytes", orNull(received)},
            {"tx_bytes", orNull(sent)}};
}

// The length of the prefix that a mask such as "255.255.255.0" stands for.
int prefixLength(const std::string& mask) {
    in_addr bits{};
    inet_aton(mask.c_str(), &bits);
    return std::popcount(bits.s_addr);
}

Cell stateCell(const Json& port) {
    const std::string state = port["state"];
    return {state, state == "up" ? kGreen : state == "no link" ? kYellow : kDim};
}

Cell ipv4Cell(const Json& port) {
    const Json& mask = port["ipv4_mask"];
    if (mask.is_null()) {
        return cellOf(port["ipv4_address"]);
    }
    return port["ipv4_address"].get<std::string>() + "/" + std::to_string(prefixLength(mask));
}

Cell trafficCell(const Json& bytes) {
    return bytes.is_null() ? Cell("0 or >2GiB", kDim) : sizeCell(bytes);
}

Cell rateCell(const Json& rate) {
    return rate.is_null() ? cellOf(rate) : Cell(sizeText(rate.get<double>()) + "/s");
}

// What changes, in a line for each port.
std::string showWatched(const Json& ports) {
    Table table({"Port", "State", "IPv4", ">In", ">Out", "Last minute"});
    for (const Json& port : ports) {
        table.add({cellOf(port["name"]), stateCell(port), ipv4Cell(port),
                   rateCell(port["rx_bytes_per_second"]), rateCell(port["tx_bytes_per_second"]),
                   sparkline(port["history"])});
    }
    return table.text();
}

std::string showAll(const Json& ports) {
    Table table({"Port", "State", "IPv4", "Gateway", ">Received", ">Sent", "MAC", "IPv6"});
    for (const Json& port : ports) {
        table.add({cellOf(port["name"]), stateCell(port), ipv4Cell(port),
                   cellOf(port["ipv4_gateway"]), trafficCell(port["rx_bytes"]),
                   trafficCell(port["tx_bytes"]), cellOf(port["mac_address"]),
                   cellOf(port["ipv6_address"])});
    }
    return table.text();
}

}  // namespace

Ports portNames() {
    std::vector<std::string> ports;
    try {
        const std::unique_ptr<char*, FreeNames> names(CML_getNetworkPortsList(0));
        for (char** name = names.get(); name != nullptr && *name != nullptr; ++name) {
            ports.emplace_back(*name);
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "console-status: the ports can't be listed: %s\n", failure.what());
        return std::nullopt;
    }
    return ports;
}

void readPorts(Json& report, const Ports& ports) {
    Json& told = report["ports"];
    if (!ports) {
        return;
    }
    told = Json::array();
    Progress progress(ports->size());
    for (const std::string& port : *ports) {
        progress.tell(told.size());
        told.push_back(readPort(port.c_str()));
    }
}

std::string showPorts(const Json& report) {
    const Json& ports = report["ports"];
    if (ports.is_null()) {
        return title("Network ports") + paragraph({"can't be listed", kYellow});
    }
    const bool watched = !ports.empty() && ports[0].contains("history");
    return title("Network ports") + (watched ? showWatched(ports) : showAll(ports));
}
