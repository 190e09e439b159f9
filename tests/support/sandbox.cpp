#include "support/sandbox.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

// Returns false if the system refuses.
static bool enterNamespaces() {
    // A user namespace makes an ordinary user root in the other namespaces.
    const std::string uid = std::to_string(geteuid());
    const std::string gid = std::to_string(getegid());
    if (uid != "0" && unshare(CLONE_NEWUSER) == 0) {
        writeFile("/proc/self/setgroups", "deny");
        writeFile("/proc/self/uid_map", "0 " + uid + " 1");
        writeFile("/proc/self/gid_map", "0 " + gid + " 1");
    }
    return unshare(CLONE_NEWNS | CLONE_NEWNET) == 0 &&
           mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0;
}

void Sandbox::SetUp() {
    static bool isWithin = false;
    if (!isWithin && !enterNamespaces()) {
        GTEST_SKIP() << "no namespaces here: " << std::strerror(errno);
    }
    if (!std::exchange(isWithin, true)) {
        // The board's PATH is needed as it is; that of an ordinary user may lack ip.
        setenv("PATH", ("/mnt/test/bin:/usr/sbin:/sbin:" + std::string(getenv("PATH"))).c_str(), 1);
        // sysfs shows the network namespace in which it was mounted.
        run("mkdir -p /tmp/m7 && mount -t tmpfs none /tmp/m7 && mount -t tmpfs none /mnt && "
            "mkdir -p /mnt/test/bin && mount -t sysfs none /sys && ip link set lo up");
        ASSERT_FALSE(HasFailure()) << "the machine's own files would be touched";
    }
    prepare();
}

void Sandbox::bindFile(const std::string& target, std::string_view content) {
    static int number = 0;
    const std::string source = "/mnt/test/bound-" + std::to_string(++number);
    writeFile(source, content);
    ASSERT_EQ(mount(source.c_str(), target.c_str(), "none", MS_BIND, nullptr), 0)
        << target << ": " << std::strerror(errno);
}

void Sandbox::addPorts() {
    // The kernel updates the flags some time after a link is up.
    run("test -e /sys/class/net/wire || { ip link add wire type veth peer name peer && "
        "ip link set peer up && ip link set wire address 02:00:5e:10:00:01 up && "
        "ip link add lone type veth peer name end && ip link set lone up && "
        "sysctl -qw net.ipv6.conf.wire.accept_dad=0 && ip addr add 192.0.2.5/25 dev wire && "
        "ip addr add 192.0.2.200/32 dev wire && ip addr add 2001:db8::5/64 dev wire nodad && "
        "cd /sys/class/net && until grep -q up wire/operstate && grep -q up peer/operstate && "
        "grep -q lowerlayerdown lone/operstate; do :; done; }");
}

std::string Sandbox::run(const std::string& command) {
    FILE* const pipe = popen(command.c_str(), "r");
    std::string output = readFile("/proc/self/fd/" + std::to_string(fileno(pipe)));
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

Texts take(char** list) {
    Texts texts;
    for (char** text = list; text != nullptr && *text != nullptr; ++text) {
        texts.emplace_back(*text);
        free(*text);
    }
    free(list);
    return texts;
}

int openDescriptors() {
    return int(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

void writeFile(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::trunc).write(content.data(), std::ssize(content));
}

std::string readFile(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}
