// The loop of the simulated station. One thread: it waits for the links or the next tick, whichever is first.
#include "simstation/station.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

#include "libvesk/inst.h"
#include "libvesk/util.h"
#include "simstation/peer.h"

namespace {

constexpr int GONE = 1;
constexpr int NOT_CONNECTED = 2;
constexpr double LONGEST_WAIT = 0.25;  // seconds: an exit signal is noticed that soon
constexpr double PASS_SECONDS = 0.05;  // between two bunches of ticks
constexpr double LONGEST_BUNCH = 0.2;  // seconds that a bunch may take before the links are looked at
constexpr double MOST_BEHIND = 5;      // seconds of an interruption that are made up for
constexpr double REJOIN_SECONDS = 10;  // how long a name may take to be free again

// Real time, and the simulated ticks that it makes due. Ticks of a fast clock come in bunches, so that what
// everybody sends in a bunch can be put together.
class pacer {
  public:
    explicit pacer(double speed) : m_speed(speed), m_last(UTIL_ftime()) {}

    // A new bunch; FALSE when it is too early for one. Time that went backward counts as none.
    BOOL begin() {
        const FTIME now = UTIL_ftime();
        if (now >= m_last && now - m_last < PASS_SECONDS) return FALSE;
        m_owed += std::clamp(now - m_last, 0.0, MOST_BEHIND) * m_speed;
        m_last = now;
        return TRUE;
    }
    // TRUE, once for every tick that is due. What takes too long to work off is forgiven: the clock is slower
    // then than it was asked to be.
    BOOL take_tick() {
        if (m_owed < SIM_world::TICK) return FALSE;
        m_owed -= SIM_world::TICK;
        if (UTIL_ftime() - m_last > LONGEST_BUNCH) m_owed = 0;
        return TRUE;
    }
    // Real seconds until the next bunch is worth it.
    [[nodiscard]] double wait() const {
        return std::clamp((SIM_world::TICK - m_owed) / m_speed, PASS_SECONDS, LONGEST_WAIT);
    }

  private:
    double m_speed;
    FTIME m_last;
    double m_owed = 0;  // simulated seconds not yet ticked
};

// An instrument with its link.
struct seat {
    seat(SIM_world& world, const SIM_member& member, const std::string& host,
         const std::function<void(const std::string&)>& log)
        : peer(member.name, host, log), instrument(world, peer, member) {}

    SIM_peer peer;
    SIM_instrument instrument;
    BOOL wanted = TRUE;            // should be on the link
    FTIME give_up = VESK_NO_TIME;  // when it comes back: real time until which it tries
};

class station {
  public:
    explicit station(const SIM_options& options);
    int run();

  private:
    BOOL connect_all();
    void loop();
    void tick();
    void play(const SIM_event& event);
    void leave(seat& s);
    void join(seat& s);
    void complete_join(seat& s);
    void pump();
    void wait(double seconds);
    void check_links();
    void fail(int code, const std::string& why);

    const SIM_options& m_options;
    SIM_world m_world;
    const FTIME m_start;  // simulated
    std::function<void(const std::string&)> m_log;
    SIM_peer m_logger_peer;
    SIM_logger m_logger;
    std::vector<std::unique_ptr<seat>> m_seats;
    std::size_t m_next_event = 0;
    BOOL m_done = FALSE;
    int m_exit_code = 0;
};

std::vector<std::string> names_of(const std::vector<SIM_member>& members) {
    std::vector<std::string> names;
    for (const SIM_member& member : members)
        names.push_back(member.name);
    return names;
}

station::station(const SIM_options& options)
    : m_options(options),
      m_world(options.settings, options.start < 0 ? UTIL_ftime() : options.start),
      m_start(m_world.now),
      m_log([this](const std::string& line) {
          if (m_options.quiet) return;
          std::printf("%s %s\n", SIM_utc_text(m_world.now).c_str(), line.c_str());
          std::fflush(stdout);
      }),
      m_logger_peer(options.name, options.host, m_log),
      m_logger(m_world, m_logger_peer, options.name, options.logger, names_of(options.members)) {
    for (const SIM_member& member : options.members)
        m_seats.push_back(std::make_unique<seat>(m_world, member, options.host, m_log));
}

void station::fail(int code, const std::string& why) {
    if (m_done) return;
    UTIL_complain("%s", why.c_str());
    m_exit_code = code;
    m_done = TRUE;
}

void station::wait(double seconds) {
    std::vector<VESKMSG_link*> links{m_logger_peer.link()};
    for (const auto& s : m_seats) {
        if (s->wanted) links.push_back(s->peer.link());
    }
    VESKMSG_wait(links, seconds);
}

void station::pump() {
    m_logger_peer.pump([this](const VESKMSG_proc_msg* pm) { m_logger.receive(pm); });
    for (const auto& s : m_seats) {
        if (!s->wanted) continue;
        s->peer.pump([&](const VESKMSG_proc_msg* pm) { s->instrument.receive(pm); });
    }
}

// All links are opened side by side; the first that fails ends it.
BOOL station::connect_all() {
    if (!m_logger_peer.connect()) fail(NOT_CONNECTED, m_logger_peer.error());
    for (const auto& s : m_seats) {
        if (!m_done && !s->peer.connect()) fail(NOT_CONNECTED, s->peer.error());
    }
    const FTIME give_up = UTIL_ftime() + INST_CONNECT_SECONDS;
    while (!m_done && !UTIL_exit_poll()) {
        pump();
        std::vector<SIM_peer*> waiting;
        const auto look_at = [&](SIM_peer& peer) {
            if (peer.state() == VESKMSG_S_UNLINKED) fail(NOT_CONNECTED, peer.error());
            if (peer.state() != VESKMSG_S_OPEN) waiting.push_back(&peer);
        };
        look_at(m_logger_peer);
        for (const auto& s : m_seats)
            look_at(s->peer);
        if (waiting.empty()) return TRUE;
        if (UTIL_ftime() > give_up) fail(NOT_CONNECTED, "the server does not answer");
        if (!m_done) wait(LONGEST_WAIT);
    }
    return FALSE;
}

void station::leave(seat& s) {
    if (!s.wanted) return;
    s.wanted = FALSE;
    s.instrument.leave();
    s.peer.disconnect();
}

void station::join(seat& s) {
    if (s.wanted) return;
    s.wanted = TRUE;
    s.give_up = UTIL_ftime() + REJOIN_SECONDS;
    static_cast<void>(s.peer.connect());  // complete_join sees what became of it
}

// An instrument that comes back: announces itself once its link is open, tries again while the server still
// knows its old link.
void station::complete_join(seat& s) {
    if (s.peer.state() == VESKMSG_S_OPEN) {
        s.give_up = VESK_NO_TIME;
        s.instrument.join();
        m_log(s.instrument.name() + ": joined");
    } else if (s.peer.state() != VESKMSG_S_AWAITING_HANDSHAKE) {
        if (UTIL_ftime() > s.give_up) return fail(GONE, s.peer.error());
        static_cast<void>(s.peer.connect());
    }
}

void station::check_links() {
    if (m_logger_peer.state() != VESKMSG_S_OPEN) fail(GONE, m_logger_peer.error());
    for (const auto& s : m_seats) {
        if (!s->wanted) continue;
        if (!s->instrument.present()) {
            complete_join(*s);
        } else if (s->peer.state() != VESKMSG_S_OPEN) {
            fail(GONE, s->peer.error());
        }
    }
}

void station::play(const SIM_event& event) {
    if (event.verb == SIM_V_QUIT) m_done = TRUE;
    if (event.target == SIM_STATION_TARGET) return m_logger.play(event);
    for (const auto& s : m_seats) {
        if (event.target != SIM_EVERYONE_TARGET && event.target != s->instrument.name()) continue;
        if (event.verb == SIM_V_LEAVE) {
            leave(*s);
            m_log(s->instrument.name() + ": left");
        } else if (event.verb == SIM_V_JOIN) {
            join(*s);
        } else if (s->instrument.present()) {
            SIM_play_event(s->instrument, event);
        }
    }
}

void station::tick() {
    m_world.advance();
    while (m_next_event < m_options.scenario.size() &&
           m_options.scenario[m_next_event].at <= m_world.now - m_start)
        play(m_options.scenario[m_next_event++]);
    m_logger.tick();
    for (const auto& s : m_seats)
        s->instrument.tick();
}

void station::loop() {
    pacer clock(m_options.speed);
    while (!m_done && !UTIL_exit_poll()) {
        if (clock.begin()) {
            while (!m_done && clock.take_tick())
                tick();
        }
        for (const auto& s : m_seats)
            s->peer.send_readings();
        pump();
        check_links();
        if (!m_done) wait(clock.wait());
    }
}

int station::run() {
    if (!connect_all()) return m_exit_code;
    for (const auto& s : m_seats)
        s->instrument.join();
    m_log(m_options.name + ": " + std::to_string(m_seats.size()) + " instruments connected");
    loop();
    if (m_exit_code != 0) return m_exit_code;
    for (const auto& s : m_seats)
        leave(*s);
    m_logger_peer.disconnect();
    m_log(m_options.name + ": closed");
    return m_exit_code;
}

}  // namespace

int SIM_run_station(const SIM_options& options) {
    return station(options).run();
}
