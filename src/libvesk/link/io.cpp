// The channels by name, kept up by a listener on each registered link.
#include "libvesk/link/io.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "libvesk/messages/records/io.h"
#include "libvesk/support/util.h"

namespace {

constexpr std::size_t MOST_CHANNELS = 4096;  // a station has dozens; a peer gone mad must not fill the memory

struct channel {
    double value = VESK_MISSING;
    double running = VESK_MISSING;
    std::string source;
};

std::map<std::string, channel, std::less<>> g_channels;
std::vector<INST_link*> g_links;

channel* find(const char* name) {
    if (name == nullptr) return nullptr;
    const auto found = g_channels.find(std::string_view(name));
    return found != g_channels.end() ? &found->second : nullptr;
}

channel* find_or_make(const char* name) {
    if (channel* known = find(name)) return known;
    if (*name == '\0' || g_channels.size() >= MOST_CHANNELS) return nullptr;
    return &g_channels[name];
}

void take_present(double* to, double from) {
    if (!VESK_is_missing(from)) *to = from;
}

void report(const VESKMSG_proc_msg* pm) {
    const NET_IO_Value* const payload = VESKMSG_payload<NET_IO_Value>(pm);
    if (payload == nullptr) return;
    channel* const c = find_or_make(payload->channel);
    if (c == nullptr) return;
    const double value = payload->value;
    const double running = payload->running;
    c->source = pm->src_name;
    if (pm->msg->msg == MSG_IO_INSTANT) {
        c->value = value;
        take_present(&c->running, running);
    } else if (pm->msg->msg == MSG_IO_RUNNINGAVG) {
        c->running = running;
        take_present(&c->value, value);
    } else {
        take_present(&c->running, running);
    }
}

void forget(const char* source) {
    std::erase_if(g_channels, [&](const auto& entry) { return entry.second.source == source; });
}

void listen(VESKMSG_proc_msg* pm, void*) {
    switch (pm->msg->msg) {
        case MSG_IO_INSTANT:
        case MSG_IO_RUNNINGAVG:
        case MSG_IO_AVG:
            return report(pm);
        case MSG_NOTIFY_CLIENT_TERMINATE:
            return forget(pm->src_name);
        default:
            return;
    }
}

}  // namespace

BOOL IO_init() {
    IO_cleanup();
    return TRUE;
}

void IO_register_link(INST_link* link) {
    VESKMSG_add_listener(&link->msg_lnk, listen, nullptr);
    g_links.push_back(link);
}

double IO_lookup(const char* name) {
    const channel* c = find(name);
    return c != nullptr ? c->value : VESK_MISSING;
}

double IO_lookup_runningavg(const char* name) {
    const channel* c = find(name);
    return c != nullptr ? c->running : VESK_MISSING;
}

void IO_cleanup() {
    for (INST_link* link : g_links)
        VESKMSG_remove_listener(&link->msg_lnk, listen, nullptr);
    g_links.clear();
    g_channels.clear();
}
