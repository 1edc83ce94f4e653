// Sends messages for an instrument (or for the station itself): messages under its own name in the three ways
// that the system knows, error lines for every operator, and lines of the program's own output. Where
// messages go is the sink's business: a link to the server, or a test that collects them.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "libvesk/link/veskmsg.h"
#include "libvesk/messages/records/log.h"
#include "simstation/physics/world.h"

// "2001-02-03 04:05:06"
[[nodiscard]] std::string SIM_utc_text(FTIME time);

struct SIM_message {
    NETMSG_type msg;
    DWORD flags;
    const char* dest;         // "" for none
    const NETDSD_entry* dsd;  // of the payload, null without one
    const void* payload;      // dsd->total_size bytes, padding zeroed; lives for the call only
    BOOL instant;             // only the latest matters: may be dropped when a newer one is already there
};

class SIM_sink {
  public:
    virtual ~SIM_sink() = default;
    virtual void send(const SIM_message& message) = 0;
    virtual void log(const std::string& line) = 0;  // one line of output, without time and newline
};

class SIM_voice {
  public:
    // World and sink are lent: they must outlive this.
    SIM_voice(SIM_world& world, SIM_sink& sink, std::string name);

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] FTIME time() const { return world_.now; }  // simulated; whole seconds
    [[nodiscard]] SIM_noise& noise() { return noise_; }      // this speaker's own stream

    // An event: to all, once.
    template <class R>
    void send(NETMSG_type msg, R record) {
        emit(msg, FRAME_TO_ALL, "", NETDSD_of<R>(), &record);
    }
    void send(NETMSG_type msg) { emit(msg, FRAME_TO_ALL, "", nullptr, nullptr); }
    // A state: to all, and to everyone who joins later.
    template <class R>
    void send_kept(NETMSG_type msg, R record) {
        emit(msg, FRAME_TO_ALL | FRAME_KEEP, "", NETDSD_of<R>(), &record);
    }
    // The same, but only when it differs from the last one sent with that message type. Call it as often as
    // is convenient.
    template <class R>
    void send_changed(NETMSG_type msg, R record) {
        emit_changed(msg, NETDSD_of<R>(), &record);
    }
    // Latest readings, once per tick: kept too; at high speeds only the newest leaves the program.
    template <class R>
    void send_instant(NETMSG_type msg, R record) {
        emit(msg, FRAME_TO_ALL | FRAME_KEEP, "", NETDSD_of<R>(), &record, TRUE);
    }
    // To one peer only.
    template <class R>
    void send_to(const char* dest, NETMSG_type msg, R record) {
        emit(msg, 0, dest, NETDSD_of<R>(), &record);
    }

    // An error line in the station log, which raises the error strip of every console.
    void send_error_line(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // The same for an order that is not carried out: "N11: zero refused: a span check runs". Said once a
    // second however often it is asked for. FALSE, for callbacks to return.
    BOOL refuse(const char* what, const char* why, ...) __attribute__((format(printf, 3, 4)));
    // A line of the program's own output.
    void log(const char* format, ...) __attribute__((format(printf, 2, 3)));

  protected:
    [[nodiscard]] std::size_t refusals() const { return refusals_; }  // so far
    // Forgets what send_changed sent: after the server forgot it too.
    void forget_sent() { sent_.clear(); }
    SIM_world& world_;

  private:
    void emit(NETMSG_type msg, DWORD flags, const char* dest, const NETDSD_entry* dsd, const void* record,
              BOOL instant = FALSE);
    void emit_changed(NETMSG_type msg, const NETDSD_entry* dsd, const void* record);

    SIM_sink& sink_;
    std::string name_;
    SIM_noise noise_;
    std::map<NETMSG_type, std::vector<char>> sent_;
    std::set<std::string> refused_;  // what was refused in this second
    FTIME refused_at_ = VESK_NO_TIME;
    std::size_t refusals_ = 0;
};
