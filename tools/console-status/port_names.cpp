#include "port_names.h"

#include <console-manager/network.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>

namespace {

struct FreeNames {
    void operator()(char** names) const {
        for (char** name = names; *name != nullptr; ++name) {
            std::free(*name);
        }
        std::free(names);
    }
};

}  // namespace

std::vector<std::string> portNames() {
    std::vector<std::string> ports;
    try {
        const std::unique_ptr<char*, FreeNames> names(CML_getNetworkPortsList(0));
        for (char** name = names.get(); name != nullptr && *name != nullptr; ++name) {
            ports.emplace_back(*name);
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "console-status: can't list the ports: %s\n", failure.what());
    }
    return ports;
}
