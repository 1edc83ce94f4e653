// One pass after another: read ahead, say what is due, move all links. Every link is read as it goes, since
// what an instrument says to all comes back to it; and nothing more is said before all has left, which bounds
// what waits.
#include "peer/replay.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <set>

#include "libvesk/link/veskmsg.h"
#include "libvesk/support/util.h"
#include "peer/input.h"
#include "peer/peer.h"
#include "peer/recording.h"

namespace {

constexpr int MOST_PER_PASS = 256;
// An exit signal that arrives just before a wait is noticed after this long.
constexpr double PASS_SECONDS = 0.5;
constexpr double LAST_FLUSH_SECONDS = 10;

struct actor {
    VESKMSG_link link;
    BOOL was_open = FALSE;
};

class play {
  public:
    play(const PEER_options& options, int fd)
        : options_(options), fd_(fd), reader_(options.only, options.longest_gap), position_(options.speed) {}
    int run();

  private:
    void pass();
    void read_ahead();
    [[nodiscard]] BOOL all_sent();
    void perform();
    void connect_due();
    void send(const RECORDING_event& event);
    void leave(const std::string& source);
    void move_links();
    void check(const std::string& name, actor& a);
    void wait();
    void end();
    void summarize() const;

    BOOL connect(const std::string& source, actor& a) const;
    void finish(PEER_exit status) {
        done_ = TRUE;
        status_ = status;
    }

    const PEER_options& options_;
    int fd_;
    INPUT_state input_ = INPUT_OPEN;
    RECORDING_reader reader_;
    RECORDING_position position_;
    std::map<std::string, std::unique_ptr<actor>> actors_;
    std::size_t played_ = 0;
    std::set<std::string> sources_;
    FTIME now_ = 0;  // of this pass
    double at_ = 0;  // of the recording
    FTIME deadline_ = HUGE_VAL;
    BOOL done_ = FALSE;
    PEER_exit status_ = PEER_EXIT_OK;
};

void play::read_ahead() {
    if (input_ != INPUT_OPEN || !reader_.events().empty()) return;
    pollfd in{fd_, POLLIN, 0};
    if (poll(&in, 1, 0) <= 0) return;
    std::string bytes;
    input_ = INPUT_take(fd_, options_.replay.c_str(), &bytes);
    reader_.feed(bytes);
    if (input_ != INPUT_OPEN) reader_.finish();
}

BOOL play::all_sent() {
    return std::all_of(actors_.begin(), actors_.end(), [](const auto& entry) {
        actor& a = *entry.second;
        return a.link.stat == VESKMSG_S_OPEN && VESKMSG_flush(&a.link, 0);
    });
}

BOOL play::connect(const std::string& source, actor& a) const {
    VESKMSG_connect_params params;
    VESKMSG_init_params(&params);
    params.id_str = source.c_str();
    params.host_override = options_.host.empty() ? nullptr : options_.host.c_str();
    return VESKMSG_connect(&a.link, &params);
}

// Sends the lines that are due, up to one whose source has to connect or to leave: that is done when all
// before it has left.
void play::perform() {
    std::deque<RECORDING_event>& events = reader_.events();
    for (int i = 0; i < MOST_PER_PASS && !events.empty() && events.front().at <= at_; ++i) {
        const RECORDING_event& event = events.front();
        const std::string& source = event.message.src;
        if (event.leaves) {
            if (i > 0) return;
            leave(source);
        } else if (const auto found = actors_.find(source); found == actors_.end()) {
            return connect_due();
        } else {
            send(event);
        }
        events.pop_front();
    }
}

// Opens the links of all sources that have something due, side by side.
void play::connect_due() {
    int ahead = 0;
    for (const RECORDING_event& event : reader_.events()) {
        if (event.at > at_ || event.leaves || ++ahead > MOST_PER_PASS) return;
        const std::string& source = event.message.src;
        const auto [place, is_new] = actors_.try_emplace(source);
        if (!is_new) continue;
        place->second = std::make_unique<actor>();
        if (!connect(source, *place->second)) check(source, *place->second);
        sources_.insert(source);
        if (done_) return;
    }
}

void play::send(const RECORDING_event& event) {
    const JSONLINE_message& m = event.message;
    const BOOL has_payload = m.dsd != nullptr;
    const BOOL queued = VESKMSG_queue_message(&actors_[m.src]->link, m.msg->msg, m.flags, m.dest.c_str(),
                                              has_payload ? m.payload.data() : nullptr, m.payload.size(),
                                              has_payload ? m.dsd->name : nullptr);
    if (queued) ++played_;  // else the link has said why, and check() ends it
}

void play::leave(const std::string& source) {
    const auto found = actors_.find(source);
    if (found == actors_.end()) return;
    VESKMSG_disconnect(&found->second->link);
    actors_.erase(found);
}

void play::move_links() {
    for (const auto& [name, a] : actors_) {
        VESKMSG_process_messages(
            &a->link, [](VESKMSG_proc_msg*, void*) {}, nullptr);
        check(name, *a);
    }
}

void play::check(const std::string& name, actor& a) {
    if (a.link.stat == VESKMSG_S_OPEN) a.was_open = TRUE;
    if (done_ || a.link.stat != VESKMSG_S_UNLINKED) return;
    UTIL_complain("%s: %s", name.c_str(), VESKMSG_error(&a.link).c_str());
    finish(a.was_open ? PEER_EXIT_LOST : PEER_EXIT_NO_LINK);
}

void play::wait() {
    std::vector<VESKMSG_link*> links;
    for (const auto& entry : actors_)
        links.push_back(&entry.second->link);
    double seconds = PASS_SECONDS;
    const auto& events = reader_.events();
    if (!events.empty() && all_sent())
        seconds = std::clamp((events.front().at - at_) / options_.speed, 0.0, PASS_SECONDS);
    seconds = std::clamp(deadline_ - now_, 0.0, seconds);
    VESKMSG_wait(links, seconds, input_ == INPUT_OPEN && events.empty() ? fd_ : -1);
}

void play::pass() {
    move_links();
    if (done_) return;
    if (UTIL_exit_poll()) return finish(PEER_EXIT_OK);
    now_ = UTIL_ftime();
    if (now_ >= deadline_) return finish(PEER_EXIT_TIMEOUT);
    read_ahead();
    if (!reader_.events().empty()) at_ = position_.at(now_);
    if (all_sent()) {
        if (reader_.events().empty() && input_ != INPUT_OPEN) return finish(PEER_EXIT_OK);
        perform();
    }
    if (!done_) wait();
}

void play::end() {
    for (const auto& [name, a] : actors_) {
        if (a->link.stat == VESKMSG_S_OPEN && status_ != PEER_EXIT_LOST) {
            static_cast<void>(VESKMSG_flush(&a->link, UTIL_exit_poll() ? PASS_SECONDS : LAST_FLUSH_SECONDS));
        }
        VESKMSG_disconnect(&a->link);
    }
}

void play::summarize() const {
    const RECORDING_counts& counts = reader_.counts();
    std::string line = std::to_string(played_) + " messages of " + std::to_string(sources_.size()) +
                       (sources_.size() == 1 ? " source played" : " sources played");
    const auto add = [&line](std::size_t n, const char* what) {
        if (n > 0) line += ", " + std::to_string(n) + what;
    };
    add(counts.of_consoles, " of consoles left out");
    add(counts.to_instruments, " for one instrument left out");
    add(counts.refused, " refused");
    add(counts.gaps, counts.gaps == 1 ? " gap shortened" : " gaps shortened");
    UTIL_complain("%s", line.c_str());
}

int play::run() {
    if (options_.timeout > 0) deadline_ = UTIL_ftime() + options_.timeout;
    while (!done_)
        pass();
    end();
    if (played_ > 0 || status_ != PEER_EXIT_NO_LINK) summarize();
    const BOOL worse = status_ == PEER_EXIT_LOST || status_ == PEER_EXIT_NO_LINK;
    const BOOL wrong_input = reader_.counts().refused > 0 || input_ == INPUT_UNREADABLE;
    return !worse && wrong_input ? PEER_EXIT_WRONG_INPUT : status_;
}

}  // namespace

int REPLAY_run(const PEER_options& options, int in_fd) {
    const BOOL own = options.replay != "-";
    const int fd = own ? open(options.replay.c_str(), O_RDONLY | O_CLOEXEC) : in_fd;
    if (fd < 0) {
        UTIL_complain("cannot open %s: %s", options.replay.c_str(), std::strerror(errno));
        return PEER_EXIT_NO_LINK;
    }
    const int status = play(options, fd).run();
    if (own) close(fd);
    return status;
}
