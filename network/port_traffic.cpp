#include <exception>
#include <string>
#include <string_view>

#include "console-manager/network.h"
#include "system/text_fields.h"
#include "system/text_file.h"

namespace {

// Leaves *bytes alone if the counter is missing, not a number or out of range.
void readCounter(const std::string& statistics, const char* name, int32_t* bytes) {
    try {
        const std::string text = readText((statistics + name).c_str());
        std::string_view rest = text;
        int32_t number = 0;
        if (takeNumber(rest, number)) {
            *bytes = number;
        }
    } catch (const std::exception&) {
        return;
    }
}

}  // namespace

void CML_getNetworkPortInfo(const char* port, int32_t* rxBytes, int32_t* txBytes) {
    *rxBytes = 0;
    *txBytes = 0;
    // A port that is an absolute path replaces the folder, as with std::filesystem::path.
    std::string statistics = *port == '/' ? "" : "/sys/class/net/";
    statistics.append(port).append("/statistics/");
    readCounter(statistics, "rx_bytes", rxBytes);
    readCounter(statistics, "tx_bytes", txBytes);
}
