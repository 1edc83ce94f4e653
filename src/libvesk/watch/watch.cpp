#include "libvesk/watch/watch.h"

#include <algorithm>
#include <utility>

#include "libvesk/messages/records/log.h"
#include "libvesk/watch/faults.h"

namespace {

constexpr double SETTLING = 3;  // seconds in which a station that was there already introduces itself

constexpr double SECONDS_PER_MINUTE = 60;

BOOL is_from_families(std::string_view message, std::initializer_list<std::string_view> families) {
    return std::ranges::any_of(families, [message](std::string_view f) { return message.starts_with(f); });
}

// Says something of the air or of the instrument, not of the station's business.
BOOL is_data(const VESKMSG_proc_msg* pm) {
    return pm->pds != nullptr &&
           !is_from_families(pm->msg->name, {"MSG_SERVER_", "MSG_LOG_", "MSG_MESSAGING_"});
}

std::string joined(const std::map<NETMSG_type, std::string>& parts) {
    std::string text;
    for (const auto& [msg, part] : parts) {
        if (part.empty() || text.find(part) != std::string::npos) continue;
        if (!text.empty()) text += ", ";
        text += part;
    }
    return text;
}

}  // namespace

const char* WATCH_state_text(WATCH_state state) {
    switch (state) {
        case WATCH_RUNNING:
            return "running";
        case WATCH_SILENT:
            return "silent";
        case WATCH_FAULT:
            return "fault";
        case WATCH_GONE:
            return "gone";
        case WATCH_NO_COMMS:
            return "no comms";
    }
    return "";
}

void WATCH_trend::add(FTIME now, double value) {
    if (VESK_is_missing(value) || now < 0) return;
    const auto number = static_cast<long long>(now / SECONDS_PER_MINUTE);
    minute& m = minutes_[static_cast<std::size_t>(number) % WATCH_TREND_MINUTES];
    if (m.number != number) m = {.number = number, .sum = 0, .count = 0};
    m.sum += value;
    ++m.count;
}

double WATCH_trend::at(FTIME now, std::size_t minutes_ago) const {
    const long long number =
        static_cast<long long>(now / SECONDS_PER_MINUTE) - static_cast<long long>(minutes_ago);
    if (number < 0) return VESK_MISSING;
    const minute& m = minutes_[static_cast<std::size_t>(number) % WATCH_TREND_MINUTES];
    return m.number == number ? m.sum / m.count : VESK_MISSING;
}

WATCH::WATCH(FTIME now) : born_(now) {}

void WATCH::message(const VESKMSG_proc_msg* pm, FTIME now) {
    if (pm->src_name == nullptr || pm->src_name[0] == '\0') return;
    if (pm->msg->msg == MSG_SERVER_INSTRUMENTINFO) {
        announced(pm, now);
        return;
    }
    if (pm->msg->msg == MSG_LOG_MONITOR) {
        const auto* line = VESKMSG_payload<NET_LOG_MonitorMessage>(pm);
        if (line != nullptr && (line->flags & NET_LOG_MONITOR_ERROR) != 0)
            note(now, pm->src_name, line->msg, WATCH_FAULT);
    }
    const auto found = instruments_.find(std::string_view(pm->src_name));
    if (found == instruments_.end()) return;
    WATCH_instrument& it = found->second;
    if (pm->msg->msg == MSG_NOTIFY_CLIENT_TERMINATE) {
        departed(it, now);
        return;
    }
    if (!is_data(pm)) return;
    it.heard = now;
    take_values(it, pm, now);
    take_faults(it, pm);
    judge(it, now);
}

void WATCH::announced(const VESKMSG_proc_msg* pm, FTIME now) {
    const auto* info = VESKMSG_payload<NET_SERVER_InstrumentInfo>(pm);
    if (info == nullptr) return;
    const auto [at, is_new] = instruments_.try_emplace(pm->src_name);
    WATCH_instrument& it = at->second;
    it.info = *info;
    it.kind = KEYVALUES_of(info->type);
    if (!is_new && it.state != WATCH_GONE) return;
    it.name = pm->src_name;
    it.values.assign(it.kind != nullptr ? it.kind->values.size() : 0, VESK_MISSING);
    it.state = WATCH_RUNNING;
    it.since = now;
    it.heard = -1;
    it.faults_by_message.clear();
    it.comms_by_message.clear();
    it.fault.clear();
    if (!is_new) {
        note(now, it.name, "is back");
    } else if (now - born_ > SETTLING) {
        note(now, it.name, "has joined");
    }
    make_room();
}

void WATCH::departed(WATCH_instrument& it, FTIME now) {
    if (it.state == WATCH_GONE) return;
    it.state = WATCH_GONE;
    it.since = now;
    it.fault.clear();
    note(now, it.name, "has left", WATCH_GONE);
}

void WATCH::take_values(WATCH_instrument& it, const VESKMSG_proc_msg* pm, FTIME now) {
    if (it.kind == nullptr) return;
    for (std::size_t i = 0; i < it.kind->values.size(); ++i) {
        const KEYVALUE& value = it.kind->values[i];
        if (value.msg != pm->msg->msg || value.dsd != pm->dsd) continue;
        it.values[i] = KEYVALUE_read(value, pm->pds);
        if (i == 0) it.trend.add(now, it.values[i]);
    }
}

void WATCH::take_faults(WATCH_instrument& it, const VESKMSG_proc_msg* pm) {
    if (!FAULTS_can_be_in(pm->dsd)) return;
    const FAULTS_found found = FAULTS_of(pm->dsd, pm->pds);
    if (found.tells_comms) it.comms_by_message[pm->msg->msg] = found.have_comms;
    std::string& said = it.faults_by_message[pm->msg->msg];
    if (said == found.texts) return;
    said = found.texts;
    it.fault = joined(it.faults_by_message);
}

// The state from all that is known; a change of it, or of the fault's words, is an event.
void WATCH::judge(WATCH_instrument& it, FTIME now) {
    if (it.state == WATCH_GONE) return;
    const BOOL no_comms = std::ranges::any_of(it.comms_by_message, [](const auto& m) { return !m.second; });
    const BOOL silent = now - std::max(it.heard, it.since) > it.quiet_limit();
    const WATCH_state state = no_comms            ? WATCH_NO_COMMS
                              : !it.fault.empty() ? WATCH_FAULT
                              : silent            ? WATCH_SILENT
                                                  : WATCH_RUNNING;
    if (state == it.state && (state != WATCH_FAULT || it.fault == it.fault_noted)) return;
    it.fault_noted = it.fault;
    if (state == it.state) {
        note(now, it.name, it.fault, state);
        return;
    }
    const WATCH_state before = std::exchange(it.state, state);
    const FTIME since = std::exchange(it.since, now);
    const BOOL settling = now - born_ <= SETTLING;
    if (state == WATCH_NO_COMMS) {
        note(now, it.name, "comms lost", state);
    } else if (state == WATCH_FAULT) {
        note(now, it.name, it.fault, state);
    } else if (state == WATCH_SILENT) {
        it.since = std::max(it.heard, since);
        note(now, it.name, "sends no data", state);
    } else if (!settling) {
        note(now, it.name,
             before == WATCH_NO_COMMS ? "comms back"
             : before == WATCH_FAULT  ? "fault over"
                                      : "sends data again");
    }
}

void WATCH::tick(FTIME now) {
    for (auto& [name, it] : instruments_)
        judge(it, now);
}

void WATCH::note(FTIME now, std::string source, std::string text, WATCH_state severity) {
    if (events_.size() >= WATCH_MAX_EVENTS) {
        if (!events_.front().acknowledged) --unacknowledged_;
        events_.pop_front();
    }
    const BOOL is_news = severity != WATCH_RUNNING;
    events_.push_back({.time = now,
                       .source = std::move(source),
                       .text = std::move(text),
                       .severity = severity,
                       .acknowledged = !is_news});
    if (is_news) ++unacknowledged_;
}

void WATCH::link_lost(FTIME now) {
    note(now, "", "the link to the server is down", WATCH_NO_COMMS);
    for (auto& [name, it] : instruments_) {
        it.state = WATCH_GONE;
        it.since = now;
        it.fault.clear();
    }
}

void WATCH::acknowledge() {
    for (WATCH_event& e : events_)
        e.acknowledged = TRUE;
    unacknowledged_ = 0;
}

std::vector<const WATCH_instrument*> WATCH::sorted(WATCH_order order) const {
    std::vector<const WATCH_instrument*> all;
    all.reserve(instruments_.size());
    for (const auto& [name, it] : instruments_)
        all.push_back(&it);
    if (order == WATCH_WORST_FIRST)
        std::ranges::stable_sort(all, std::greater<>(), [](const WATCH_instrument* i) { return i->state; });
    return all;
}

const WATCH_instrument* WATCH::find(std::string_view name) const {
    const auto found = instruments_.find(name);
    return found != instruments_.end() ? &found->second : nullptr;
}

void WATCH::make_room() {
    while (instruments_.size() > WATCH_MAX_INSTRUMENTS) {
        auto oldest = instruments_.end();
        for (auto i = instruments_.begin(); i != instruments_.end(); ++i) {
            if (i->second.state != WATCH_GONE) continue;
            if (oldest == instruments_.end() || i->second.since < oldest->second.since) oldest = i;
        }
        if (oldest == instruments_.end()) return;
        instruments_.erase(oldest);
    }
}
