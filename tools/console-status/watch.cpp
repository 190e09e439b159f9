#include "watch.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <iomanip>
#include <map>
#include <optional>
#include <sstream>

#include "commands.h"
#include "table.h"
#include "terminal.h"

namespace {

using Clock = std::chrono::steady_clock;

// The course of a figure over the last minute, in steps of which each is the mean of its time.
class History {
  public:
    void add(Clock::time_point now, double value) {
        if (steps.empty() || now - steps.back().since >= kStep) {
            steps.push_back({now, 0, 0});
        }
        steps.back().sum += value;
        ++steps.back().count;
        if (steps.size() > kSteps) {
            steps.erase(steps.begin());
        }
    }

    // As parts of the highest, or of 1 if that is more.
    Json ratios() const {
        double highest = 1;
        for (const Step& step : steps) {
            highest = std::max(highest, step.mean());
        }
        Json parts = Json::array();
        for (const Step& step : steps) {
            parts.push_back(step.mean() / highest);
        }
        return parts;
    }

  private:
    static constexpr std::chrono::seconds kStep{5};
    static constexpr size_t kSteps = 12;
    struct Step {
        Clock::time_point since;
        double sum;
        int count;

        double mean() const { return sum / count; }
    };
    std::vector<Step> steps;
};

// What is known from earlier reports.
class Past {
  public:
    // Rates, and for people the course, too.
    void addTo(Json& report, bool forPeople) {
        const auto now = Clock::now();
        const double seconds = std::chrono::duration<double>(now - time).count();
        for (Json& port : report.contains("ports") ? report["ports"] : none) {
            Traffic& traffic = ports[port["name"]];
            addRates(port, traffic, seconds);
            traffic.history.add(
                now, numberOf(port["rx_bytes_per_second"]) + numberOf(port["tx_bytes_per_second"]));
            if (forPeople) {
                port["history"] = traffic.history.ratios();
            }
        }
        if (forPeople && report.contains("device")) {
            Json& load = report["device"]["load"];
            loads.add(now, numberOf(load["all"]));
            load["history"] = loads.ratios();
        }
        time = now;
    }

  private:
    struct Traffic {
        std::optional<double> received;
        std::optional<double> sent;
        History history;
    };

    // Null where one of the counts is unknown, or began anew.
    static Json rate(std::optional<double> before, std::optional<double> now, double seconds) {
        return before && now && *now >= *before ? Json((*now - *before) / seconds) : Json();
    }

    static void addRates(Json& port, Traffic& traffic, double seconds) {
        const auto received = countOf(port["rx_bytes"]);
        const auto sent = countOf(port["tx_bytes"]);
        port["rx_bytes_per_second"] = rate(traffic.received, received, seconds);
        port["tx_bytes_per_second"] = rate(traffic.sent, sent, seconds);
        traffic.received = received;
        traffic.sent = sent;
    }

    static std::optional<double> countOf(const Json& value) {
        return value.is_null() ? std::nullopt : std::optional(value.get<double>());
    }

    static double numberOf(const Json& value) { return value.is_null() ? 0 : value.get<double>(); }

    Json none;
    Clock::time_point time;
    std::map<std::string, Traffic> ports;
    History loads;
};

std::string timeText(const char* pattern, std::tm* (*split)(const std::time_t*)) {
    const std::time_t now = std::time(nullptr);
    std::ostringstream text;
    text << std::put_time(split(&now), pattern);
    return text.str();
}

// From the terminal's first line on, each line up to its end; what doesn't fit is left out.
void redraw(const std::string& text) {
    const auto all = static_cast<size_t>(std::ranges::count(text, '\n'));
    const size_t room = std::max<size_t>(terminalRows(), 3) - 1;
    size_t left = all <= room ? all : room - 1;
    std::istringstream lines(text);
    std::string screen = "\033[H";
    for (std::string line; left > 0 && std::getline(lines, line); --left) {
        screen += line + "\033[K\n";
    }
    if (all > room) {
        screen += "  and " + std::to_string(all - room + 1) + " more lines\033[K\n";
    }
    print(screen + "\033[J");
}

enum class Event { kTime, kResize, kEnd };

// What comes first; the signals must be blocked.
Event waitUntil(Clock::time_point time, const sigset_t& signals) {
    for (;;) {
        const auto left = std::max(time - Clock::now(), Clock::duration::zero());
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        const timespec timeout{static_cast<std::time_t>(seconds.count()),
                               static_cast<long>(std::chrono::nanoseconds(left - seconds).count())};
        const int signal = sigtimedwait(&signals, nullptr, &timeout);
        if (signal > 0) {
            return signal == SIGWINCH ? Event::kResize : Event::kEnd;
        }
        // A stop and a continue end the wait early, too.
        if (Clock::now() >= time) {
            return Event::kTime;
        }
    }
}

sigset_t blockedSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGWINCH);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

enum class Form { kJsonLine, kPaper, kScreen };

// Whether output works.
bool show(std::span<const Section> sections, const Json& report, Form form) {
    if (form == Form::kJsonLine) {
        Json line = {{"time", timeText("%FT%TZ", std::gmtime)}};
        line.update(report);
        print(line.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
    } else if (form == Form::kPaper) {
        print(title(timeText("%F %T", std::localtime)) + showReport(sections, report));
    } else {
        redraw(timeText("%F %T", std::localtime) + "   Ctrl-C ends\n" +
               showReport(sections, report));
    }
    return std::fflush(stdout) == 0;
}

}  // namespace

int watch(std::span<const Section> sections, std::chrono::seconds interval, bool asJson) {
    const sigset_t signals = blockedSignals();
    const Form form = asJson ? Form::kJsonLine : obeysSequences() ? Form::kScreen : Form::kPaper;
    if (form == Form::kScreen) {
        print(std::string(terminalRows(), '\n'));  // keeps what is on the screen
    }
    Past past;
    Json report;
    Event event = Event::kTime;
    for (auto next = Clock::now(); event != Event::kEnd;) {
        if (event == Event::kTime) {
            report = readReport(sections);
            past.addTo(report, !asJson);
            // Not sooner because the one before was late.
            next = std::max(next + interval, Clock::now());
        }
        event = show(sections, report, form) ? waitUntil(next, signals) : Event::kEnd;
    }
    if (form == Form::kScreen) {
        print("\n");
    }
    return isIncomplete(report) ? kFailed : kDone;
}
