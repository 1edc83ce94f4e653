// The server's log lines, limited: the first line of a cause is written, the ones like it that follow within
// a minute are counted, and the last of those is written with their number when the minute is over. A storm
// of any kind thus leaves a few lines.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

class LOG {
  public:
    using sink = std::function<void(const std::string&)>;
    static constexpr std::size_t MOST_SOURCES = 100;  // of one cause that are told apart within a window

    // The window's length; with 0 every line is written.
    LOG(sink to, double seconds) : to_(std::move(to)), window_(seconds) {}
    // Lines are alike when `cause` ("left") and `who` ("N11") are the same. Lines of more than MOST_SOURCES
    // sources count as alike.
    void say(const std::string& cause, const std::string& who, const std::string& line);
    // Writes what has been counted in windows that are over; `now` is in seconds, of any clock.
    void tick(double now);

  private:
    struct window {
        double began;
        std::size_t left_out;
        std::string last;  // line that was left out
    };
    using windows = std::map<std::string, window>;  // by source

    sink to_;
    double window_;
    double now_ = 0;
    std::map<std::string, windows> causes_;
};
