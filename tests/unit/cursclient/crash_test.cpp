// Dying of a fault: a child process starts the console's screen on a pseudo-terminal of its own and breaks.
#include <curses.h>
#include <gmock/gmock.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>

#include "cursclient/debug.h"
#include "cursclient/winscreen.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

struct Fault {
    const char* name;
    int signal;
    void (*happen)();
};

void PrintTo(const Fault& fault, std::ostream* os) {
    *os << fault.name;
}

// The system shall notice it, before a sanitizer does.
__attribute__((no_sanitize("address", "undefined"))) void write_nowhere() {
    int* volatile nowhere = nullptr;
    *nowhere = 1;
}

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

class Crash : public testing::TestWithParam<Fault> {
  protected:
    Crash() {
        EXPECT_EQ(openpty(&master_, &line_, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(pipe(errors_), 0);
        tcgetattr(line_, &before_);
    }
    ~Crash() override {
        for (const int fd : {master_, line_, errors_[0]})
            close(fd);
    }
    [[noreturn]] void be_the_console() const {
        dup2(line_, STDIN_FILENO);
        dup2(line_, STDOUT_FILENO);
        dup2(errors_[1], STDERR_FILENO);
        setenv("TERM", "xterm-256color", 1);
        for (const int signal : {SIGSEGV, SIGABRT, SIGFPE})
            std::signal(signal, SIG_DFL);  // no sanitizer's
        if (!DEBUG_preinit() || !WINSCREEN_start()) _exit(1);
        refresh();
        std::fputs("the reason\n", stderr);
        GetParam().happen();
        _exit(2);
    }

    int master_ = -1, line_ = -1;
    int errors_[2] = {-1, -1};
    termios before_{};
};

TEST_P(Crash, GivesTheTerminalBackLetsTheReasonOutAndEndsOfItsSignal) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) be_the_console();
    close(errors_[1]);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "exit status " << WEXITSTATUS(status);
    EXPECT_EQ(WTERMSIG(status), GetParam().signal);
    EXPECT_THAT(read_all(errors_[0]), HasSubstr("the reason\n"));

    termios after{};
    ASSERT_EQ(tcgetattr(line_, &after), 0);
    EXPECT_EQ(after.c_lflag, before_.c_lflag);
    EXPECT_EQ(after.c_iflag, before_.c_iflag);
    EXPECT_EQ(after.c_oflag, before_.c_oflag);
    close(line_);
    line_ = -1;
    const std::string seen = read_all(master_);
    EXPECT_THAT(seen, HasSubstr("\033[?1049h"));
    EXPECT_THAT(seen.substr(seen.rfind("\033[?1049")), HasSubstr("\033[?1049l"));
    EXPECT_THAT(seen, EndsWith("\033[?25h"));
}

INSTANTIATE_TEST_SUITE_P(All, Crash,
                         testing::Values(Fault{"WriteNowhere", SIGSEGV, write_nowhere},
                                         Fault{"StackOverflow", SIGSEGV, [] { fill_the_stack(0); }},
                                         Fault{"Abort", SIGABRT, [] { std::abort(); }},
                                         Fault{"SentSignal", SIGFPE, [] { raise(SIGFPE); }}),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
