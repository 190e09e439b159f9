#include <console-manager/wifi.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "access_point.h"
#include "measure.h"
#include "report.h"
#include "table.h"
#include "terminal.h"

namespace {

bool isWireless(const std::string& port) {
    return std::filesystem::exists("/sys/class/net/" + port + "/phy80211");
}

// Of a station to which the port has no link all is null.
Json linkOf(const wifi_station_record& station) {
    const bool connected = isJoined(station.status);
    const auto known = [&](const Json& value) { return connected ? value : Json(); };
    return {{"connected", connected},
            {"ssid", *station.ssid != '\0' ? known(station.ssid) : Json()},
            {"bssid", known(bssidText(station.bssid))},
            {"signal_dbm", known(station.signal_dbm)},
            {"rx_packets", known(station.rx_packets)},
            {"tx_packets", known(station.tx_packets)}};
}

wifi_station_record withoutLink() {
    wifi_station_record station{};
    station.status = CML_BSS_STATUS_NONE;
    return station;
}

// What the library says on stderr goes the same way; the answer is the last line, if there is one.
[[noreturn]] void answer(const char* port, int pipeEnd) {
    dup2(pipeEnd, STDERR_FILENO);
    wifi_station_record station = withoutLink();
    wifi_data* const wifi = wifi_scan_init(port);
    if (wifi == nullptr) {
        _exit(1);
    }
    wifi_scan_station(wifi, &station);
    const std::string line =
        "\n" + linkOf(station).dump(-1, ' ', false, Json::error_handler_t::replace);
    _exit(write(pipeEnd, line.data(), line.size()) == std::ssize(line) ? 0 : 1);
}

std::string readAll(int descriptor) {
    std::string text;
    char piece[4096];
    ssize_t size = 0;
    do {
        size = read(descriptor, piece, sizeof piece);
        text.append(piece, static_cast<size_t>(std::max<ssize_t>(size, 0)));
    } while (size > 0 || (size < 0 && errno == EINTR));
    return text;
}

// Asks in a child process, because most failures of Wi-Fi end the process that asks. Gives all that
// the child says, or why there is none.
std::string ask(const std::string& port) {
    // The library's exit in the child would write out once more what is in the buffer.
    std::fflush(nullptr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return std::strerror(errno);
    }
    const pid_t child = fork();
    if (child == 0) {
        answer(port.c_str(), ends[1]);
    }
    std::string said = child < 0 ? std::strerror(errno) : "";
    close(ends[1]);
    if (child > 0) {
        said = readAll(ends[0]);
        waitpid(child, nullptr, 0);
    }
    close(ends[0]);
    return said;
}

std::string lastLine(std::string text) {
    text.erase(text.find_last_not_of('\n') + 1);
    return text.substr(text.rfind('\n') + 1);
}

Json readLink(const std::string& port) {
    const std::string line = lastLine(ask(port));
    const Json link = Json::parse(line, nullptr, false);
    Json told = {{"port", port}};
    told.update(link.is_object() ? link : linkOf(withoutLink()));
    told["error"] = link.is_object() ? Json() : Json(line.empty() ? "no answer" : line);
    return told;
}

std::vector<Cell> rowOf(const Json& link) {
    if (!link["error"].is_null()) {
        return {cellOf(link["port"]), {link["error"].get<std::string>(), kYellow}};
    }
    if (link["connected"] == false) {
        return {cellOf(link["port"]), {"not connected", kDim}};
    }
    const Json& dbm = link["signal_dbm"];
    return {cellOf(link["port"]),
            link["ssid"].is_null() ? Cell("(hidden)", kDim) : cellOf(link["ssid"]),
            signalBar(dbm),
            dbm.dump() + " dBm",
            cellOf(link["bssid"]),
            cellOf(link["rx_packets"]),
            cellOf(link["tx_packets"])};
}

}  // namespace

void readWifi(Json& report, const Ports& ports) {
    Json& told = report["wifi"];
    if (!ports) {
        return;
    }
    told = Json::array();
    for (const std::string& port : *ports) {
        if (isWireless(port)) {
            told.push_back(readLink(port));
        }
    }
}

std::string showWifi(const Json& report) {
    const Json& links = report["wifi"];
    if (links.empty()) {
        return title("Wi-Fi") + paragraph({"no wireless port", kDim});
    }
    Table table({"Port", "Network", "Signal", ">", "Access point", ">Packets in", ">Packets out"});
    for (const Json& link : links) {
        table.add(rowOf(link));
    }
    return title("Wi-Fi") + table.text();
}
