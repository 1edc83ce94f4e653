// The loop of the simulated station. One thread: it waits for the links or the next tick, whichever is first.
#include "simstation/station.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

#include "libvesk/link/inst.h"
#include "libvesk/support/util.h"
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
    explicit pacer(double speed) : speed_(speed), last_(UTIL_ftime()) {}

    // A new bunch; FALSE when it is too early for one. Time that went backward counts as none.
    BOOL begin() {
        const FTIME now = UTIL_ftime();
        if (now >= last_ && now - last_ < PASS_SECONDS) return FALSE;
        owed_ += std::clamp(now - last_, 0.0, MOST_BEHIND) * speed_;
        last_ = now;
        return TRUE;
    }
    // TRUE, once for every tick that is due. What takes too long to work off is forgiven: the clock is slower
    // then than it was asked to be.
    BOOL take_tick() {
        if (owed_ < SIM_world::TICK) return FALSE;
        owed_ -= SIM_world::TICK;
        if (UTIL_ftime() - last_ > LONGEST_BUNCH) owed_ = 0;
        return TRUE;
    }
    // Real seconds until the next bunch is worth it.
    [[nodiscard]] double wait() const {
        return std::clamp((SIM_world::TICK - owed_) / speed_, PASS_SECONDS, LONGEST_WAIT);
    }

  private:
    double speed_;
    FTIME last_;
    double owed_ = 0;  // simulated seconds not yet ticked
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
    void warm_up();
    void loop();
    [[nodiscard]] FTIME start() const { return options_.start < 0 ? UTIL_ftime() : options_.start; }
    void tick();
    void play(const SIM_event& event);
    void leave(seat& s);
    void join(seat& s);
    void complete_join(seat& s);
    void pump();
    void wait(double seconds);
    void check_links();
    void fail(int code, const std::string& why);

    const SIM_options& options_;
    SIM_world world_;
    FTIME start_ = 0;  // simulated; events count from it
    std::function<void(const std::string&)> log_;
    SIM_peer logger_peer_;
    SIM_logger logger_;
    std::vector<std::unique_ptr<seat>> seats_;
    std::size_t next_event_ = 0;
    BOOL done_ = FALSE;
    int exit_code_ = 0;
};

std::vector<std::string> names_of(const std::vector<SIM_member>& members) {
    std::vector<std::string> names;
    for (const SIM_member& member : members)
        names.push_back(member.name);
    return names;
}

station::station(const SIM_options& options)
    : options_(options),
      world_(options.settings, start()),
      log_([this](const std::string& line) {
          if (options_.quiet) return;
          // Texts of scenarios may be any bytes.
          std::printf("%s %s\n", SIM_utc_text(world_.now).c_str(), UTIL_printable(line).c_str());
          std::fflush(stdout);
      }),
      logger_peer_(options.name, options.host, log_),
      logger_(world_, logger_peer_, options.name, options.logger, names_of(options.members)) {
    for (const SIM_member& member : options.members)
        seats_.push_back(std::make_unique<seat>(world_, member, options.host, log_));
}

void station::fail(int code, const std::string& why) {
    if (done_) return;
    UTIL_complain("%s", why.c_str());
    exit_code_ = code;
    done_ = TRUE;
}

void station::wait(double seconds) {
    std::vector<VESKMSG_link*> links{logger_peer_.link()};
    for (const auto& s : seats_) {
        if (s->wanted) links.push_back(s->peer.link());
    }
    VESKMSG_wait(links, seconds);
}

void station::pump() {
    logger_peer_.pump([this](const VESKMSG_proc_msg* pm) { logger_.receive(pm); });
    for (const auto& s : seats_) {
        if (!s->wanted) continue;
        s->peer.pump([&](const VESKMSG_proc_msg* pm) { s->instrument.receive(pm); });
    }
}

// All links are opened side by side; the first that fails ends it.
BOOL station::connect_all() {
    if (!logger_peer_.connect()) fail(NOT_CONNECTED, logger_peer_.error());
    for (const auto& s : seats_) {
        if (!done_ && !s->peer.connect()) fail(NOT_CONNECTED, s->peer.error());
    }
    const FTIME give_up = UTIL_ftime() + INST_CONNECT_SECONDS;
    while (!done_ && !UTIL_exit_poll()) {
        pump();
        std::vector<SIM_peer*> waiting;
        const auto look_at = [&](SIM_peer& peer) {
            if (peer.state() == VESKMSG_S_UNLINKED) fail(NOT_CONNECTED, peer.error());
            if (peer.state() != VESKMSG_S_OPEN) waiting.push_back(&peer);
        };
        look_at(logger_peer_);
        for (const auto& s : seats_)
            look_at(s->peer);
        if (waiting.empty()) return TRUE;
        if (UTIL_ftime() > give_up) fail(NOT_CONNECTED, "the server does not answer");
        if (!done_) wait(LONGEST_WAIT);
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
        log_(s.instrument.name() + ": joined");
    } else if (s.peer.state() != VESKMSG_S_AWAITING_HANDSHAKE) {
        if (UTIL_ftime() > s.give_up) return fail(GONE, s.peer.error());
        static_cast<void>(s.peer.connect());
    }
}

void station::check_links() {
    if (logger_peer_.state() != VESKMSG_S_OPEN) fail(GONE, logger_peer_.error());
    for (const auto& s : seats_) {
        if (!s->wanted) continue;
        if (!s->instrument.present()) {
            complete_join(*s);
        } else if (s->peer.state() != VESKMSG_S_OPEN) {
            fail(GONE, s->peer.error());
        }
    }
}

void station::play(const SIM_event& event) {
    if (event.verb == SIM_V_QUIT) done_ = TRUE;
    if (event.target == SIM_STATION_TARGET) return logger_.play(event);
    for (const auto& s : seats_) {
        if (event.target != SIM_EVERYONE_TARGET && event.target != s->instrument.name()) continue;
        if (event.verb == SIM_V_LEAVE) {
            leave(*s);
            log_(s->instrument.name() + ": left");
        } else if (event.verb == SIM_V_JOIN) {
            join(*s);
        } else if (s->instrument.present()) {
            SIM_play_event(s->instrument, event);
        }
    }
}

// The station's past when it begins to send. It takes a while, and the clock of a station in real
// time must be right afterwards.
void station::warm_up() {
    constexpr int TICKS_PER_PUMP = 100;
    world_ = SIM_world(options_.settings, start() - options_.warm_up);
    for (const auto& s : seats_) {
        s->peer.mute();
        s->instrument.join();
    }
    for (int i = 1; world_.now + SIM_world::TICK <= start() && !UTIL_exit_poll(); ++i) {
        world_.advance();
        for (const auto& s : seats_)
            s->instrument.tick();
        if (i % TICKS_PER_PUMP == 0) pump();
    }
    for (const auto& s : seats_)
        s->peer.unmute();
    start_ = world_.now;
}

void station::tick() {
    world_.advance();
    while (next_event_ < options_.scenario.size() && options_.scenario[next_event_].at <= world_.now - start_)
        play(options_.scenario[next_event_++]);
    logger_.tick();
    for (const auto& s : seats_)
        s->instrument.tick();
}

void station::loop() {
    pacer clock(options_.speed);
    while (!done_ && !UTIL_exit_poll()) {
        if (clock.begin()) {
            while (!done_ && clock.take_tick())
                tick();
        }
        for (const auto& s : seats_)
            s->peer.send_readings();
        pump();
        check_links();
        if (!done_) wait(clock.wait());
    }
}

int station::run() {
    if (!connect_all()) return exit_code_;
    warm_up();
    log_(options_.name + ": " + std::to_string(seats_.size()) + " instruments connected");
    loop();
    if (exit_code_ != 0) return exit_code_;
    for (const auto& s : seats_)
        leave(*s);
    logger_peer_.disconnect();
    log_(options_.name + ": closed");
    return exit_code_;
}

}  // namespace

int SIM_run_station(const SIM_options& options) {
    return station(options).run();
}
