// The data logger's part in the conversation between station and operators.
#include "simstation/logger.h"

#include <cmath>

#include "libvesk/messages/records/messaging.h"
#include "libvesk/support/util.h"

namespace {

constexpr std::size_t MOST_PENDING_ANSWERS = 8;  // a flood of messages is not answered one by one

constexpr const char* g_errors[] = {
    ": no response, retrying",
    ": checksum error in report, record dropped",
    ": flow out of limits",
    ": sample line humidity above 40 %",
    ": clock differs by more than 2 s",
    ": serial port overrun, input discarded",
};

constexpr const char* g_answers[] = {
    "Understood.",          "Copy that, thank you.",         "On my way to the roof, back in ten minutes.",
    "I see the same here.", "Will check at the next round.",
};

// The request of the message in words; "" when only its name is known.
std::string description(const VESKMSG_proc_msg* pm) {
    if (const auto* const r = VESKMSG_payload<NET_LOG_SwitchFiles>(pm))
        return "data files rotated at " + SIM_utc_text(r->switchtime);
    if (const auto* const r = VESKMSG_payload<NET_LOG_MonitorMessage>(pm)) return UTIL_field(r->msg).data();
    if (const auto* const r = VESKMSG_payload<NETDS_MESSAGE_OneMessage>(pm))
        return UTIL_field(r->contents).data();
    if (const auto* const r = VESKMSG_payload<NET_LOG_SetState>(pm))
        return r->enable ? "logging on" : "logging off";
    return pm->msg->msg == MSG_LOG_FLUSH ? "buffers flushed" : "";
}

// Consoles, and whoever else is no instrument, connect as "CLIENT".
BOOL is_console(const VESKMSG_proc_msg* pm) {
    return pm->src_name != nullptr && std::string_view(pm->src_name).starts_with("CLIENT");
}

}  // namespace

SIM_logger::SIM_logger(SIM_world& world, SIM_sink& sink, std::string name,
                       const SIM_logger_settings& settings, std::vector<std::string> names)
    : SIM_voice(world, sink, std::move(name)), settings_(settings), names_(std::move(names)) {}

void SIM_logger::tick() {
    error_now_and_then();
    while (!answers_.empty() && answers_.front().first <= time()) {
        say(answers_.front().second);
        answers_.pop_front();
    }
}

void SIM_logger::error_now_and_then() {
    if (names_.empty() || !noise().chance(settings_.errors_per_hour / 3600 * SIM_world::TICK)) return;
    const std::string& about = names_[noise().pick(names_.size())];
    send_error_line("%s%s", about.c_str(), g_errors[noise().pick(std::size(g_errors))]);
}

void SIM_logger::say(const std::string& text) {
    auto record = NETDSD_default<NETDS_MESSAGE_OneMessage>();
    record.time_sent = time();
    UTIL_strcpynt(record.contents, text.c_str());
    send(MSG_MESSAGING_MESSAGE, record);
    log("message: %s", text.c_str());
}

void SIM_logger::receive(const VESKMSG_proc_msg* pm) {
    if (!is_console(pm)) return;
    const std::string what = description(pm);
    const std::string concerning = *pm->dest_name != '\0' ? std::string(" for ") + pm->dest_name : "";
    log("%s from %s%s%s%s", pm->msg->name, pm->src_name, concerning.c_str(), what.empty() ? "" : ": ",
        what.c_str());
    switch (pm->msg->msg) {
        case MSG_MESSAGING_MESSAGE:
            return answer(pm);
        case MSG_CONTAMINATION_BYPASS:
        case MSG_CONTAMINATION_BYPASSOVERRIDE:
            return set_bypass(TRUE);
        case MSG_CONTAMINATION_UNBYPASS:
        case MSG_CONTAMINATION_UNBYPASSOVERRIDE:
            return set_bypass(FALSE);
        case MSG_CONTAMINATION_CONTAMINATE:
        case MSG_CONTAMINATION_CONTAMINATEOVERRIDE:
            return set_contamination(TRUE);
        case MSG_CONTAMINATION_UNCONTAMINATE:
        case MSG_CONTAMINATION_UNCONTAMINATEOVERRIDE:
            return set_contamination(FALSE);
        case MSG_LOG_FLUSH:
        case MSG_LOG_SWITCHFILES:
        case MSG_LOG_MONITOR:
            return;
        default:
            if (pm->dest_name == name()) refuse(pm->msg->name, "not understood");
    }
}

void SIM_logger::answer(const VESKMSG_proc_msg* pm) {
    const auto* const message = VESKMSG_payload<NETDS_MESSAGE_OneMessage>(pm);
    if (!settings_.chatty || message == nullptr || answers_.size() >= MOST_PENDING_ANSWERS) return;
    const FTIME last = answers_.empty() ? time() : answers_.back().first;
    const FTIME when = last + std::ceil(noise().uniform(1, 4));
    answers_.emplace_back(when, g_answers[noise().pick(std::size(g_answers))]);
}

void SIM_logger::set_bypass(BOOL bypassed) {
    send_kept(MSG_LOG_AVG_BYPASS, NET_LOG_AVG_Bypass{bypassed, time()});
    log("averages %s", bypassed ? "bypassed" : "no longer bypassed");
}

void SIM_logger::set_contamination(BOOL contaminated) {
    send_kept(MSG_LOG_AVG_CONTAMINATION, NET_LOG_AVG_Contamination{contaminated, time()});
    log("averages %s", contaminated ? "contaminated" : "no longer contaminated");
}

void SIM_logger::play(const SIM_event& event) {
    const BOOL on = event.value.number != 0;
    switch (event.verb) {
        case SIM_V_ERROR:
            return send_error_line("%s", event.text.c_str());
        case SIM_V_MESSAGE:
            return say(event.text);
        case SIM_V_BYPASS:
            return set_bypass(on);
        case SIM_V_CONTAMINATE:
            return set_contamination(on);
        default:
            return;
    }
}
