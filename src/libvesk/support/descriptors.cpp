// The soft limit is low by default for the sake of programs that use select(2), which none of ours does.
#include "libvesk/support/descriptors.h"

#include <sys/resource.h>

#include <algorithm>

namespace {

constexpr rlim_t MOST_DESCRIPTORS = 16384;
constexpr std::size_t USUAL_LIMIT = 1024;

}  // namespace

std::size_t DESCRIPTORS_raise_limit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return USUAL_LIMIT;
    limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, MOST_DESCRIPTORS));
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0) getrlimit(RLIMIT_NOFILE, &limit);
    return std::min(limit.rlim_cur, MOST_DESCRIPTORS);
}
