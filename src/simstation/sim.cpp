// What all simulated instruments do alike.
#include "simstation/sim.h"

#include <cmath>
#include <limits>
#include <sstream>

#include "libvesk/util.h"

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

}  // namespace

SIM_value::SIM_value(std::string_view t) : text(t), number(number_of(text)) {}

SIM_instrument::SIM_instrument(SIM_world& world, SIM_sink& sink, SIM_member member)
    : SIM_voice(world, sink, member.name), m_member(std::move(member)) {}

void SIM_instrument::join() {
    if (present()) return;
    m_joined_at = time();
    m_block_start = time();
    m_state = m_member.kind->dcl->make();
    announce();
    send_kept(MSG_LOG_INFO, NET_LOG_Info{m_logging});
    if (m_member.kind->dcl->start != nullptr) m_member.kind->dcl->start(m_state.get(), *this);
    say_status();
}

void SIM_instrument::leave() {
    if (!present()) return;
    if (m_member.kind->dcl->leave != nullptr) m_member.kind->dcl->leave(m_state.get(), *this);
    m_state.reset();
    forget_sent();
}

void SIM_instrument::announce() {
    auto info = NETDSD_default<NET_SERVER_InstrumentInfo>();
    UTIL_strcpynt(info.type, m_member.kind->type);
    UTIL_strcpynt(info.display_name, m_member.display_name.c_str());
    info.id_ch = m_member.id_ch;
    std::istringstream tags(m_member.kind->tags);
    std::string tag;
    for (std::size_t i = 0; i < NET_SERVER_TAGS && tags >> tag; ++i)
        UTIL_strcpynt(info.tags[i].tag, tag.c_str());
    send_kept(MSG_SERVER_INSTRUMENTINFO, info);
}

void SIM_instrument::say_status() {
    if (m_member.kind->dcl->status != nullptr) m_member.kind->dcl->status(m_state.get(), *this);
}

BOOL SIM_instrument::average_due() const {
    const double length = m_world.settings.average_seconds;
    return std::floor((time() + dt()) / length) > std::floor(m_block_start / length);
}

void SIM_instrument::tick() {
    if (!present() || !m_comms) return;
    m_member.kind->dcl->tick(m_state.get(), *this);
    say_status();
    if (average_due()) m_block_start = time() + dt();
}

BOOL SIM_instrument::receive(const VESKMSG_proc_msg* pm) {
    const std::string_view dest = pm->dest_name != nullptr ? pm->dest_name : "";
    if (!present() || pm->src_name == nullptr || pm->src_name == name()) return FALSE;
    if (!dest.empty() && dest != name()) return FALSE;
    if (pm->msg->msg == MSG_LOG_SET_STATE) return change_logging(pm);
    if (!dest.empty()) log("%s from %s", pm->msg->name, pm->src_name);
    const auto hear = m_member.kind->dcl->hear;
    if (hear != nullptr && hear(m_state.get(), *this, pm)) {
        say_status();
        return TRUE;
    }
    if (!m_comms) {
        if (!dest.empty()) log("no communications with the instrument");
        return FALSE;
    }
    const auto command = m_member.kind->dcl->command;
    const BOOL understood = command != nullptr && command(m_state.get(), *this, pm);
    if (understood) say_status();
    if (!understood && !dest.empty()) log("%s: not understood", pm->msg->name);
    return understood;
}

BOOL SIM_instrument::change_logging(const VESKMSG_proc_msg* pm) {
    const auto* const state = VESKMSG_payload<NET_LOG_SetState>(pm);
    if (state == nullptr) return FALSE;
    set_logging(state->enable);
    return TRUE;
}

void SIM_instrument::set_logging(BOOL logging) {
    m_logging = logging;
    log("logging %s", logging ? "on" : "off");
    if (present()) send_kept(MSG_LOG_INFO, NET_LOG_Info{logging});
}

void SIM_instrument::set_comms(BOOL comms) {
    if (m_comms == comms) return;
    m_comms = comms;
    log("communications %s", comms ? "restored" : "lost");
    if (present()) say_status();
}

void SIM_instrument::set_alarm_flags(WORD flags) {
    m_alarm_flags = flags;
    log("alarm flags 0x%04X", static_cast<unsigned>(flags));
    if (present()) say_status();
}

BOOL SIM_instrument::set(std::string_view name, const SIM_value& value) {
    if (!present() || m_member.kind->dcl->set == nullptr) return FALSE;
    const BOOL taken = m_member.kind->dcl->set(m_state.get(), *this, name, value);
    log("%.*s = %s%s", static_cast<int>(name.size()), name.data(), value.text.c_str(),
        taken ? "" : ": refused");
    if (taken) say_status();
    return taken;
}
