#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "console-manager/network.h"

namespace {

// A counter that isn't there, is no number or doesn't fit leaves *bytes as it is.
void readCounter(const std::filesystem::path& statistics, const char* name, int32_t* bytes) {
    try {
        std::ifstream stream(statistics / name);
        std::stringstream content;
        content << stream.rdbuf();
        *bytes = std::stoi(content.str());
    } catch (const std::exception&) {
        return;
    }
}

}  // namespace

void CML_getNetworkPortInfo(const char* port, int32_t* rxBytes, int32_t* txBytes) {
    *rxBytes = 0;
    *txBytes = 0;
    std::filesystem::path statistics = "/sys/class/net/";
    statistics /= port;
    statistics /= "statistics";
    readCounter(statistics, "rx_bytes", rxBytes);
    readCounter(statistics, "tx_bytes", txBytes);
}
