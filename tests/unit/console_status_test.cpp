// The program as it is used: from a shell, on a terminal and by scripts.
#include <console-manager/settings.h>

#include <nlohmann/json.hpp>

#include "support/sandbox.h"

namespace {

class ConsoleStatus : public Sandbox {
  protected:
    void prepare() override {
        addPorts();
        run("ln -sf '" CS "' /tmp/m7");
        setenv("PATH", (CS_SESSIONS "/bin:/tmp/m7:" + std::string(getenv("PATH"))).c_str(), 1);
        setenv("SOURCE", CS_SOURCE, 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
    }
};

// A session has each command behind "$", all its output, and its exit status if that isn't 0.
class Session : public ConsoleStatus, public testing::WithParamInterface<const char*> {};

TEST_P(Session, IsAnsweredAsItIsTold) {
    const std::string told = readFile(CS_SESSIONS "/" + std::string(GetParam()) + ".session");
    std::istringstream lines(told);
    std::string answered;
    for (std::string line; std::getline(lines, line);) {
        answered += line.starts_with("$ ") || line.starts_with("# ") ? line + "\n" : "";
        if (line.starts_with("$ ")) {
            answered += run("{ " + line.substr(2) + "\n} 2>&1 || echo \"[$?]\"");
        }
    }
    EXPECT_EQ(answered, told);
}

INSTANTIATE_TEST_SUITE_P(Of, Session,
                         testing::Values("commands", "completion", "report", "terminal",
                                         "unusable"),
                         [](const auto& of) { return of.param; });

TEST_F(ConsoleStatus, KeysOfJsonAreDocumented) {
    // A port that says it is wireless, on a kernel or a machine that has no such thing.
    run("mkdir -p /mnt/test/net/lo/phy80211 && mount --bind /mnt/test/net /sys/class/net");
    ASSERT_EQ(DAL_CML_setHomeScreenIcon("n", ""), 0);
    nlohmann::json told;
    for (const std::string arguments :
         {"--watch 1 | head -n 1", "settings", "get Theme", "list HomeScreenIcon", "ping ::1"}) {
        told.push_back(nlohmann::json::parse(run("console-status --json " + arguments + " || :")));
    }
    const nlohmann::json& link = told[0]["wifi"][0];
    EXPECT_TRUE(link["error"].is_string() || link["connected"] == false);
    const std::string page = readFile(CS_SOURCE "/console-status.1");
    const nlohmann::json flat = told.flatten();
    for (const auto& [path, value] : flat.items()) {
        const std::string key = path.substr(path.find_last_of('/') + 1);
        EXPECT_TRUE(key < ":" || page.find("\\fB" + key + "\\fR") != std::string::npos) << path;
    }
}

}  // namespace
