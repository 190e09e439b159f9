#include "report.h"

#include <algorithm>
#include <chrono>

#include "commands.h"
#include "watch.h"

namespace {

constexpr Section kSections[] = {
    {"settings", false, [](Json& report, const Ports&) { readSettings(report); }, showSettings},
    {"device", false, [](Json& report, const Ports&) { readDevice(report); }, showDevice},
    {"ports", true, readPorts, showPorts},
    {"wifi", true, readWifi, showWifi},
};

// All, or the one of that name. What --watch shows of all is what changes by itself.
std::span<const Section> chosen(const Arguments& arguments) {
    const std::span<const Section> all = kSections;
    if (arguments.words.empty()) {
        return arguments.has('w') ? all.subspan(1) : all;
    }
    const auto found = std::ranges::find(all, arguments.words[0], &Section::name);
    return {found, 1};
}

bool hasError(const Json& told) {
    return std::ranges::any_of(told.items(), [](const auto& item) {
        return (item.key() == "error" && !item.value().is_null()) ||
               (item.value().is_structured() && hasError(item.value()));
    });
}

}  // namespace

Json readReport(std::span<const Section> sections) {
    Json report;
    const bool needed = std::ranges::any_of(sections, &Section::needsPorts);
    const Ports ports = needed ? portNames() : std::nullopt;
    for (const Section& section : sections) {
        section.read(report, ports);
    }
    return report;
}

std::string showReport(std::span<const Section> sections, const Json& report) {
    std::string text;
    for (const Section& section : sections) {
        text += section.show(report);
    }
    return text;
}

bool isIncomplete(const Json& report) {
    return std::ranges::any_of(report, &Json::is_null) || hasError(report);
}

int reportSections(const Arguments& arguments) {
    const auto sections = chosen(arguments);
    if (arguments.has('w')) {
        const auto seconds = numberOf(arguments.seconds, "--watch", 1);
        return seconds ? watch(sections, std::chrono::seconds(*seconds), arguments.has('j'))
                       : kUsageError;
    }
    const Json report = readReport(sections);
    if (arguments.has('j')) {
        printJson(report);
    } else {
        print(showReport(sections, report));
    }
    return isIncomplete(report) ? kFailed : kDone;
}
