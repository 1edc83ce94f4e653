// Dying of a fault: a child process starts the console's screen on a pseudo-terminal of its own and breaks.
#include <curses.h>
#include <gmock/gmock.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <string>

#include "cursclient/debug.h"
#include "cursclient/winscreen.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

int fill_the_stack(int depth) {
    std::array<volatile char, 4096> room{};
    room[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : fill_the_stack(depth + 1) + room[0];
}

std::string read_all(int fd) {
    std::string all;
    char bytes[4096];
    for (ssize_t n; (n = read(fd, bytes, sizeof bytes)) > 0;)
        all.append(bytes, static_cast<std::size_t>(n));
    return all;
}

[[noreturn]] void die_as_the_console(int line, int errors) {
    dup2(line, STDIN_FILENO);
    dup2(line, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    setenv("TERM", "xterm-256color", 1);
    std::signal(SIGSEGV, SIG_DFL);  // no sanitizer's
    if (!DEBUG_preinit() || !WINSCREEN_start()) _exit(1);
    refresh();
    std::fputs("the reason\n", stderr);
    fill_the_stack(0);
    _exit(2);
}

TEST(Crash, OfAFullStackGivesTheTerminalBackLetsTheReasonOutAndEndsOfItsSignal) {
    int master = -1, line = -1, errors[2];
    ASSERT_EQ(openpty(&master, &line, nullptr, nullptr, nullptr), 0);
    ASSERT_EQ(pipe(errors), 0);
    termios before{}, after{};
    tcgetattr(line, &before);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) die_as_the_console(line, errors[1]);
    close(errors[1]);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "exit status " << WEXITSTATUS(status);
    EXPECT_EQ(WTERMSIG(status), SIGSEGV);
    EXPECT_THAT(read_all(errors[0]), HasSubstr("the reason\n"));

    ASSERT_EQ(tcgetattr(line, &after), 0);
    EXPECT_EQ(after.c_lflag, before.c_lflag);
    EXPECT_EQ(after.c_iflag, before.c_iflag);
    EXPECT_EQ(after.c_oflag, before.c_oflag);
    close(line);
    const std::string seen = read_all(master);
    EXPECT_THAT(seen, HasSubstr("\033[?1049h"));
    EXPECT_THAT(seen.substr(seen.rfind("\033[?1049")), HasSubstr("\033[?1049l"));
    EXPECT_THAT(seen, EndsWith("\033[?25h"));
}

}  // namespace
