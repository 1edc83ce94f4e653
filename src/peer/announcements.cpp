// Looking at announcements as a console will.
#include "peer/announcements.h"

#include <algorithm>
#include <vector>

#include "libvesk/messages/kinds.h"
#include "libvesk/support/suggest.h"
#include "libvesk/support/util.h"

namespace {

std::vector<std::string_view> kinds_of_instruments() {
    std::vector<std::string_view> names;
    for (const KINDS_row& row : KINDS_all())
        if (row.origin == KINDS_ANNOUNCED) names.emplace_back(row.name);
    return names;
}

}  // namespace

std::string ANNOUNCEMENTS_kind_fault(std::string_view kind) {
    const std::string named = '"' + UTIL_printable(kind) + '"';
    switch (KINDS_find(kind)) {
        case KINDS_UNKNOWN:
            return "no console knows the kind " + named + SUGGEST_text(kind, kinds_of_instruments());
        case KINDS_WITHOUT_DISPLAY:
            return "no console shows the kind " + named + " yet";
        case KINDS_WITH_DISPLAY:
            break;
    }
    return "";
}

std::string ANNOUNCEMENTS::hear(const VESKMSG_proc_msg* pm, std::string_view own) {
    if (pm->msg->msg == MSG_NOTIFY_CLIENT_TERMINATE) hot_keys_.erase(pm->src_name);
    const auto* const info = VESKMSG_payload<NET_SERVER_InstrumentInfo>(pm);
    if (info == nullptr || pm->msg->msg != MSG_SERVER_INSTRUMENTINFO) return "";
    if (pm->src_name != own) {
        hot_keys_[pm->src_name] = info->id_ch;
        return "";
    }
    const auto taken = std::find_if(hot_keys_.begin(), hot_keys_.end(), [=](const auto& other) {
        return other.second == info->id_ch && info->id_ch != '\0';
    });
    if (taken == hot_keys_.end()) return "";
    return std::string("the hot key ") + info->id_ch + " is taken by " + taken->first;
}
