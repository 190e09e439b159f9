#include <console-manager/settings.h>

#include "support/sandbox.h"

namespace {

class ConsoleStatus : public Sandbox {
  protected:
    // All output, and the exit status in a line of its own at the end.
    static std::string answer(const std::string& arguments) {
        return run("{ " CONSOLE_STATUS " " + arguments + "; echo status $?; } 2>&1");
    }
};

TEST_F(ConsoleStatus, AnswersCommands) {
    ASSERT_EQ(DAL_CML_setHomeScreenIcon("f\xc3\xbcr", "a\033[1m\x9b\xc2\x9b\xff"), 0);
    const struct {
        const char* arguments;
        const char* end;  // of the answer
    } rows[] = {
        {"get Language", "EN\nstatus 0\n"},
        {"set Language DE", "status 0\n"},
        {"get Language", "DE\nstatus 0\n"},
        {"reset Language", "status 0\n"},
        {"get Language", "EN\nstatus 0\n"},
        {"get Language >/dev/full", "No space left on device\nstatus 1\n"},
        {"--watch 1 >/dev/full", "No space left on device\nstatus 1\n"},
        {"set Theme 3", "from 0 to 2, not '3'\nstatus 2\n"},
        {"set DriverDisplaySource -7", "status 0\n"},
        {"get DriverDisplaySource", "-7\nstatus 0\n"},
        {"get Nothing", "the program shows all\nstatus 2\n"},
        {"reset Nothing", "the program shows all\nstatus 2\n"},
        {"list HomeScreenIcon", "  Node  Value\n  f\xc3\xbcr   a?[1m???\nstatus 0\n"},
        {"list Nothing", "QorHotKeySelectListItem\nstatus 2\n"},
        {"--watch 0", "from 1, not '0'\nstatus 2\n"},
        {"scan nothing", "No such device\nstatus 1\n"},
        {"nothing", "strongest first\nstatus 2\n"},
        {"get", "strongest first\nstatus 2\n"},
        {"--help", "it can't have.\nstatus 0\n"},
        {"| grep 'HomeScreenIcon  '",
         "  HomeScreenIcon                  1  persistent\nstatus 0\n"},
    };
    for (const auto& row : rows) {
        const std::string all = answer(row.arguments);
        EXPECT_TRUE(all.ends_with(row.end)) << row.arguments << ": " << all;
    }
    run("mount -t tmpfs -o ro none /mnt");
    EXPECT_TRUE(answer("get Language").ends_with("can't read Language\nstatus 1\n"));
}

TEST_F(ConsoleStatus, ColoursATerminalAlone) {
    const std::string list = CONSOLE_STATUS " list HomeScreenIcon";
    const std::string onTerminal = "script -qec '" + list + "' /dev/null </dev/null";
    EXPECT_EQ(run("TERM=xterm NO_COLOR= " + onTerminal).substr(0, 6), "  \033[1m");
    EXPECT_EQ(run("TERM=xterm NO_COLOR=1 " + onTerminal), "  Node  Value\r\n");
    EXPECT_EQ(run("TERM=dumb NO_COLOR= " + onTerminal), "  Node  Value\r\n");
    EXPECT_EQ(run("TERM=xterm NO_COLOR= " + list), "  Node  Value\n");
}

}  // namespace
