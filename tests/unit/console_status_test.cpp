// The program as it is used: from a shell, on a terminal and by scripts. It is the one of this
// build, or the one that CONSOLE_STATUS in the environment names.
#include "support/sandbox.h"

namespace {

// A session has each command after "$", all its output, and its exit status if that isn't 0. The
// second of the pair is loaded in front of the libraries.
class Session : public Sandbox,
                public testing::WithParamInterface<std::pair<const char*, const char*>> {
  protected:
    void prepare() override {
        addPorts();
        run("ln -sf \"${CONSOLE_STATUS:-" CS "}\" /tmp/m7");
        setenv("PATH", CS_SESSIONS "/bin:/tmp/m7:/usr/sbin:/usr/bin:/sbin:/bin", 1);
        setenv("SOURCE", CS_SOURCE, 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        setenv("TERM", "xterm", 1);
        // LD_PRELOAD takes no path with a blank.
        const std::string libraries = "\"" CS_MODULES "${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}\"";
        setenv("LD_LIBRARY_PATH", run("printf %s " + libraries).c_str(), 1);
        setenv("LD_PRELOAD", GetParam().second, 1);
        unsetenv("NO_COLOR");
    }
};

TEST_P(Session, PrintsWhatItSays) {
    const std::string said = readFile(CS_SESSIONS "/" + std::string(GetParam().first) + ".session");
    std::istringstream lines(said);
    std::string printed;
    for (std::string line; std::getline(lines, line);) {
        printed += line.starts_with("$ ") || line.starts_with("# ") ? line + "\n" : "";
        if (line.starts_with("$ ")) {
            printed += run("{ " + line.substr(2) + "\n} 2>&1 || echo \"[$?]\"");
        }
    }
    EXPECT_EQ(printed, said);
}

INSTANTIATE_TEST_SUITE_P(
    Of, Session,
    testing::Values(std::pair("commands", ""), std::pair("completion", ""), std::pair("fleet", ""),
                    std::pair("fleet", CS_OTHER_DATA_ACCESS), std::pair("locked", ""),
                    std::pair("metrics", CS_PLAYED_WIFI), std::pair("report", ""),
                    std::pair("settings", ""), std::pair("settings", CS_OTHER_DATA_ACCESS),
                    std::pair("terminal", ""), std::pair("unusable", ""),
                    std::pair("unusable", CS_OTHER_DATA_ACCESS), std::pair("wifi", CS_PLAYED_WIFI)),
    [](const auto& of) {
        return std::string(of.param.first) + (*of.param.second ? "Preloaded" : "");
    });

}  // namespace
