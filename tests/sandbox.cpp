#include "sandbox.h"

#include <fcntl.h>
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

namespace {

// A user namespace makes an ordinary user root of the test's own world.
bool enterUserNamespace() {
    const uid_t uid = geteuid();
    const gid_t gid = getegid();
    if (uid == 0) {
        return true;
    }
    if (unshare(CLONE_NEWUSER) != 0) {
        return false;
    }
    writeFile("/proc/self/setgroups", "deny");
    writeFile("/proc/self/uid_map", "0 " + std::to_string(uid) + " 1");
    writeFile("/proc/self/gid_map", "0 " + std::to_string(gid) + " 1");
    return true;
}

bool mountTmpfs(const char* target) {
    return (mkdir(target, 0755) == 0 || errno == EEXIST) &&
           mount("tmpfs", target, "tmpfs", 0, nullptr) == 0;
}

}  // namespace

void Sandbox::SetUp() {
    if (!enterUserNamespace() || unshare(CLONE_NEWNS | CLONE_NEWNET) != 0 ||
        mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) != 0) {
        GTEST_SKIP() << "no namespaces here: " << std::strerror(errno);
    }
    // sysfs shows the network namespace in which it was mounted.
    ASSERT_TRUE(mountTmpfs("/mnt") && mountTmpfs("/tmp/m7") && mkdir("/mnt/test", 0755) == 0 &&
                mount("sysfs", "/sys", "sysfs", 0, nullptr) == 0)
        << std::strerror(errno);
    run("ip link set lo up && mkdir /mnt/test/bin");
    setenv("PATH", "/mnt/test/bin:/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin", 1);
}

void Sandbox::bindFile(const std::string& target, std::string_view content) {
    static int number = 0;
    const std::string source = "/mnt/test/bound-" + std::to_string(++number);
    writeFile(source, content);
    ASSERT_EQ(mount(source.c_str(), target.c_str(), "none", MS_BIND, nullptr), 0)
        << target << ": " << std::strerror(errno);
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
    // The walk's own descriptor is one of those that it counts.
    return static_cast<int>(
               std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {})) -
           1;
}

void writeFile(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::trunc).write(content.data(), std::ssize(content));
}

std::string readFile(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}
