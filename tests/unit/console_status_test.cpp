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
        setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);  // for what is preloaded
        unsetenv("NO_COLOR");
    }
};

// A session has each command after "$", all its output, and its exit status if that isn't 0. The
// second of the pair is loaded in front of the libraries.
class Session : public ConsoleStatus,
                public testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(Session, PrintsWhatItSays) {
    const std::string expected =
        readFile(CS_SESSIONS "/" + std::string(GetParam().first) + ".session");
    setenv("LD_PRELOAD", GetParam().second, 1);
    std::istringstream lines(expected);
    std::string printed;
    for (std::string line; std::getline(lines, line);) {
        printed += line.starts_with("$ ") || line.starts_with("# ") ? line + "\n" : "";
        if (line.starts_with("$ ")) {
            printed += run("{ " + line.substr(2) + "\n} 2>&1 || echo \"[$?]\"");
        }
    }
    EXPECT_EQ(printed, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Of, Session,
    testing::Values(std::pair("commands", ""), std::pair("completion", ""), std::pair("locked", ""),
                    std::pair("report", ""), std::pair("settings", ""),
                    std::pair("settings", CS_OTHER_DATA_ACCESS), std::pair("terminal", ""),
                    std::pair("unusable", ""), std::pair("unusable", CS_OTHER_DATA_ACCESS)),
    [](const auto& of) {
        return std::string(of.param.first) + (*of.param.second ? "Otherwise" : "");
    });

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
