#include <console-manager/device.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "commands.h"
#include "messages.h"
#include "report.h"
#include "table.h"

namespace {

void readSoftware(Json& report, const Json&) {
    char* kernel = nullptr;
    char* version = nullptr;
    CML_getLinuxReleaseInformation(&kernel, &version);
    const auto upTime = static_cast<double>(CML_getUpTime());
    report["device"] = {{"product", orNull(CML_getProductID())},
                        {"release", orNull(CML_getProductRelease())},
                        {"build", orNull(CML_getBuildId())},
                        {"build_type", orNull(CML_getBuildType())},
                        {"machine", orNull(CML_getMachineName())},
                        {"kernel_release", orNull(kernel)},
                        {"kernel_version", orNull(version)},
                        {"uptime_seconds", upTime == 0 ? Json() : Json(upTime)}};
    std::free(kernel);
    std::free(version);
}

// Sizes in KiB. A total of 0 is unknown. The highest total stands for all larger ones, of which the
// part is unknown.
Json space(const char* partName, uint32_t total, uint32_t part) {
    const Json totalBytes = total != 0 ? Json(1024 * uint64_t{total}) : Json();
    const bool isKnown = total != 0 && total != UINT32_MAX;
    return {{"total_bytes", totalBytes},
            {partName, isKnown ? Json(1024 * uint64_t{part}) : Json()}};
}

Json readMemory() {
    int32_t total = 0;
    int32_t unused = 0;
    CML_getMemoryInformation(&total, &unused);
    return space("unused_bytes", static_cast<uint32_t>(total), static_cast<uint32_t>(unused));
}

Json readStorage() {
    uint32_t total = 0;
    uint32_t used = 0;
    try {
        const Quiet quiet;  // df reports a missing volume
        CML_getStorageInfo(&total, &used);
    } catch (const std::runtime_error& error) {
        fail(std::string("the storage can't be measured: ") + error.what());
    }
    return space("used_bytes", total, used);
}

// The numbers of the online processors, from the file from which the library has their load.
Json onlineProcessors() {
    Json numbers = Json::array();
    std::ifstream figures("/proc/stat");
    for (std::string line; std::getline(figures, line);) {
        if (line.starts_with("cpu") && line[3] != ' ') {
            numbers.push_back(std::stoi(line.substr(3)));
        }
    }
    return numbers;
}

// The library returns no number before the first interval ends, and one out of range after a
// processor went on or off line.
Json ratio(long double value) {
    return value >= 0 && value <= 1 ? Json(static_cast<double>(value)) : Json();
}

// The library returns the load of all processors, then of each one that is online.
Json readLoad() {
    int32_t count = 0;
    const long double* load = CML_getAllCPUUsage(&count);
    Json processors = onlineProcessors();
    // The first call has no interval yet. A call that finds another number of processors returns
    // the figures of the call before.
    if (std::ssize(processors) + 1 != count) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        load = CML_getAllCPUUsage(&count);
        processors = onlineProcessors();
    }
    if (std::ssize(processors) + 1 != count) {
        processors = Json(static_cast<size_t>(count), Json());  // unknown
    }
    Json each = Json::array();
    for (int32_t i = 1; i < count; ++i) {
        each.push_back(
            {{"processor", processors[static_cast<size_t>(i) - 1]}, {"load", ratio(load[i])}});
    }
    return {{"all", count == 1 ? Json() : ratio(load[0])}, {"processors", each}};
}

std::string upTimeText(double seconds) {
    const auto all = static_cast<std::time_t>(seconds);
    return std::to_string(all / 86400) + " d " + timeText("%T", std::gmtime, all);
}

std::string showSoftware(const Json& report) {
    const Json& device = report["device"];
    const auto text = [&](const char* key, const char* more) {
        const Json& second = device[more];
        return Cell(device[key]).text + (second.is_null() ? "" : " " + Cell(second).text);
    };
    const Json& upTime = device["uptime_seconds"];
    const bool watched = device.contains("load") && device["load"].contains("history");
    const std::vector<Row> rows = {
        {"Product", text("product", "release")},
        {"Build", text("build", "build_type")},
        {"Machine", Cell(device["machine"])},
        {"Kernel", text("kernel_release", "kernel_version")},
        {"Up-time", upTime.is_null() ? Cell(upTime) : upTimeText(upTime)}};
    return title("Device") + (watched ? "" : tableOf({"", ""}, rows) + "\n");
}

// A share as a bar and a percentage; coloured if a high share is a problem.
Row meter(const std::string& name, const Json& share, bool isUrgent, const std::string& text) {
    if (share.is_null()) {
        return {name, "", Cell(share), text};
    }
    const double part = share;
    const char* const colour = part < 0.7 ? kGreen : part < 0.9 ? kYellow : kRed;
    return {name,
            {bar(part, 20), isUrgent ? colour : nullptr},
            std::to_string(std::lround(100 * part)) + " %",
            text};
}

Row meterOf(const char* name, const Json& space, const std::string& part, bool isUrgent) {
    const Json& total = space["total_bytes"];
    const Json& bytes = space[part + "_bytes"];
    if (bytes.is_null()) {
        const bool isLarge = !total.is_null();
        return meter(name, bytes, isUrgent,
                     isLarge ? sizeText(total) + " or more" : "can't be measured");
    }
    return meter(name, bytes.get<double>() / total.get<double>(), isUrgent,
                 sizeText(bytes) + " of " + sizeText(total) + " " + part);
}

std::string showLoad(const Json& report) {
    const Json& device = report["device"];
    const Json& load = device["load"];
    std::vector<Row> rows = {meter("Load", load["all"], true,
                                   load.contains("history") ? sparkline(load["history"]) : "")};
    for (const Json& each : load["processors"]) {
        rows.push_back(meter("  core " + Cell(each["processor"]).text, each["load"], true, ""));
    }
    rows.push_back(meterOf("Memory", device["memory"], "unused", false));
    rows.push_back(meterOf("Storage", device["storage"], "used", true));
    return tableOf({"", "", ">", ""}, rows);
}

void readAllLoad(Json& report, const Json&) {
    Json& device = report["device"];
    device["load"] = readLoad();
    device["memory"] = readMemory();
    device["storage"] = readStorage();
}

}  // namespace

const Section kSoftwareSection = {"device", false, readSoftware, showSoftware};
const Section kLoadSection = {"device", false, readAllLoad, showLoad};
