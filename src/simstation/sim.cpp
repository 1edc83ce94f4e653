// The behaviour that all simulated instruments share.
#include "simstation/sim.h"

#include <cmath>
#include <limits>
#include <sstream>

#include "libvesk/support/util.h"

namespace {

double number_of(const std::string& text) {
    for (const char* yes : {"on", "yes", "true"}) {
        if (text == yes) return 1;
    }
    for (const char* no : {"off", "no", "false"}) {
        if (text == no) return 0;
    }
    double value = std::numeric_limits<double>::quiet_NaN();
    return UTIL_parse_number(text, &value) ? value : std::numeric_limits<double>::quiet_NaN();
}

struct wrong_number {
    const NETDSD_field* field = nullptr;  // null for none
    double value = 0;
};

// The first number of a record that is out of its member's range. A missing one is in it: it stands for
// "unchanged" where that is possible.
wrong_number first_out_of_range(const NETDSD_entry* dsd, const void* record) {
    wrong_number found;
    NETDSD_for_each_leaf(dsd, [&](const NETDSD_field& f, std::size_t at) {
        if (!f.has_range || found.field != nullptr) return;
        const double value = NETDSD_visit_type(f.ft, [&]<class T>(std::type_identity<T>) {
            return static_cast<double>(NETDSD_load<T>(static_cast<const char*>(record) + at));
        });
        if (!VESK_is_missing(value) && !(value >= f.min && value <= f.max)) found = {&f, value};
    });
    return found;
}

}  // namespace

SIM_value::SIM_value(std::string_view t) : text(t), number(number_of(text)) {}

SIM_instrument::SIM_instrument(SIM_world& world, SIM_sink& sink, SIM_member member)
    : SIM_voice(world, sink, member.name), member_(std::move(member)) {}

void SIM_instrument::join() {
    if (present()) return;
    joined_at_ = time();
    block_start_ = time();
    state_ = member_.kind->dcl->make();
    announce();
    send_kept(MSG_LOG_INFO, NET_LOG_Info{logging_});
    if (member_.kind->dcl->start != nullptr) member_.kind->dcl->start(state_.get(), *this);
    say_status();
}

void SIM_instrument::leave() {
    if (!present()) return;
    if (member_.kind->dcl->leave != nullptr) member_.kind->dcl->leave(state_.get(), *this);
    state_.reset();
    forget_sent();
}

void SIM_instrument::announce() {
    auto info = NETDSD_default<NET_SERVER_InstrumentInfo>();
    UTIL_strcpynt(info.type, member_.kind->type);
    UTIL_strcpynt(info.display_name, member_.display_name.c_str());
    info.id_ch = member_.id_ch;
    std::istringstream tags(member_.kind->tags);
    std::string tag;
    for (std::size_t i = 0; i < NET_SERVER_TAGS && tags >> tag; ++i)
        UTIL_strcpynt(info.tags[i].tag, tag.c_str());
    send_kept(MSG_SERVER_INSTRUMENTINFO, info);
}

void SIM_instrument::say_status() {
    if (member_.kind->dcl->status != nullptr) member_.kind->dcl->status(state_.get(), *this);
}

BOOL SIM_instrument::average_due() const {
    const double length = world_.settings.average_seconds;
    return std::floor((time() + dt()) / length) > std::floor(block_start_ / length);
}

void SIM_instrument::tick() {
    if (!present() || !comms_) return;
    member_.kind->dcl->tick(state_.get(), *this);
    say_status();
    if (average_due()) block_start_ = time() + dt();
}

BOOL SIM_instrument::receive(const VESKMSG_proc_msg* pm) {
    const std::string_view dest = pm->dest_name != nullptr ? pm->dest_name : "";
    if (!present() || pm->src_name == nullptr || pm->src_name == name()) return FALSE;
    if (!dest.empty() && dest != name()) return FALSE;
    if (!dest.empty()) log("%s from %s", pm->msg->name, pm->src_name);
    const std::size_t refused_before = refusals();
    if (take(pm)) {
        say_status();
        return TRUE;
    }
    // A message to all need not be for this instrument.
    const BOOL unanswered = !dest.empty() && refusals() == refused_before;
    return unanswered && refuse(pm->msg->name, comms_ ? "not understood" : SIM_NO_COMMS);
}

BOOL SIM_instrument::take(const VESKMSG_proc_msg* pm) {
    if (const auto* const logging = VESKMSG_payload<NET_LOG_SetState>(pm)) {
        set_logging(logging->enable);
        return TRUE;
    }
    const SIM_decl& dcl = *member_.kind->dcl;
    if (dcl.hear != nullptr && dcl.hear(state_.get(), *this, pm)) return TRUE;
    if (!comms_ || dcl.command == nullptr) return FALSE;
    const auto [field, value] = pm->dsd != nullptr ? first_out_of_range(pm->dsd, pm->pds) : wrong_number{};
    if (field == nullptr) return dcl.command(state_.get(), *this, pm);
    // A message to all may carry another instrument's own numbers.
    return pm->dest_name == name() && refuse(pm->msg->name, "%g is not within %g to %g (%s)", value,
                                             field->min, field->max, field->comment);
}

void SIM_instrument::set_logging(BOOL logging) {
    logging_ = logging;
    log("logging %s", logging ? "on" : "off");
    if (present()) send_kept(MSG_LOG_INFO, NET_LOG_Info{logging});
}

void SIM_instrument::set_comms(BOOL comms) {
    if (comms_ == comms) return;
    comms_ = comms;
    log("communications %s", comms ? "restored" : "lost");
    if (present()) say_status();
}

void SIM_instrument::set_alarm_flags(WORD flags) {
    alarm_flags_ = flags;
    log("alarm flags 0x%04X", static_cast<unsigned>(flags));
    if (present()) say_status();
}

BOOL SIM_instrument::set(std::string_view name, const SIM_value& value) {
    if (!present() || member_.kind->dcl->set == nullptr) return FALSE;
    const BOOL taken = member_.kind->dcl->set(state_.get(), *this, name, value);
    log("%.*s = %s%s", static_cast<int>(name.size()), name.data(), value.text.c_str(),
        taken ? "" : ": refused");
    if (taken) say_status();
    return taken;
}
