// The report. Each section reads what it shows into JSON, which is either written as it is or shown
// to people.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

using Json = nlohmann::ordered_json;  // the keys in the order in which they are written here
using Names = std::vector<std::string>;

struct Section {
    const char* name;
    bool usesPorts;
    // Adds its keys. What isn't there is null. An "error" that isn't null, at whatever depth, tells
    // that something couldn't be read, and so does a section that is null as a whole.
    void (*read)(Json& report, const Json& ports);
    // With a heading. Gets what was read; --watch adds rates to it, and a "history" of the last
    // reports, with which it shows what changes alone.
    std::string (*show)(const Json& report);
};
extern const Section kSoftwareSection;  // and the next are the parts of "device"
extern const Section kLoadSection;
extern const Section kPortsSection;
extern const Section kWifiSection;
extern const Section kSettingsSection;

// The names of the device's network ports; null, after a message on stderr, if they can't be
// listed.
Json portNames();

// The texts of a list that the library has made; frees it.
Names take(char** list);

// Null of an empty text or none.
Json orNull(const char* text);

// As JSON; several lines if indent isn't -1.
std::string jsonText(const Json& json, int indent = 2);
