// One window per cause and source.
#include "server/log.h"

void LOG::say(const std::string& cause, const std::string& who, const std::string& line) {
    if (window_ <= 0) return to_(line);
    windows& sources = causes_[cause];
    const bool told_apart = sources.size() < MOST_SOURCES || sources.count(who) != 0;
    const auto [at, is_first] = sources.try_emplace(told_apart ? who : "", window{now_, 0, {}});
    if (is_first) return to_(line);
    ++at->second.left_out;
    at->second.last = line;
}

void LOG::tick(double now) {
    now_ = now;
    for (auto& [cause, sources] : causes_) {
        for (auto at = sources.begin(); at != sources.end();) {
            const window& w = at->second;
            if (now - w.began < window_) {
                ++at;
                continue;
            }
            if (w.left_out == 1) to_(w.last);
            if (w.left_out > 1)
                to_(w.last + " (and " + std::to_string(w.left_out - 1) + " more like this were not logged)");
            at = sources.erase(at);
        }
    }
}
