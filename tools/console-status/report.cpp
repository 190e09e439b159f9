#include "report.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <utility>

#include "commands.h"
#include "stored.h"
#include "table.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kMostHistory = 20;

// Returns the section that is named, or all. The settings are last, because they may wait for a
// lock; --watch leaves them out.
Sections sectionsOf(const Arguments& arguments) {
    Sections sections = {&kSoftwareSection, &kLoadSection, &kPortsSection, &kWifiSection,
                         &kSettingsSection};
    std::erase_if(sections, [&](const Section* section) {
        return arguments.words.empty() ? section == &kSettingsSection && arguments.has('w')
                                       : section->name != arguments.words[0];
    });
    return sections;
}

std::string showAll(const Sections& sections, const Json& report) {
    std::string text;
    for (const Section* section : sections) {
        text += section->show(report);
    }
    return text;
}

int statusOf(const Json& report) {
    const Json flat = report.flatten();
    const bool complete = std::ranges::none_of(flat.items(), [](const auto& item) {
        return (item.key().ends_with("/error") && !item.value().is_null()) ||
               (item.key().ends_with("/state") && item.value() == "gone");
    });
    return complete && std::ranges::none_of(report, &Json::is_null) ? kDone : kFailed;
}

// Appends a figure to the history in the report before.
void addHistory(Json& now, Json& before, Json figure) {
    Json& history = now["history"] = std::exchange(before["history"], nullptr);
    history.push_back(std::move(figure));
    if (history.size() > kMostHistory) {
        history.erase(0);
    }
}

// Null if a count is unknown or has started again from 0.
Json rateOf(const Json& now, const Json& before, double seconds) {
    if (now.is_null() || before.is_null()) {
        return nullptr;
    }
    const double rate = (now.get<double>() - before.get<double>()) / seconds;
    return rate < 0 ? Json() : Json(rate);
}

// Adds rates and histories to a report, which take the one before.
void addPast(Json& report, Json& past, double seconds) {
    std::map<std::string, Json> before;
    for (const Json& port : past["ports"]) {
        before[port["name"]] = port;
    }
    for (Json& port : report.contains("ports") ? report["ports"] : past["none"]) {
        Json& was = before[port["name"]];
        const Json in = rateOf(port["rx_bytes"], was["rx_bytes"], seconds);
        const Json out = rateOf(port["tx_bytes"], was["tx_bytes"], seconds);
        port["rx_bytes_per_second"] = in;
        port["tx_bytes_per_second"] = out;
        const bool known = !in.is_null() && !out.is_null();
        addHistory(port, was, known ? Json(in.get<double>() + out.get<double>()) : Json());
    }
    if (report.contains("device")) {
        Json& load = report["device"]["load"];
        addHistory(load, past["device"]["load"], load["all"]);
    }
}

// Overwrites the terminal from its first line on, with as many lines as fit.
std::string screenOf(const std::string& text) {
    std::istringstream lines(text);
    std::string screen = "\033[H";
    std::string line;
    for (size_t left = terminalRows() - 1; left > 0 && std::getline(lines, line); --left) {
        const bool more = left == 1 && lines.peek() != EOF;
        screen += (more ? "  ..." : line) + "\033[K\n";
    }
    return screen + "\033[J";
}

// Repeats the sections until SIGINT, which waits for the end of a report.
int watch(const Sections& sections, const Json& ports, int seconds, bool asJson) {
    const bool ofChanges = sections[0] == &kSettingsSection;
    const bool inPlace = !asJson && !ofChanges && obeysSequences();
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, inPlace ? SIGWINCH : SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    print(std::string(inPlace ? terminalRows() : 0, '\n'));  // keeps what is on the screen
    const timespec interval{seconds, 0};
    Stored stored = ofChanges ? readStored() : Stored();
    Json report = Json::object();
    auto time = Clock::now();
    for (int signal = 0; signal != SIGINT;) {
        if (signal == 0 && !ofChanges) {
            Json past = std::exchange(report, readAll(sections, ports));
            const std::chrono::duration<double> passed =
                Clock::now() - std::exchange(time, Clock::now());
            addPast(report, past, passed.count());
        }
        Json line = {{"time", timeText("%FT%TZ", std::gmtime)}};
        line.update(report);
        const std::string text = timeText("%F %T   Ctrl-C ends\n", std::localtime) +
                                 (ofChanges ? "" : showAll(sections, report));
        print(ofChanges ? readChanges(stored, asJson)
              : asJson  ? jsonText(line, -1)
              : inPlace ? screenOf(text)
                        : "\n" + text);
        // SIGSTOP and SIGCONT also end the wait (EINTR).
        signal = std::fflush(stdout) == 0 ? std::max(sigtimedwait(&signals, nullptr, &interval), 0)
                                          : SIGINT;
    }
    print(inPlace ? "\n" : "");
    return statusOf(report);
}

}  // namespace

std::string timeText(const char* pattern, std::tm* (*split)(const std::time_t*), std::time_t time) {
    std::ostringstream text;
    text << std::put_time(split(&time), pattern);
    return text.str();
}

Names take(char** list) {
    Names texts;
    for (char** text = list; text != nullptr && *text != nullptr; ++text) {
        texts.emplace_back(*text);
        std::free(*text);
    }
    std::free(list);
    return texts;
}

Json orNull(const char* text) {
    return text == nullptr || *text == '\0' ? Json() : Json(text);
}

std::string jsonText(const Json& json, int indent) {
    // A terminal also obeys the control characters from U+007F to U+009F.
    const bool isAscii = isTerminal();
    return json.dump(indent, ' ', isAscii, Json::error_handler_t::replace) + "\n";
}

Json readAll(const Sections& sections, Json ports, bool isShown) {
    Json report;
    for (const Section* section : sections) {
        if (section->usesPorts && ports.is_null()) {
            ports = portNames();
        }
        section->read(report, ports);
        print(isShown ? section->show(report) : "");
        std::fflush(stdout);
    }
    return report;
}

int reportSections(const Arguments& arguments) {
    const Sections sections = sectionsOf(arguments);
    const bool asJson = arguments.has('j');
    // Of the command "ports" the rest of the words are names.
    const Names& words = arguments.words;
    const Json ports = words.size() > 1 ? Json(Names(words.begin() + 1, words.end())) : Json();
    if (arguments.has('w')) {
        return watch(sections, ports, arguments.seconds('w', ""), asJson);
    }
    if (arguments.has('s')) {
        return showStored(arguments);
    }
    const Json report = readAll(sections, ports, !asJson);
    print(asJson ? jsonText(report, arguments.indent()) : "");
    return statusOf(report);
}
