// Writing with a limit in time.
#include "cursclient/ttyline.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr int STEP_MS = 10;

// The descriptor does not block while this lives. Others may share it: it is left as it was.
class Unblocked {
  public:
    explicit Unblocked(int fd) : fd_(fd), flags_(fcntl(fd, F_GETFL)) {
        if (blocks()) fcntl(fd_, F_SETFL, flags_ | O_NONBLOCK);
    }
    ~Unblocked() {
        if (blocks()) fcntl(fd_, F_SETFL, flags_);
    }
    Unblocked(const Unblocked&) = delete;
    Unblocked& operator=(const Unblocked&) = delete;

  private:
    [[nodiscard]] bool blocks() const { return flags_ != -1 && (flags_ & O_NONBLOCK) == 0; }
    int fd_;
    int flags_;
};

}  // namespace

std::size_t TTYLINE_write(int fd, const char* bytes, std::size_t n, int ms) {
    const Unblocked unblocked(fd);
    std::size_t taken = 0;
    while (taken < n) {
        const ssize_t written = write(fd, bytes + taken, n - taken);
        if (written > 0) {
            taken += static_cast<std::size_t>(written);
        } else if (written == 0 || errno == EAGAIN) {
            if (ms <= 0) return taken;
            pollfd p{fd, POLLOUT, 0};
            poll(&p, 1, STEP_MS);
            ms -= STEP_MS;
        } else if (errno != EINTR) {
            return n;
        }
    }
    return taken;
}

void TTYLINE_release(int fd) {
    tcflow(fd, TCOON);
    tcflush(fd, TCOFLUSH);
}
