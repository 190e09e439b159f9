// The sections of the report. Each reads what it shows into JSON, which is either written as it is
// or shown to people.
//
// What isn't there is null. An "error" that isn't null, at whatever depth, tells that something
// couldn't be read, and so does a section that is null as a whole.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

using Json = nlohmann::ordered_json;  // the keys in the order in which they are written here

// The device's network ports; nothing, after a message on stderr, if they can't be listed.
using Ports = std::optional<std::vector<std::string>>;
Ports portNames();

// They add their keys to those of the report.
void readSettings(Json& report);
void readPorts(Json& report, const Ports& ports);
void readWifi(Json& report, const Ports& ports);
void readDevice(Json& report);

// With a heading. They get what was read; --watch adds rates to it, and a "history" of the last
// minute as ratios, with which they show what changes alone.
std::string showSettings(const Json& report);
std::string showPorts(const Json& report);
std::string showWifi(const Json& report);
std::string showDevice(const Json& report);

struct Section {
    const char* name;
    bool needsPorts;
    void (*read)(Json& report, const Ports& ports);
    std::string (*show)(const Json& report);
};

Json readReport(std::span<const Section> sections);
std::string showReport(std::span<const Section> sections, const Json& report);

// Whether something couldn't be read.
bool isIncomplete(const Json& report);
