#include <cstdlib>
#include <string>

#include "console-manager/network.h"

int32_t CML_getHostAvailable(const char* host, int32_t timeout, const char* port) {
    std::string command = "ping -c1 -w";
    command.append(std::to_string(timeout));
    if (port != nullptr && *port != '\0') {
        command.append(" -I ").append(port);
    }
    command.append(" ").append(host).append(" >/dev/null 2>&1");
    return std::system(command.c_str());
}
