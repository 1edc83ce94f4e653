// A status is any record with a member have_comms. Which one a kind has, its messages say; a kind without one
// writes a line into the station's log instead.
#include "peer/silence.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "libvesk/messages/records/log.h"
#include "libvesk/messages/records/server.h"
#include "libvesk/support/util.h"

namespace {

constexpr DWORD TO_ALL_AND_KEPT = FRAME_TO_ALL | FRAME_RESERVED | FRAME_KEEP;  // 7, as drivers send it

const NETDSD_field* comms_of(const NETDSD_entry* dsd) {
    const NETDSD_field* f = dsd != nullptr ? NETDSD_field_by_name(dsd, "have_comms") : nullptr;
    return f != nullptr && NETDSD_element_type(f->ft) == NETDSD_FT_BOOL ? f : nullptr;
}

const NETMSG_entry* status_of(const KINDS_row* kind) {
    if (kind == nullptr) return nullptr;
    const auto all = NETMSG_all();
    const auto found = std::find_if(all.begin(), all.end(), [=](const NETMSG_entry& msg) {
        return comms_of(msg.dsd) != nullptr && KINDS_has_message(*kind, msg.name);
    });
    return found != all.end() ? &*found : nullptr;
}

const KINDS_row* announced_kind(const JSONLINE_message& m) {
    auto info = NETDSD_default<NET_SERVER_InstrumentInfo>();
    std::memcpy(&info, m.payload.data(), sizeof info);
    return KINDS_by_name(UTIL_field(info.type));
}

bool is_announcement(const JSONLINE_message& m) {
    return m.msg->msg == MSG_SERVER_INSTRUMENTINFO && m.dsd == NETDSD_of<NET_SERVER_InstrumentInfo>();
}

JSONLINE_message log_line(bool have_comms, FTIME now) {
    auto line = NETDSD_default<NET_LOG_MonitorMessage>();
    line.flags = have_comms ? NET_LOG_MONITOR_NOTE : NET_LOG_MONITOR_ERROR;
    line.msgtime = now;
    UTIL_strcpynt(line.msg, have_comms ? "the driver speaks again" : "nothing is heard from the driver");
    JSONLINE_message m;
    m.msg = NETMSG_by_type(MSG_LOG_MONITOR);
    m.dsd = NETDSD_of<NET_LOG_MonitorMessage>();
    m.flags = FRAME_TO_ALL;
    m.payload.resize(sizeof line);
    std::memcpy(m.payload.data(), &line, sizeof line);
    return m;
}

}  // namespace

JSONLINE_message SILENCE::report(bool have_comms, FTIME now) const {
    JSONLINE_message m;
    if (status_) {
        m = *status_;
        if (have_comms) return m;  // whatever the driver said of them
    } else {
        m.msg = status_of(kind_);
        if (m.msg == nullptr) return log_line(have_comms, now);
        m.dsd = m.msg->dsd;
        m.payload.resize(m.dsd->total_size);
        NETDSD_set_defaults(m.dsd, m.payload.data());
    }
    m.flags = TO_ALL_AND_KEPT;
    const NETDSD_field& comms = *comms_of(m.dsd);
    std::memset(m.payload.data() + comms.offset, have_comms ? 1 : 0, comms.size);
    return m;
}

std::optional<JSONLINE_message> SILENCE::heard(FTIME now) {
    last_ = now;
    if (!silent_) return std::nullopt;
    silent_ = false;
    return report(true, now);
}

std::optional<JSONLINE_message> SILENCE::heard(const JSONLINE_message& m, FTIME now) {
    if (seconds_ <= 0) return std::nullopt;
    if (is_announcement(m)) kind_ = announced_kind(m);
    if (comms_of(m.dsd) != nullptr) {
        last_ = now;
        silent_ = false;
        told_ = true;
        status_ = m;
        return std::nullopt;
    }
    const bool first = !told_ && !is_announcement(m) && status_of(kind_) != nullptr;
    if (!first) return heard(now);
    // A driver that leaves its communications to us: what it measures says that they are there.
    last_ = now;
    silent_ = false;
    told_ = true;
    return report(true, now);
}

std::optional<JSONLINE_message> SILENCE::look(FTIME now) {
    last_ = std::min(last_, now);  // a clock that was set back
    if (silent_ || now < deadline()) return std::nullopt;
    silent_ = true;
    told_ = true;
    return report(false, now);
}

FTIME SILENCE::deadline() const {
    return silent_ || seconds_ <= 0 ? HUGE_VAL : last_ + seconds_;
}
