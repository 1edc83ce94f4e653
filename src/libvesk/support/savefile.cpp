// Decides how a file can be replaced, and replaces it.
#include "libvesk/support/savefile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace {

constexpr mode_t NEW_MODE = 0600;
constexpr mode_t MODE_BITS = 07777;
constexpr char BESIDE[] = ".saving";

// The name behind all links; the name itself while there is nothing.
std::string behind_links(const std::string& name) {
    char* resolved = realpath(name.c_str(), nullptr);
    if (resolved == nullptr) return name;
    std::string result = resolved;
    std::free(resolved);
    return result;
}

// The file may be written: a folder that lets us replace what we may not write must make no difference. TRUE
// too when there is none. `st` has no mode then.
bool may_write(const std::string& name, struct stat* st) {
    *st = {};
    const int fd = open(name.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return errno == ENOENT;
    const bool known = fstat(fd, st) == 0;
    close(fd);
    return known;
}

// One file under one name, or nothing at all.
bool can_be_replaced(const std::string& name, const struct stat& st) {
    if (st.st_mode != 0) return S_ISREG(st.st_mode) && st.st_nlink == 1;
    struct stat link {};
    return lstat(name.c_str(), &link) != 0;  // else a link to nothing: what it names is made in place
}

// The folder or the owner forbids it; anything else, such as a full disk, must not cost the old file.
bool is_forbidden(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG || error == ELOOP;
}

// Empties the file beside the old one and gives it the old one's owner and mode. It may be what a killed save
// left.
bool take_over(int fd, const struct stat& st) {
    struct stat made {};
    if (ftruncate(fd, 0) != 0 || fstat(fd, &made) != 0) return false;
    if (st.st_mode == 0) return fchmod(fd, NEW_MODE) == 0;
    const bool same_owner = made.st_uid == st.st_uid && made.st_gid == st.st_gid;
    if (!same_owner && fchown(fd, st.st_uid, st.st_gid) != 0) return false;
    return fchmod(fd, st.st_mode & MODE_BITS) == 0;
}

// The file that this descriptor is still has that name, and is nobody else's.
bool is_ours(int fd, const std::string& name) {
    struct stat open_file {};
    struct stat named {};
    if (fstat(fd, &open_file) != 0 || lstat(name.c_str(), &named) != 0) return false;
    return open_file.st_ino == named.st_ino && open_file.st_dev == named.st_dev && S_ISREG(named.st_mode) &&
           named.st_nlink == 1 && named.st_uid == geteuid();
}

// Opens the file beside with a lock that ends with the descriptor; -1 (errno says why) when another save
// holds it or the name is somebody else's.
int open_locked(const std::string& name, int flags) {
    constexpr int TRIES = 10;  // each time another save may have given the file its place in between
    for (int i = 0; i < TRIES; ++i) {
        const int fd = open(name.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | flags, NEW_MODE);
        if (fd < 0) return -1;
        const bool locked = flock(fd, LOCK_EX | LOCK_NB) == 0;
        if (locked && is_ours(fd, name)) return fd;
        const int error = errno;
        close(fd);
        errno = error;
        if (!locked) return -1;
    }
    errno = EPERM;
    return -1;
}

}  // namespace

void SAVEFILE::clean_up(const std::string& name) {
    const std::string beside = behind_links(name) + BESIDE;
    const int fd = open_locked(beside, 0);
    if (fd < 0) return;
    unlink(beside.c_str());
    close(fd);
}

SAVEFILE::SAVEFILE(const std::string& name) : target_(behind_links(name)) {
    const int fd = open_beside();
    if (fd < 0) return;
    file_ = fdopen(fd, "w");
    if (file_ == nullptr) give_up(fd);
}

SAVEFILE::~SAVEFILE() {
    if (file_ == nullptr) return;
    if (!beside_.empty()) unlink(beside_.c_str());
    std::fclose(file_);
}

int SAVEFILE::open_beside() {
    struct stat st {};
    if (!may_write(target_, &st)) return -1;
    if (can_be_replaced(target_, st)) {
        beside_ = target_ + BESIDE;
        const int fd = open_locked(beside_, O_CREAT);
        if (fd >= 0 && take_over(fd, st)) return fd;
        if (give_up(fd); !is_forbidden(errno)) return -1;
    }
    return open(target_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, NEW_MODE);
}

// Removes what was made; errno stays.
int SAVEFILE::give_up(int fd) {
    const int error = errno;
    if (fd >= 0 && !beside_.empty()) unlink(beside_.c_str());
    if (fd >= 0) close(fd);
    beside_.clear();
    errno = error;
    return -1;
}

BOOL SAVEFILE::keep() {
    if (file_ == nullptr) return FALSE;
    const bool written = std::fflush(file_) == 0 && std::ferror(file_) == 0 && fsync(fileno(file_)) == 0;
    int error = written ? 0 : errno != 0 ? errno : EIO;
    // Before the lock goes with the file: whoever holds it next must not find this file under that name.
    if (error == 0 && !beside_.empty() && rename(beside_.c_str(), target_.c_str()) != 0) error = errno;
    if (error != 0 && !beside_.empty()) unlink(beside_.c_str());
    if (std::fclose(std::exchange(file_, nullptr)) != 0 && error == 0) error = errno;
    errno = error;
    return error == 0;
}
