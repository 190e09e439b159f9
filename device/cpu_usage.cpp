#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "console-manager/device.h"
#include "system/text_fields.h"
#include "system/text_file.h"

namespace {

// The running totals of one line, in clock ticks. The kernel's further counters (waiting for input
// and output, interrupts ...) are neither busy nor idle time here.
struct CpuTimes {
    double user = 0;
    double nice = 0;
    double system = 0;
    double idle = 0;

    [[nodiscard]] double busy() const { return user + nice + system; }
    [[nodiscard]] double total() const { return busy() + idle; }
};

std::vector<CpuTimes> readCpuTimes() {
    std::vector<CpuTimes> reading;
    const std::string text = readText("/proc/stat");
    for (std::string_view rest = text; !rest.empty();) {
        std::string_view line = takeLine(rest);
        if (takeWord(line).starts_with("cpu")) {
            CpuTimes& times = reading.emplace_back();
            for (double* const ticks : {&times.user, &times.nice, &times.system, &times.idle}) {
                if (!takeNumber(line, *ticks)) {
                    break;
                }
            }
        }
    }
    return reading;
}

// Calculates in double on every machine, so that all have the same figures. NaN if no tick has
// passed.
double usageBetween(const CpuTimes& previous, const CpuTimes& current) {
    return (current.busy() - previous.busy()) / (current.total() - previous.total());
}

}  // namespace

const long double* CML_getAllCPUUsage(int32_t* count) {
    // Never destroyed: exit handlers and threads may still call while the process ends.
    static auto& previousReading = *new std::vector<CpuTimes>;
    static auto& cpuUsage = *new std::vector<long double>(1);

    std::vector<CpuTimes> current = readCpuTimes();
    if (!current.empty() && current.size() == previousReading.size()) {
        cpuUsage.resize(current.size());
        for (size_t i = 0; i < current.size(); ++i) {
            cpuUsage[i] = usageBetween(previousReading[i], current[i]);
        }
    }
    previousReading = std::move(current);
    if (count != nullptr) {
        *count = static_cast<int32_t>(cpuUsage.size());
    }
    return cpuUsage.data();
}

long double CML_getCPUUsage(void) {
    return *CML_getAllCPUUsage(nullptr);
}
