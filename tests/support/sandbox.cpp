#include "support/sandbox.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

void Sandbox::SetUp() {
    // A user namespace makes an ordinary user root of the test's own world.
    const std::string uid = std::to_string(geteuid());
    const std::string gid = std::to_string(getegid());
    if (uid != "0" && unshare(CLONE_NEWUSER) == 0) {
        writeFile("/proc/self/setgroups", "deny");
        writeFile("/proc/self/uid_map", "0 " + uid + " 1");
        writeFile("/proc/self/gid_map", "0 " + gid + " 1");
    }
    if (unshare(CLONE_NEWNS | CLONE_NEWNET) != 0 ||
        mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) != 0) {
        GTEST_SKIP() << "no namespaces here: " << std::strerror(errno);
    }
    // Where the board has its programs only its PATH tells; an ordinary user's may lack ip.
    setenv("PATH", ("/mnt/test/bin:/usr/sbin:/sbin:" + std::string(getenv("PATH"))).c_str(), 1);
    // sysfs shows the network namespace in which it was mounted.
    run("mkdir -p /tmp/m7 && mount -t tmpfs none /tmp/m7 && mount -t tmpfs none /mnt && "
        "mkdir -p /mnt/test/bin && mount -t sysfs none /sys && ip link set lo up");
    ASSERT_FALSE(HasFailure()) << "the machine's own files would be touched";
    prepare();
}

void Sandbox::bindFile(const std::string& target, std::string_view content) {
    static int number = 0;
    const std::string source = "/mnt/test/bound-" + std::to_string(++number);
    writeFile(source, content);
    ASSERT_EQ(mount(source.c_str(), target.c_str(), "none", MS_BIND, nullptr), 0) << target;
}

void Sandbox::putProgram(const std::string& name, std::string_view script) {
    const std::string path = "/mnt/test/bin/" + name;
    writeFile(path, "#!/bin/sh\n" + std::string(script) + "\n");
    ASSERT_EQ(chmod(path.c_str(), 0755), 0);
}

std::string Sandbox::run(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    char piece[4096];
    while (pipe != nullptr && std::fgets(piece, sizeof piece, pipe) != nullptr) {
        output += piece;
    }
    EXPECT_TRUE(pipe != nullptr && pclose(pipe) == 0) << command;
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
    return static_cast<int>(
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

void writeFile(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::trunc).write(content.data(), std::ssize(content));
}

std::string readFile(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}
