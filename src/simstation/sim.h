// The contract of simulated instruments. A kind is one file with one state record, and one row in the table
// of kinds (kinds.h). The state record's members are the callbacks; everything that instruments have in
// common (announcement, logging flag, communications, averaging clock, noise) is done here, once:
//
//   namespace {
//   struct widget {
//       static constexpr SIM_setting settings[] = {{"jam", "on: the belt stands still"}};  // optional
//       void start(SIM_instrument& sim) { ... }             // optional: send what is kept from the start
//       void tick(SIM_instrument& sim) { ... }              // required: one second of measuring
//       void status(SIM_instrument& sim) { ... }            // optional: send_changed(MSG_..._STATUS, ...)
//       BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) { ... }            // optional
//       BOOL hear(SIM_instrument& sim, const VESKMSG_proc_msg* pm) { ... }               // optional
//       BOOL set(SIM_instrument& sim, std::string_view name, const SIM_value& v) { ... }  // with settings
//       void leave(SIM_instrument& sim) { ... }             // optional: parting words
//   };
//   }  // namespace
//   constinit const SIM_decl SIM_DCL_widget = SIM_decl_of<widget>();
#pragma once

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "simstation/voice.h"

class SIM_instrument;

// Why an order that needs the instrument itself is refused while its communications are lost.
inline constexpr const char* SIM_NO_COMMS = "no communications with the instrument";

// A value that a scenario sets: a text, and the number that it says ("on", "yes", "true" are 1; "off", "no",
// "false" are 0; NaN when it says none).
struct SIM_value {
    explicit SIM_value(std::string_view t);
    std::string text;
    double number;
};

// One thing of a kind that a scenario can set.
struct SIM_setting {
    const char* name;
    const char* help;
    BOOL is_text = FALSE;  // any text is fine; otherwise only what has a number
};

// The callbacks of a kind, made by SIM_decl_of. `state` is the instrument's own record.
struct SIM_decl {
    std::shared_ptr<void> (*make)();                        // a new state, each time the instrument joins
    void (*tick)(void* state, SIM_instrument&);             // once per second, not while comms are lost
    void (*start)(void* state, SIM_instrument&) = nullptr;  // once, after the announcement
    // Says what state the instrument is in, have_comms() and alarm_flags() included. Called after the start
    // and after everything that can have changed it (every tick and command too), hence send_changed.
    void (*status)(void* state, SIM_instrument&) = nullptr;
    // A message for this instrument or for all, whoever sent it, other instruments included (but not its own
    // words coming back). Not while comms are lost. TRUE when it was carried out. What cannot be
    // is answered with refuse(); what is merely not understood the frame refuses.
    BOOL (*command)(void* state, SIM_instrument&, const VESKMSG_proc_msg*) = nullptr;
    // The same, asked before `command` and even while comms are lost: for what the station's side of the
    // instrument acts upon by itself.
    BOOL (*hear)(void* state, SIM_instrument&, const VESKMSG_proc_msg*) = nullptr;
    // A setting of the list below; FALSE when the value is no good.
    BOOL (*set)(void* state, SIM_instrument&, std::string_view name, const SIM_value&) = nullptr;
    void (*leave)(void* state, SIM_instrument&) = nullptr;  // before the link closes
    std::span<const SIM_setting> settings = {};
};

// A row of the table of kinds.
struct SIM_kind {
    const char* type;          // what the instrument announces itself as
    const char* name;          // source name of the first of its kind
    const char* display_name;  // for people
    char id_ch;                // hot key and logging indicator
    const char* tags;          // separated by blanks, at most eight
    BOOL on_demand;            // runs only when asked for by name
    const SIM_decl* dcl;
};

// One instrument of the station.
struct SIM_member {
    const SIM_kind* kind;
    std::string name;
    std::string display_name;
    char id_ch;
};

class SIM_instrument : public SIM_voice {
  public:
    SIM_instrument(SIM_world& world, SIM_sink& sink, SIM_member member);

    // --- for the kinds (and what SIM_voice offers) ---
    [[nodiscard]] const SIM_air& air() const { return world_.air; }
    [[nodiscard]] double dt() const { return SIM_world::TICK; }       // seconds that a tick stands for
    [[nodiscard]] double age() const { return time() - joined_at_; }  // seconds since it was switched on
    // When something that was planned for `when` will come: in the next second when it is overdue, which it
    // is after lost communications.
    [[nodiscard]] FTIME not_past(FTIME when) const { return std::max(when, time() + dt()); }
    [[nodiscard]] BOOL have_comms() const { return comms_; }
    [[nodiscard]] BOOL logging() const { return logging_; }
    // Fault bits that a scenario raised: or them into the kind's own flags.
    [[nodiscard]] WORD alarm_flags() const { return alarm_flags_; }
    // TRUE in the tick that completes an averaging block: send the average and reset.
    [[nodiscard]] BOOL average_due() const;
    // Start of the block that this tick belongs to.
    [[nodiscard]] FTIME average_start() const { return block_start_; }

    // --- for the station and tests ---
    [[nodiscard]] const SIM_member& member() const { return member_; }
    [[nodiscard]] BOOL present() const { return state_ != nullptr; }
    void join();   // announces itself, with a new state; nothing when it is there already
    void leave();  // the sink's link may close afterwards
    void tick();
    // Hands on a message that the link received; TRUE when it was for this instrument and carried out.
    BOOL receive(const VESKMSG_proc_msg* pm);
    void set_comms(BOOL comms);
    void set_alarm_flags(WORD flags);
    void set_logging(BOOL logging);
    BOOL set(std::string_view name, const SIM_value& value);

  private:
    void announce();
    void say_status();
    BOOL take(const VESKMSG_proc_msg* pm);

    SIM_member member_;
    std::shared_ptr<void> state_;
    FTIME joined_at_ = 0;
    FTIME block_start_ = 0;
    BOOL comms_ = TRUE;
    BOOL logging_ = TRUE;
    WORD alarm_flags_ = 0;
};

// The callbacks of the state record S: those of its members that are there. A member of that name with
// another signature does not compile.
template <class S>
constexpr SIM_decl SIM_decl_of() {
    SIM_decl d{
        .make = []() -> std::shared_ptr<void> { return std::make_shared<S>(); },
        .tick = [](void* s, SIM_instrument& sim) { static_cast<S*>(s)->tick(sim); },
    };
    if constexpr (requires { &S::start; })
        d.start = [](void* s, SIM_instrument& sim) { static_cast<S*>(s)->start(sim); };
    if constexpr (requires { &S::status; })
        d.status = [](void* s, SIM_instrument& sim) { static_cast<S*>(s)->status(sim); };
    if constexpr (requires { &S::command; })
        d.command = [](void* s, SIM_instrument& sim, const VESKMSG_proc_msg* pm) -> BOOL {
            return static_cast<S*>(s)->command(sim, pm);
        };
    if constexpr (requires { &S::hear; })
        d.hear = [](void* s, SIM_instrument& sim, const VESKMSG_proc_msg* pm) -> BOOL {
            return static_cast<S*>(s)->hear(sim, pm);
        };
    if constexpr (requires { S::settings; }) {
        d.settings = S::settings;
        d.set = [](void* s, SIM_instrument& sim, std::string_view name, const SIM_value& value) -> BOOL {
            return static_cast<S*>(s)->set(sim, name, value);
        };
    }
    if constexpr (requires { &S::leave; })
        d.leave = [](void* s, SIM_instrument& sim) { static_cast<S*>(s)->leave(sim); };
    return d;
}
