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

#include "libvesk/util.h"
#include "libvesk/veskmsg.h"
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
        : m_options(options), m_fd(fd), m_reader(options.only), m_position(options.speed) {}
    int run();

  private:
    void pass();
    void read_ahead();
    [[nodiscard]] BOOL all_sent();
    void perform();
    void send(const RECORDING_event& event);
    void leave(const std::string& source);
    void move_links();
    void check(const std::string& name, actor& a);
    void wait();
    void end();
    void summarize() const;

    BOOL connect(const std::string& source, actor& a) const;
    void finish(PEER_exit status) {
        m_done = TRUE;
        m_status = status;
    }

    const PEER_options& m_options;
    int m_fd;
    BOOL m_in_open = TRUE;
    RECORDING_reader m_reader;
    RECORDING_position m_position;
    std::map<std::string, std::unique_ptr<actor>> m_actors;
    std::size_t m_played = 0;
    std::set<std::string> m_sources;
    FTIME m_now = 0;  // of this pass
    double m_at = 0;  // of the recording
    FTIME m_deadline = HUGE_VAL;
    BOOL m_done = FALSE;
    PEER_exit m_status = PEER_EXIT_OK;
};

void play::read_ahead() {
    if (!m_in_open || !m_reader.events().empty()) return;
    pollfd in{m_fd, POLLIN, 0};
    if (poll(&in, 1, 0) <= 0) return;
    std::string bytes;
    m_in_open = INPUT_take(m_fd, m_options.replay.c_str(), &bytes);
    m_reader.feed(bytes);
    if (!m_in_open) m_reader.finish();
}

BOOL play::all_sent() {
    return std::all_of(m_actors.begin(), m_actors.end(), [](const auto& entry) {
        actor& a = *entry.second;
        return a.link.stat == VESKMSG_S_OPEN && VESKMSG_flush(&a.link, 0);
    });
}

BOOL play::connect(const std::string& source, actor& a) const {
    VESKMSG_connect_params params;
    VESKMSG_init_params(&params);
    params.id_str = source.c_str();
    params.host_override = m_options.host.empty() ? nullptr : m_options.host.c_str();
    return VESKMSG_connect(&a.link, &params);
}

// What is due is said, up to one whose source has to connect or to leave: that is done when all before it has
// left.
void play::perform() {
    std::deque<RECORDING_event>& events = m_reader.events();
    for (int i = 0; i < MOST_PER_PASS && !events.empty() && events.front().at <= m_at; ++i) {
        const RECORDING_event& event = events.front();
        const std::string& source = event.message.src;
        if (event.leaves) {
            if (i > 0) return;
            leave(source);
        } else if (const auto found = m_actors.find(source); found == m_actors.end()) {
            auto& a = m_actors[source] = std::make_unique<actor>();
            if (!connect(source, *a)) check(source, *a);
            m_sources.insert(source);
            return;
        } else {
            send(event);
        }
        events.pop_front();
    }
}

void play::send(const RECORDING_event& event) {
    const JSONLINE_message& m = event.message;
    const BOOL has_payload = m.dsd != nullptr;
    const BOOL queued = VESKMSG_queue_message(&m_actors[m.src]->link, m.msg->msg, m.flags, m.dest.c_str(),
                                              has_payload ? m.payload.data() : nullptr, m.payload.size(),
                                              has_payload ? m.dsd->name : nullptr);
    if (queued) ++m_played;  // else the link has said why, and check() ends it
}

void play::leave(const std::string& source) {
    const auto found = m_actors.find(source);
    if (found == m_actors.end()) return;
    VESKMSG_disconnect(&found->second->link);
    m_actors.erase(found);
}

void play::move_links() {
    for (const auto& [name, a] : m_actors) {
        VESKMSG_process_messages(
            &a->link, [](VESKMSG_proc_msg*, void*) {}, nullptr);
        check(name, *a);
    }
}

void play::check(const std::string& name, actor& a) {
    if (a.link.stat == VESKMSG_S_OPEN) a.was_open = TRUE;
    if (m_done || a.link.stat != VESKMSG_S_UNLINKED) return;
    UTIL_complain("%s: %s", name.c_str(), VESKMSG_error(&a.link).c_str());
    finish(a.was_open ? PEER_EXIT_LOST : PEER_EXIT_NO_LINK);
}

void play::wait() {
    std::vector<VESKMSG_link*> links;
    for (const auto& entry : m_actors)
        links.push_back(&entry.second->link);
    double seconds = PASS_SECONDS;
    const auto& events = m_reader.events();
    if (!events.empty() && all_sent())
        seconds = std::clamp((events.front().at - m_at) / m_options.speed, 0.0, PASS_SECONDS);
    seconds = std::clamp(m_deadline - m_now, 0.0, seconds);
    VESKMSG_wait(links, seconds, m_in_open && events.empty() ? m_fd : -1);
}

void play::pass() {
    move_links();
    if (m_done) return;
    if (UTIL_exit_poll()) return finish(PEER_EXIT_OK);
    m_now = UTIL_ftime();
    if (m_now >= m_deadline) return finish(PEER_EXIT_TIMEOUT);
    read_ahead();
    if (!m_reader.events().empty()) m_at = m_position.at(m_now);
    if (all_sent()) {
        if (m_reader.events().empty() && !m_in_open) return finish(PEER_EXIT_OK);
        perform();
    }
    if (!m_done) wait();
}

void play::end() {
    for (const auto& [name, a] : m_actors) {
        if (a->link.stat == VESKMSG_S_OPEN && m_status != PEER_EXIT_LOST) {
            static_cast<void>(VESKMSG_flush(&a->link, UTIL_exit_poll() ? PASS_SECONDS : LAST_FLUSH_SECONDS));
        }
        VESKMSG_disconnect(&a->link);
    }
}

void play::summarize() const {
    const RECORDING_counts& counts = m_reader.counts();
    std::string line = std::to_string(m_played) + " messages of " + std::to_string(m_sources.size()) +
                       (m_sources.size() == 1 ? " source played" : " sources played");
    const auto add = [&line](std::size_t n, const char* what) {
        if (n > 0) line += ", " + std::to_string(n) + what;
    };
    add(counts.of_consoles, " of consoles left out");
    add(counts.to_instruments, " for one instrument left out");
    add(counts.refused, " refused");
    UTIL_complain("%s", line.c_str());
}

int play::run() {
    if (m_options.timeout > 0) m_deadline = UTIL_ftime() + m_options.timeout;
    while (!m_done)
        pass();
    end();
    if (m_played > 0 || m_status != PEER_EXIT_NO_LINK) summarize();
    const BOOL worse = m_status == PEER_EXIT_LOST || m_status == PEER_EXIT_NO_LINK;
    return !worse && m_reader.counts().refused > 0 ? PEER_EXIT_REFUSED_LINES : m_status;
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
