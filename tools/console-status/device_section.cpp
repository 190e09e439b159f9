#include <console-manager/device.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>

#include "measure.h"
#include "quiet.h"
#include "report.h"
#include "table.h"
#include "terminal.h"

namespace {

constexpr size_t kBar = 20;

Json orNull(const char* text) {
    return text == nullptr || *text == '\0' ? Json() : Json(text);
}

void readSoftware(Json& device) {
    char* kernel = nullptr;
    char* version = nullptr;
    CML_getLinuxReleaseInformation(&kernel, &version);
    device["product"] = orNull(CML_getProductID());
    device["release"] = orNull(CML_getProductRelease());
    device["build"] = orNull(CML_getBuildId());
    device["build_type"] = orNull(CML_getBuildType());
    device["machine"] = orNull(CML_getMachineName());
    device["kernel_release"] = orNull(kernel);
    device["kernel_version"] = orNull(version);
    const auto upTime = static_cast<double>(CML_getUpTime());
    device["uptime_seconds"] = upTime == 0 ? Json() : Json(upTime);
    std::free(kernel);
    std::free(version);
}

Json kibibytes(uint32_t count) {
    return uint64_t{1024} * count;
}

Json readMemory() {
    int32_t total = 0;
    int32_t unused = 0;
    CML_getMemoryInformation(&total, &unused);
    const bool known = total != 0;
    return {{"total_bytes", known ? kibibytes(static_cast<uint32_t>(total)) : Json()},
            {"unused_bytes", known ? kibibytes(static_cast<uint32_t>(unused)) : Json()}};
}

Json readStorage() {
    uint32_t total = 0;
    uint32_t used = 0;
    try {
        // A volume that isn't there is told by df, too.
        const Quiet quiet;
        CML_getStorageInfo(&total, &used);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "console-status: storage: %s\n", error.what());
    }
    // The highest size stands for all above it, without a figure of what is in use.
    return {{"total_bytes", total != 0 ? kibibytes(total) : Json()},
            {"used_bytes", total != 0 && total != UINT32_MAX ? kibibytes(used) : Json()}};
}

// The processors that are online, from ranges such as "0,2-3".
std::vector<int> onlineProcessors() {
    std::vector<int> processors;
    std::ifstream ranges("/sys/devices/system/cpu/online");
    for (std::string range; std::getline(ranges, range, ',');) {
        int first = 0;
        int last = 0;
        const int found = std::sscanf(range.c_str(), "%d-%d", &first, &last);
        for (int i = first; found > 0 && i <= (found == 2 ? last : first); ++i) {
            processors.push_back(i);
        }
    }
    return processors;
}

Json ratio(long double value) {
    return std::isnan(value) ? Json() : Json(static_cast<double>(value));
}

// The library tells the load of all, then of each processor that is online.
Json readLoad() {
    int32_t count = 0;
    const long double* load = CML_getAllCPUUsage(&count);
    std::vector<int> processors = onlineProcessors();
    // The first call has no interval yet, and one that finds a processor gone or come gives the
    // figures of before.
    if (processors.size() + 1 != static_cast<size_t>(count)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        load = CML_getAllCPUUsage(&count);
        processors = onlineProcessors();
    }
    const bool labelled = processors.size() + 1 == static_cast<size_t>(count);
    Json each = Json::array();
    for (int32_t i = 1; i < count; ++i) {
        const auto index = static_cast<size_t>(i - 1);
        each.push_back(
            {{"processor", labelled ? Json(processors[index]) : Json()}, {"load", ratio(load[i])}});
    }
    return {{"all", count == 1 ? Json() : ratio(load[0])}, {"processors", each}};
}

std::string joined(const Json& first, const std::string& between, const Json& second,
                   const std::string& end = "") {
    const std::string rest = second.is_null() ? "" : between + second.get<std::string>() + end;
    return (first.is_null() ? "-" : first.get<std::string>()) + rest;
}

Cell upTimeCell(const Json& seconds) {
    if (seconds.is_null()) {
        return cellOf(seconds);
    }
    const auto all = static_cast<int64_t>(seconds.get<double>());
    char time[16];
    std::snprintf(time, sizeof time, "%02d:%02d:%02d", static_cast<int>(all / 3600 % 24),
                  static_cast<int>(all / 60 % 60), static_cast<int>(all % 60));
    const int64_t days = all / 86400;
    const std::string front = days == 0   ? ""
                              : days == 1 ? "1 day "
                                          : std::to_string(days) + " days ";
    return front + time;
}

std::string showSoftware(const Json& device) {
    Table table({"", ""});
    table.add({{"Product", kDim}, joined(device["product"], " ", device["release"])});
    table.add({{"Build", kDim}, joined(device["build"], " (", device["build_type"], ")")});
    table.add({{"Machine", kDim}, cellOf(device["machine"])});
    table.add({{"Kernel", kDim}, joined(device["kernel_release"], " ", device["kernel_version"])});
    table.add({{"Up-time", kDim}, upTimeCell(device["uptime_seconds"])});
    return table.text();
}

// What a share says of the device.
const char* urgency(double share) {
    return share < 0.7 ? kGreen : share < 0.9 ? kYellow : kRed;
}

std::vector<Cell> loadRow(const std::string& name, const Json& load, const std::string& more) {
    if (load.is_null()) {
        return {{name, kDim}, "", cellOf(load), ""};
    }
    const double share = load;
    return {{name, kDim}, {bar(share, kBar), urgency(share)}, percentText(share), more};
}

// A part of a size, such as what is unused of the memory.
std::vector<Cell> spaceRow(const char* name, const Json& part, const char* what, const Json& total,
                           bool urgent) {
    if (part.is_null()) {
        return {{name, kDim},
                "",
                "-",
                total.is_null() ? "can't be measured" : sizeText(total) + " or more"};
    }
    const double share = part.get<double>() / total.get<double>();
    return {{name, kDim},
            {bar(share, kBar), urgent ? urgency(share) : nullptr},
            percentText(share),
            sizeText(part) + " of " + sizeText(total) + " " + what};
}

std::string showMeters(const Json& device) {
    Table table({"", "", ">", ""});
    const Json& load = device["load"];
    table.add(loadRow("Load", load["all"],
                      load.contains("history") ? "last minute " + sparkline(load["history"]) : ""));
    for (const Json& each : load["processors"]) {
        const Json& number = each["processor"];
        table.add(loadRow("  core " + (number.is_null() ? "?" : number.dump()), each["load"], ""));
    }
    const Json& memory = device["memory"];
    const Json& storage = device["storage"];
    table.add(spaceRow("Memory", memory["unused_bytes"], "unused", memory["total_bytes"], false));
    table.add(spaceRow("Storage", storage["used_bytes"], "used", storage["total_bytes"], true));
    return table.text();
}

}  // namespace

void readDevice(Json& report) {
    Json& device = report["device"];
    readSoftware(device);
    device["load"] = readLoad();
    device["memory"] = readMemory();
    device["storage"] = readStorage();
}

std::string showDevice(const Json& report) {
    const Json& device = report["device"];
    const bool watched = device["load"].contains("history");
    return title("Device") + (watched ? "" : showSoftware(device) + "\n") + showMeters(device);
}
