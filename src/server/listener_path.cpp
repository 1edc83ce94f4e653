// The life of the local socket's file: directory, lock, probe, bind, removal.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "server/listener.h"

namespace {

constexpr mode_t DIRECTORY_MODE = 0750;
constexpr mode_t SOCKET_UMASK = 0117;  // leaves 0660

BOOL fail(std::string* why, std::string text) {
    *why = std::move(text);
    return FALSE;
}

BOOL fail_errno(std::string* why, const std::string& what) {
    return fail(why, what + ": " + std::strerror(errno));
}

sockaddr_un socket_address(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

int local_socket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

// A server answers behind that path. One whose backlog is full is alive too.
BOOL is_answered(const std::string& path) {
    const int fd = local_socket();
    if (fd < 0) return FALSE;
    const sockaddr_un address = socket_address(path);
    const int result = connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const BOOL alive = result == 0 || (errno != ECONNREFUSED && errno != ENOENT);
    close(fd);
    return alive;
}

// The lock file that was opened is the one at the path still: a server that ends removes its own.
BOOL is_at_path(int fd, const std::string& path) {
    struct stat opened = {};
    struct stat named = {};
    return fstat(fd, &opened) == 0 && stat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
           opened.st_dev == named.st_dev;
}

}  // namespace

int LISTENER_path::bind(const std::string& path, std::string* why) {
    path_ = path;
    if (path.size() >= sizeof(sockaddr_un::sun_path)) return fail(why, "its path is too long"), -1;
    if (!prepare_directory(why) || !lock(why) || !clear_way(why)) return -1;
    return make_socket(why);
}

BOOL LISTENER_path::prepare_directory(std::string* why) {
    const std::string parent = std::filesystem::path(path_).parent_path().string();
    const std::string directory = parent.empty() ? "." : parent;
    const mode_t before = umask(0);
    const int made = mkdir(directory.c_str(), DIRECTORY_MODE);
    umask(before);
    if (made != 0 && errno != EEXIST) return fail_errno(why, "cannot make " + directory);

    struct stat st = {};
    if (stat(directory.c_str(), &st) != 0) return fail_errno(why, "cannot look at " + directory);
    if (!S_ISDIR(st.st_mode)) return fail(why, directory + " is not a directory");
    // The owner of the directory can put another socket in place of ours.
    if (st.st_uid != geteuid() && st.st_uid != 0) return fail(why, directory + " belongs to another user");
    if ((st.st_mode & S_IWOTH) != 0 && (st.st_mode & S_ISVTX) == 0)
        return fail(why, directory + " can be changed by everybody");
    if ((st.st_mode & S_IRWXO) != 0)
        warning_ = "everybody can enter " + directory + ": only the socket's mode guards it";
    return TRUE;
}

BOOL LISTENER_path::lock(std::string* why) {
    const std::string file = path_ + ".lock";
    for (;;) {
        lock_fd_ = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (lock_fd_ < 0) return fail_errno(why, "cannot open " + file);
        if (flock(lock_fd_, LOCK_EX | LOCK_NB) != 0) {
            close(lock_fd_);
            lock_fd_ = -1;
            return fail(why, "another server is running there");
        }
        if (is_at_path(lock_fd_, file)) return TRUE;
        close(lock_fd_);
    }
}

BOOL LISTENER_path::clear_way(std::string* why) {
    struct stat st = {};
    if (lstat(path_.c_str(), &st) != 0) return errno == ENOENT || fail_errno(why, "cannot look at it");
    if (!S_ISSOCK(st.st_mode)) return fail(why, "there is a file of another kind");
    if (is_answered(path_)) return fail(why, "another server is running there");
    return unlink(path_.c_str()) == 0 || fail_errno(why, "cannot remove the socket of a dead server");
}

int LISTENER_path::make_socket(std::string* why) {
    const int fd = local_socket();
    const sockaddr_un address = socket_address(path_);
    const mode_t before = umask(SOCKET_UMASK);
    const bool bound =
        fd >= 0 && ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    umask(before);
    struct stat st = {};
    if (!bound || ::listen(fd, SOMAXCONN) != 0 || lstat(path_.c_str(), &st) != 0) {
        fail_errno(why, "cannot make the socket");
        if (fd >= 0) close(fd);
        return -1;
    }
    device_ = st.st_dev;
    inode_ = st.st_ino;
    return fd;
}

void LISTENER_path::release() {
    struct stat st = {};
    if (inode_ != 0 && lstat(path_.c_str(), &st) == 0 && st.st_ino == inode_ && st.st_dev == device_)
        unlink(path_.c_str());
    inode_ = 0;
    if (lock_fd_ < 0) return;
    unlink((path_ + ".lock").c_str());
    close(lock_fd_);
    lock_fd_ = -1;
}
