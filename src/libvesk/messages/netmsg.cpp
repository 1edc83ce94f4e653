// The table of message types, made from the one list at compile time: nothing here runs before main, so
// anybody may ask at any time.
#include "libvesk/messages/netmsg.h"

#include <array>

#include "libvesk/messages/records/all.h"
#include "libvesk/support/name_index.h"

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

constexpr auto g_message_names = [] {
    NAME_index<NETMSG_entry, 1024> index;
    for (const NETMSG_entry& entry : g_messages)
        index.add(&entry);
    return index;
}();
static_assert(g_message_names.size() == NETMSG_COUNT, "no name stands twice");

using record_index = NAME_index<NETDSD_entry, 1024>;

constexpr void add_with_nested(record_index& index, const NETDSD_entry* dsd) {
    index.add(dsd);
    for (std::size_t i = 0; i < dsd->count_fields; ++i) {
        if (dsd->fields[i].ft == NETDSD_FT_BIN) add_with_nested(index, dsd->fields[i].nested);
    }
}

template <class R>
constexpr void add_record(record_index& index) {
    if constexpr (!std::is_void_v<R>) add_with_nested(index, NETDSD_of<R>());
}

constexpr record_index g_records = [] {
    record_index index;
#define NETDSD_ADD_TIED(name, record) add_record<record>(index);
    NETMSG_LIST(NETDSD_ADD_TIED)
#undef NETDSD_ADD_TIED
#define NETDSD_ADD_UNTIED(record) add_record<record>(index);
    NETDSD_UNTIED_LIST(NETDSD_ADD_UNTIED)
#undef NETDSD_ADD_UNTIED
    return index;
}();

}  // namespace

const NETMSG_entry* NETMSG_by_type(int type) {
    return type >= 0 && type < NETMSG_COUNT ? &g_messages[static_cast<std::size_t>(type)] : nullptr;
}

const NETMSG_entry* NETMSG_by_name(std::string_view name) {
    return g_message_names.find(name);
}

BOOL NETMSG_accepts(const NETMSG_entry* msg, const NETDSD_entry* dsd) {
    return dsd == nullptr || msg->dsd == nullptr || dsd == msg->dsd;
}

std::span<const NETMSG_entry> NETMSG_all() {
    return g_messages;
}

std::span<const NETDSD_entry* const> NETDSD_all() {
    return g_records.entries();
}

const NETDSD_entry* NETDSD_by_name(std::string_view name) {
    return g_records.find(name);
}
