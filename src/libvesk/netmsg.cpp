// The table of message types, made from the one list at compile time: nothing here runs before main, so
// anybody may ask at any time.
#include "libvesk/netmsg.h"

#include <array>

#include "libvesk/name_index.h"
#include "libvesk/records/all.h"

namespace {

template <class R>
constexpr NETMSG_entry tied(NETMSG_type msg, const char* name) {
    if constexpr (std::is_void_v<R>) {
        return {msg, name, "", "", nullptr};
    } else {
        return {msg, name, "", NETDSD_of<R>()->name, NETDSD_of<R>()};
    }
}

constexpr std::array<NETMSG_entry, NETMSG_COUNT> g_messages{{
#define NETMSG_ROW(name, record) tied<record>(name, #name),
    NETMSG_LIST(NETMSG_ROW)
#undef NETMSG_ROW
}};

constexpr auto g_by_name = [] {
    NAME_index<NETMSG_entry, 1024> index;
    for (const NETMSG_entry& entry : g_messages)
        index.add(&entry);
    return index;
}();
static_assert(g_by_name.size() == NETMSG_COUNT, "no name stands twice");

}  // namespace

const NETMSG_entry* NETMSG_by_type(int type) {
    return type >= 0 && type < NETMSG_COUNT ? &g_messages[static_cast<std::size_t>(type)] : nullptr;
}

const NETMSG_entry* NETMSG_by_name(std::string_view name) {
    return g_by_name.find(name);
}

BOOL NETMSG_accepts(const NETMSG_entry* msg, const NETDSD_entry* dsd) {
    return dsd == nullptr || msg->dsd == nullptr || dsd == msg->dsd;
}
