// Which way a file can be replaced, and doing so.
#include "libvesk/support/savefile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace {

constexpr mode_t NEW_MODE = 0600;
constexpr mode_t MODE_BITS = 07777;

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
BOOL may_write(const std::string& name, struct stat* st) {
    *st = {};
    const int fd = open(name.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return errno == ENOENT;
    const bool known = fstat(fd, st) == 0;
    close(fd);
    return known;
}

// One file under one name, or nothing at all.
BOOL can_be_replaced(const std::string& name, const struct stat& st) {
    if (st.st_mode != 0) return S_ISREG(st.st_mode) && st.st_nlink == 1;
    struct stat link {};
    return lstat(name.c_str(), &link) != 0;  // else a link to nothing: what it names is made in place
}

// The folder or the owner forbids it; anything else, such as a full disk, must not cost the old file.
BOOL is_forbidden(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
}

BOOL take_over(int fd, const struct stat& st) {
    if (st.st_mode == 0) return TRUE;
    struct stat made {};
    if (fstat(fd, &made) != 0) return FALSE;
    const bool same_owner = made.st_uid == st.st_uid && made.st_gid == st.st_gid;
    if (!same_owner && fchown(fd, st.st_uid, st.st_gid) != 0) return FALSE;
    return fchmod(fd, st.st_mode & MODE_BITS) == 0;
}

}  // namespace

SAVEFILE::SAVEFILE(const std::string& name) : target_(behind_links(name)) {
    const int fd = open_beside();
    if (fd < 0) return;
    file_ = fdopen(fd, "w");
    if (file_ == nullptr) give_up(fd);
}

SAVEFILE::~SAVEFILE() {
    if (file_ == nullptr) return;
    std::fclose(file_);
    if (!beside_.empty()) unlink(beside_.c_str());
}

int SAVEFILE::open_beside() {
    struct stat st {};
    if (!may_write(target_, &st)) return -1;
    if (can_be_replaced(target_, st)) {
        beside_ = target_ + ".XXXXXX";
        const int fd = mkostemp(beside_.data(), O_CLOEXEC);
        if (fd >= 0 && take_over(fd, st)) return fd;
        if (give_up(fd); !is_forbidden(errno)) return -1;
    }
    return open(target_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, NEW_MODE);
}

// Removes what was made; errno stays.
int SAVEFILE::give_up(int fd) {
    const int error = errno;
    if (fd >= 0) close(fd);
    if (fd >= 0 && !beside_.empty()) unlink(beside_.c_str());
    beside_.clear();
    errno = error;
    return -1;
}

BOOL SAVEFILE::keep() {
    if (file_ == nullptr) return FALSE;
    const bool written = std::fflush(file_) == 0 && std::ferror(file_) == 0;
    // A device and a pipe cannot be synchronised, and need not be.
    const bool safe = written && (beside_.empty() || fsync(fileno(file_)) == 0);
    int error = safe ? 0 : errno;
    if (std::fclose(std::exchange(file_, nullptr)) != 0 && error == 0) error = errno;
    if (error == 0 && !beside_.empty() && rename(beside_.c_str(), target_.c_str()) != 0) error = errno;
    if (error != 0 && !beside_.empty()) unlink(beside_.c_str());
    errno = error;
    return error == 0;
}
