// Child processes of tests: fork, pipes, polling and reaping.
#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace {

Environment pinned_environment() {
    Environment env{{"HOME", "/nonexistent"}, {"LANG", "C.UTF-8"}, {"TZ", "UTC"}, {"TERM", "dumb"}};
    for (const char* name : {"PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
        if (const char* value = std::getenv(name)) env[name] = value;
    }
    return env;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

struct Pipe {
    int read_end = -1;
    int write_end = -1;
    Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe2 failed");
        read_end = ends[0];
        write_end = ends[1];
    }
};

void close_fd(int& fd) {
    if (fd >= 0) close(fd);
    fd = -1;
}

// Appends what is there now; closes the descriptor at its end.
void drain(int& fd, std::string& to) {
    std::array<char, 65536> bytes{};
    const ssize_t n = read(fd, bytes.data(), bytes.size());
    if (n > 0) to.append(bytes.data(), static_cast<std::size_t>(n));
    if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) close_fd(fd);
}

}  // namespace

int Deadline::left(int most) const {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(end_ - clock::now()).count();
    return static_cast<int>(std::clamp<long>(static_cast<long>(ms), 0, most));
}

void exec_command(const Command& command) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    Environment merged = pinned_environment();
    for (const auto& [name, value] : command.env)
        merged[name] = value;
    std::vector<std::string> argv = command.argv;
    std::vector<std::string> env;
    for (const auto& [name, value] : merged)
        env.push_back(name + "=" + value);
    execvpe(argv.at(0).c_str(), pointers(argv).data(), pointers(env).data());
    _exit(127);
}

std::optional<int> reap(pid_t pid, Deadline deadline, const std::function<void()>& meanwhile) {
    for (;;) {
        int status = 0;
        if (waitpid(pid, &status, WNOHANG) == pid)
            return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        if (deadline.passed()) return std::nullopt;
        meanwhile();
    }
}

Process::Process(const Command& command) {
    std::signal(SIGPIPE, SIG_IGN);
    const Pipe in;
    const Pipe out;
    const Pipe err;
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("fork failed");
    if (pid_ == 0) {
        dup2(in.read_end, STDIN_FILENO);
        dup2(out.write_end, STDOUT_FILENO);
        dup2(err.write_end, STDERR_FILENO);
        exec_command(command);
    }
    close(in.read_end);
    close(out.write_end);
    close(err.write_end);
    in_ = in.write_end;
    out_fd_ = out.read_end;
    err_fd_ = err.read_end;
    for (const int fd : {in_, out_fd_, err_fd_})
        fcntl(fd, F_SETFL, O_NONBLOCK);
}

Process::~Process() {
    if (!exit_) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    for (int* fd : {&in_, &out_fd_, &err_fd_})
        close_fd(*fd);
}

void Process::signal(int number) const {
    if (!exit_) kill(pid_, number);
}

bool Process::write(std::string_view bytes) {
    const Deadline deadline(PATIENCE);
    while (!bytes.empty()) {
        if (in_ < 0 || deadline.passed()) return false;
        const ssize_t n = ::write(in_, bytes.data(), bytes.size());
        if (n > 0) bytes.remove_prefix(static_cast<std::size_t>(n));
        if (n < 0 && errno != EAGAIN && errno != EINTR) return false;
        if (n < 0) take_output(deadline.left(10));
    }
    return true;
}

void Process::close_input() {
    close_fd(in_);
}

void Process::take_output(int milliseconds) {
    const int out = ignoring_ ? -1 : out_fd_;
    const int err = ignoring_ ? -1 : err_fd_;
    std::array<pollfd, 2> fds{pollfd{out, POLLIN, 0}, pollfd{err, POLLIN, 0}};
    if (poll(fds.data(), fds.size(), milliseconds) <= 0) return;
    if (fds[0].revents != 0) drain(out_fd_, out_);
    if (fds[1].revents != 0) drain(err_fd_, err_);
}

bool Process::wait_for(const std::function<bool()>& condition, std::chrono::milliseconds wait) {
    const Deadline deadline(wait);
    while (!condition()) {
        if (deadline.passed() || (out_fd_ < 0 && err_fd_ < 0)) return false;
        take_output(deadline.left());
    }
    return true;
}

std::optional<std::string> Process::wait_line(const std::vector<std::string>& parts,
                                              std::chrono::milliseconds wait) {
    std::optional<std::string> found;
    const auto search = [&] {
        for (std::size_t end = 0; (end = out_.find('\n', searched_)) != std::string::npos;) {
            const std::string line = out_.substr(searched_, end - searched_);
            searched_ = end + 1;
            const auto has = [&](const std::string& part) { return line.find(part) != std::string::npos; };
            if (!std::all_of(parts.begin(), parts.end(), has)) continue;
            found = line;
            return true;
        }
        return false;
    };
    wait_for(search, wait);
    return found;
}

std::optional<int> Process::wait_exit(std::chrono::milliseconds wait) {
    if (exit_) return exit_;
    exit_ = reap(pid_, Deadline(wait), [&] { take_output(5); });
    if (!exit_) return exit_;
    // Its last output is still in the pipes; a grandchild may hold them open, so do not wait for their
    // end.
    for (std::size_t before = 1; before != 0;) {
        before = out_.size() + err_.size();
        take_output(0);
        before = out_.size() + err_.size() - before;
    }
    return exit_;
}
