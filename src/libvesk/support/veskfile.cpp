// Line reads from descriptors that must never block the main loop. Each handle keeps what has arrived of a
// line that is not complete yet; a read asks the descriptor only when that does not already hold the answer.
#include "libvesk/support/veskfile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct open_file {
    int fd;
    std::string pending;  // arrived and not yet given to the reader
};

// At namespace scope: exit handlers that main() registered still read, so it must outlive them.
std::vector<std::unique_ptr<open_file>> g_files;

open_file* find_file(int handle) {
    const bool known = handle >= 0 && static_cast<std::size_t>(handle) < g_files.size();
    open_file* file = known ? g_files[static_cast<std::size_t>(handle)].get() : nullptr;
    if (file == nullptr) errno = EBADF;
    return file;
}

enum class arrival { SOME, NOTHING_YET, ENDED };

arrival receive(open_file& file) {
    char chunk[4096];
    ssize_t n;
    do {
        n = read(file.fd, chunk, sizeof chunk);
    } while (n < 0 && errno == EINTR);
    if (n > 0) {
        file.pending.append(chunk, static_cast<std::size_t>(n));
        return arrival::SOME;
    }
    return n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK) ? arrival::NOTHING_YET : arrival::ENDED;
}

// Gives the first `length` characters to the reader and drops `consumed` bytes.
int hand_over(open_file& file, char* dst, std::size_t length, std::size_t consumed) {
    std::memcpy(dst, file.pending.data(), length);
    dst[length] = '\0';
    file.pending.erase(0, consumed);
    return static_cast<int>(consumed);
}

}  // namespace

int VESKFILE_associate_fh(int fd, int flags) {
    if (flags != 0) {
        errno = EINVAL;
        return -1;
    }
    const int status = fcntl(fd, F_GETFL);
    if (status < 0 || fcntl(fd, F_SETFL, status | O_NONBLOCK) < 0) return -1;
    auto slot = std::find(g_files.begin(), g_files.end(), nullptr);
    if (slot == g_files.end()) slot = g_files.insert(slot, nullptr);
    *slot = std::make_unique<open_file>(open_file{fd, {}});
    return static_cast<int>(slot - g_files.begin());
}

int VESKFILE_readuntil_int(int handle, char* dst, std::size_t size, const char* stops, std::size_t n_stops) {
    open_file* file = find_file(handle);
    if (file == nullptr) return -1;
    if (size < 2 || size > INT32_MAX) {
        errno = EINVAL;
        return -1;
    }
    const std::size_t room = size - 1;
    for (std::size_t searched = 0;;) {
        const std::size_t stop = file->pending.find_first_of(stops, searched, n_stops);
        if (stop != std::string::npos && stop <= room) return hand_over(*file, dst, stop, stop + 1);
        // A piece is only cut once a byte beyond it is there: a line that just fits stays whole.
        if (file->pending.size() > room) return hand_over(*file, dst, room, room);
        searched = file->pending.size();
        const arrival came = receive(*file);
        if (came != arrival::SOME) return came == arrival::NOTHING_YET ? 0 : -1;
    }
}

int VESKFILE_readrest(int handle, char* dst, std::size_t size) {
    open_file* file = find_file(handle);
    if (file == nullptr || size == 0) return -1;
    const std::size_t room = std::min<std::size_t>(size - 1, INT32_MAX);
    while (file->pending.size() < room && receive(*file) == arrival::SOME) {
    }
    const std::size_t length = std::min(file->pending.size(), room);
    return hand_over(*file, dst, length, length);
}

void VESKFILE_close(int handle) {
    open_file* file = find_file(handle);
    if (file == nullptr) return;
    close(file->fd);
    g_files[static_cast<std::size_t>(handle)].reset();
}
