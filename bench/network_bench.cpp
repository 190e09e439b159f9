// Each network function beside the bare system calls that it can't do without.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "console-manager/network.h"

namespace {

constexpr char kPort[] = "lo";

void bareFlags(benchmark::State& state) {
    for (auto _ : state) {
        ifreq request{};
        std::strcpy(request.ifr_name, kPort);
        const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
        benchmark::DoNotOptimize(ioctl(descriptor, SIOCGIFFLAGS, &request));
        close(descriptor);
    }
}
BENCHMARK(bareFlags);

void portStatus(benchmark::State& state) {
    CML_NetworkPortStatus status;
    for (auto _ : state) {
        CML_getNetworkPortStatus(kPort, &status);
    }
}
BENCHMARK(portStatus);

void portActive(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CML_checkNetworkPortActive(kPort));
    }
}
BENCHMARK(portActive);

void readBare(const char* path) {
    char text[4096];
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC);
    benchmark::DoNotOptimize(read(descriptor, text, sizeof text));
    close(descriptor);
}

void bareAddressFile(benchmark::State& state) {
    for (auto _ : state) {
        readBare("/sys/class/net/lo/address");
    }
}
BENCHMARK(bareAddressFile);

void macAddress(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CML_getNetworkPortMACAddress(kPort));
    }
}
BENCHMARK(macAddress);

void bareCounters(benchmark::State& state) {
    for (auto _ : state) {
        readBare("/sys/class/net/lo/statistics/rx_bytes");
        readBare("/sys/class/net/lo/statistics/tx_bytes");
    }
}
BENCHMARK(bareCounters);

void portInfo(benchmark::State& state) {
    int32_t received = 0;
    int32_t sent = 0;
    for (auto _ : state) {
        CML_getNetworkPortInfo(kPort, &received, &sent);
    }
}
BENCHMARK(portInfo);

void bareDirectory(benchmark::State& state) {
    for (auto _ : state) {
        DIR* const directory = opendir("/sys/class/net");
        while (readdir(directory) != nullptr) {
        }
        closedir(directory);
    }
}
BENCHMARK(bareDirectory);

void portsList(benchmark::State& state) {
    for (auto _ : state) {
        char** const list = CML_getNetworkPortsList(0);
        for (char** name = list; *name != nullptr; ++name) {
            std::free(*name);
        }
        std::free(list);
    }
}
BENCHMARK(portsList);

void bareAddresses(benchmark::State& state) {
    for (auto _ : state) {
        ifaddrs* list = nullptr;
        getifaddrs(&list);
        freeifaddrs(list);
    }
}
BENCHMARK(bareAddresses);

void address(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CML_getNetworkPortIPv4Address(kPort));
    }
}
BENCHMARK(address);

void bareRoutes(benchmark::State& state) {
    for (auto _ : state) {
        struct {
            nlmsghdr header;
            rtmsg route;
        } request{{sizeof request, RTM_GETROUTE, NLM_F_REQUEST | NLM_F_DUMP, 0, 0}, {}};
        char reply[4096];
        const timeval limit{1, 0};
        const int descriptor = socket(AF_NETLINK, SOCK_RAW, NETLINK_ROUTE);
        setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        benchmark::DoNotOptimize(send(descriptor, &request, sizeof request, 0));
        benchmark::DoNotOptimize(recv(descriptor, reply, sizeof reply, 0));
        close(descriptor);
    }
}
BENCHMARK(bareRoutes);

void gateway(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CML_getNetworkPortIPv4Gateway(kPort));
    }
}
BENCHMARK(gateway);

constexpr char kPing[] = "ping -c1 -w1 127.0.0.1 >/dev/null 2>&1";

void barePing(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::system(kPing));
    }
}
BENCHMARK(barePing)->UseRealTime();

void hostAvailable(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CML_getHostAvailable("127.0.0.1", 1, nullptr));
    }
}
BENCHMARK(hostAvailable)->UseRealTime();

}  // namespace
