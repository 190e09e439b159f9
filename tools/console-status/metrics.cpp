// The figures of the report in the text format of Prometheus.
#include "commands.h"
#include "report.h"
#include "table.h"

namespace {

// A value of one object of the report, or of each of several.
struct Metric {
    const char* name;     // a counter's ends with "_total"
    const char* objects;  // JSON pointer
    Names labels;
    const char* value;
    const char* help;
};

// clang-format off
const Metric kMetrics[] = {
    {"software_info", "/device", {"product", "release", "build", "build_type", "machine", "kernel_release"},
     "kernel_release", "Software of the console, always 1."},
    {"uptime_seconds", "/device", {}, "uptime_seconds", "Time since the system started."},
    {"load_ratio", "/device/load", {}, "all", "Busy share of all processors in the last 0.2 seconds."},
    {"processor_load_ratio", "/device/load/processors", {"processor"}, "load", "Busy share of a processor."},
    {"memory_size_bytes", "/device/memory", {}, "total_bytes", "Memory of the system."},
    {"memory_unused_bytes", "/device/memory", {}, "unused_bytes", "Memory used for nothing, not even caches."},
    {"storage_size_bytes", "/device/storage", {}, "total_bytes", "Size of the data volume."},
    {"storage_used_bytes", "/device/storage", {}, "used_bytes", "Space in use on the data volume."},
    {"port_state", "/ports", {"name", "state"}, "state", "State of the port, always 1."},
    {"port_receive_bytes_total", "/ports", {"name"}, "rx_bytes", "Bytes received, absent from 2 GiB on."},
    {"port_transmit_bytes_total", "/ports", {"name"}, "tx_bytes", "Bytes sent, absent from 2 GiB on."},
    {"wifi_connected", "/wifi", {"port"}, "connected", "1 if the port has a Wi-Fi link, else 0."},
    {"wifi_info", "/wifi", {"port", "ssid", "bssid"}, "bssid", "Network of the Wi-Fi link, always 1."},
    {"wifi_signal_dbm", "/wifi", {"port"}, "signal_dbm", "Signal of the Wi-Fi link."},
    {"wifi_receive_packets_total", "/wifi", {"port"}, "rx_packets", "Packets received on the Wi-Fi link."},
    {"wifi_transmit_packets_total", "/wifi", {"port"}, "tx_packets", "Packets sent on the Wi-Fi link."},
};
// clang-format on

std::string sample(const Metric& metric, const Json& object) {
    const Json& value = object.at(metric.value);
    if (value.is_null()) {
        return "";
    }
    std::string labels;
    for (const std::string& name : metric.labels) {
        // JSON has the escapes that the format wants for what a cell lets through.
        labels += object.at(name).is_null()
                      ? ""
                      : (labels.empty() ? "{" : ",") + (name == "name" ? "port" : name) + "=" +
                            Json(Cell(object.at(name)).text).dump();
    }
    return std::string("console_") + metric.name + labels + (labels.empty() ? " " : "} ") +
           (value.is_number() ? value.dump() : std::to_string(value != false)) + "\n";
}

}  // namespace

int printMetrics(const Arguments& arguments) {
    Json report = readAll({&kSoftwareSection, &kLoadSection, &kPortsSection, &kWifiSection});
    Json& storage = report["device"]["storage"];
    if (storage["used_bytes"].is_null()) {
        storage["total_bytes"] = nullptr;  // the size or more
    }
    std::string text;
    for (const Metric& metric : kMetrics) {
        const Json& found = report.at(Json::json_pointer(metric.objects));
        std::string samples;
        for (const Json& object : found.is_object() ? Json::array({found}) : found) {
            samples += sample(metric, object);
        }
        if (!samples.empty()) {
            const std::string name = std::string("console_") + metric.name;
            text += "# HELP " + name + " " + metric.help;
            text += "\n# TYPE " + name + (name.ends_with("_total") ? " counter\n" : " gauge\n");
            text += samples;
        }
    }
    writeOutput(arguments, text);
    return report["ports"].is_null() ? kFailed : kDone;
}
