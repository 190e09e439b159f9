// The report. Each section reads its figures into JSON, which is printed as it is or as text.
#pragma once

#include <ctime>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

using Json = nlohmann::ordered_json;  // keeps the order of the keys
using Names = std::vector<std::string>;

struct Section {
    const char* name;
    bool usesPorts;
    // Adds the keys of the section; null is unknown or absent. The report is incomplete if an
    // "error" at any depth isn't null, or if a whole section is null.
    void (*read)(Json& report, const Json& ports);
    // Returns the text, with a heading. With --watch there are also rates and a "history", and the
    // text has only what changes.
    std::string (*show)(const Json& report);
};
extern const Section kSoftwareSection;  // this and the next are "device"
extern const Section kLoadSection;
extern const Section kPortsSection;
extern const Section kWifiSection;
extern const Section kSettingsSection;
using Sections = std::vector<const Section*>;

// Reads the sections, and prints each as soon as it is read if isShown. Asks for the ports unless
// they are given.
Json readAll(const Sections& sections, Json ports = nullptr, bool isShown = false);

// A time by a pattern of strftime, for which std::gmtime or std::localtime splits it.
std::string timeText(const char* pattern, std::tm* (*split)(const std::time_t*),
                     std::time_t time = std::time(nullptr));

// Returns the names of the network ports, or null after a message on stderr.
Json portNames();

// Returns the texts of a list of the library, which may be null, and frees it.
Names take(char** list);

// Returns null for an empty text or a null pointer.
Json orNull(const char* text);

// Returns JSON text, on one line if indent is -1. Escapes all but ASCII on a terminal.
std::string jsonText(const Json& json, int indent);
