// Programs under test as child processes with pipes, and the deadlines that tests wait with. Nothing here
// sleeps for a time: everything waits for an event and gives up when its deadline has passed.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// How long a test waits for something that must happen. Generous, since only a failing test waits it out:
// sanitizers and a loaded machine make programs many times slower.
inline constexpr std::chrono::milliseconds PATIENCE{20000};
// How long a test watches that something does not happen.
inline constexpr std::chrono::milliseconds WATCH{600};

class Deadline {
  public:
    explicit Deadline(std::chrono::milliseconds from_now) : end_(clock::now() + from_now) {}
    [[nodiscard]] bool passed() const { return clock::now() >= end_; }
    // Milliseconds left, at most `most`: what poll() is given.
    [[nodiscard]] int left(int most = 50) const;

  private:
    using clock = std::chrono::steady_clock;
    clock::time_point end_;
};

using Environment = std::map<std::string, std::string>;

// A program to start. Its environment is `env` over a pinned one (PATH, HOME=/nonexistent, LANG=C.UTF-8,
// TZ=UTC, TERM=dumb and the options of the sanitizers); nothing else of the tester's own gets through.
struct Command {
    std::vector<std::string> argv;  // argv[0] is a path, or a name found in PATH
    Environment env;
};

// In a child after fork(): becomes the program, and dies with the test. Exits with 127 when it cannot.
[[noreturn]] void exec_command(const Command& command);

// Reaps `pid` within the deadline: its exit code, or 128 plus the signal that ended it. `meanwhile` is called
// between looks, so that output is taken and the child never blocks on a full pipe.
[[nodiscard]] std::optional<int> reap(pid_t pid, Deadline deadline, const std::function<void()>& meanwhile);

// A child with its three standard streams on pipes. Killed and reaped when destroyed.
class Process {
  public:
    explicit Process(const Command& command);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    void signal(int number) const;

    // Writes to its standard input; false when it does not take the bytes within PATIENCE or has closed it.
    bool write(std::string_view bytes);
    bool write_line(std::string_view line) { return write(std::string(line) + "\n"); }
    void close_input();
    // Stops reading its output (true) or goes on: what a reader that hangs does.
    void ignore_output(bool on) { ignoring_ = on; }

    // Takes output until `condition` holds; false when PATIENCE (or `wait`) passed or it ended before.
    bool wait_for(const std::function<bool()>& condition, std::chrono::milliseconds wait = PATIENCE);
    // Takes output until its standard output has a line that contains all `parts`, after the lines that
    // earlier calls found; that line, or nothing.
    std::optional<std::string> wait_line(const std::vector<std::string>& parts,
                                         std::chrono::milliseconds wait = PATIENCE);
    // Everything it wrote so far.
    [[nodiscard]] const std::string& out() const { return out_; }
    [[nodiscard]] const std::string& err() const { return err_; }
    // Its exit code (128 plus a signal), or nothing when it still runs at the deadline.
    std::optional<int> wait_exit(std::chrono::milliseconds wait = PATIENCE);
    [[nodiscard]] bool running() { return !wait_exit(std::chrono::milliseconds(0)); }

  private:
    void take_output(int milliseconds);

    pid_t pid_ = -1;
    int in_ = -1;
    int out_fd_ = -1;
    int err_fd_ = -1;
    bool ignoring_ = false;
    std::string out_;
    std::string err_;
    std::size_t searched_ = 0;  // of out_, by wait_line
    std::optional<int> exit_;
};
