// The registry of displays. Displays come to be at start, by an announcement or by a message that their kind
// asks for, and go with their instrument or when their kind says so; in between each of them is offered every
// message, key and redraw in the order of creation.
#include "cursclient/display.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "cursclient/globals.h"
#include "libvesk/support/util.h"

LL_TYPE g_displays;
DWORD g_display_uid_next = 1;

namespace {

constexpr std::string_view PERSISTENT = "PERSISTENT_";

std::span<const DISPLAY_DEFN> g_injected;
std::set<std::string> g_without_display;  // sources whose kind nothing shows, and that were reported

std::span<const DISPLAY_DEFN> kinds() {
    return g_injected.data() != nullptr ? g_injected : std::span(g_display_decls, g_n_display_decls);
}

DISPLAY_common_params common_params() {
    return {&g_lnk.msg_lnk, UTIL_ftime(), 0};
}

DISPLAY_type new_display(const DISPLAY_DECL* dcl, bool wasmatched, const char* match_name) {
    DISPLAY_type dsp{};
    dsp.cb_update = dcl->cb_update;
    dsp.cb_msg_proc = dcl->cb_msg_proc;
    dsp.cb_keypress = dcl->cb_keypress;
    dsp.cb_cleanup = dcl->cb_cleanup;
    dsp.cb_match = dcl->cb_match;
    dsp.wasmatched = wasmatched;
    UTIL_strcpynt(dsp.match_name, match_name);
    return dsp;
}

// Ends a display: what it made, then its record. Its node is the caller's business.
void release(const DISPLAY_type& dsp) {
    if (dsp.cb_cleanup != nullptr) dsp.cb_cleanup(dsp.prv_data);
    std::free(dsp.prv_data);
}

void append(const DISPLAY_type& dsp) {
    if (LL_insert_tail(&g_displays, &dsp, sizeof dsp) == nullptr) release(dsp);
}

// A display of one kind with a record of its own; nothing is made when its init refuses.
void create(const DISPLAY_DECL* dcl, DISPLAY_common_params* cps, DISPLAY_match_params* mps,
            const char* match_name) {
    DISPLAY_type dsp = new_display(dcl, mps != nullptr, match_name);
    if (dcl->sz_private != 0) {
        dsp.prv_data = std::calloc(dcl->sz_private, 1);
        if (dsp.prv_data == nullptr) {
            std::perror("(new.prv_data = calloc( g_display_decls[i].dcl->sz_private, 1)) == NULL");
            return;
        }
    }
    dsp.uid = g_display_uid_next++;
    cps->uid = dsp.uid;
    if (dcl->cb_init != nullptr && !dcl->cb_init(dsp.prv_data, cps, mps, &dsp)) {
        std::free(dsp.prv_data);
        return;
    }
    append(dsp);
}

bool is_of_source(const DISPLAY_type& dsp, const char* name) {
    return dsp.wasmatched && dsp.match_name[0] != '\0' && std::strcmp(dsp.match_name, name) == 0;
}

bool remove_of_source(void* data, void* name) {
    const DISPLAY_type& dsp = *static_cast<DISPLAY_type*>(data);
    if (!is_of_source(dsp, static_cast<const char*>(name))) return false;
    release(dsp);
    return true;
}

struct DISPLAY_distribute_msg_trv_param {
    DISPLAY_common_params cps;
    DISPLAY_msg_params msg;
};

void offer_message(void* data, void* param) {
    auto& dsp = *static_cast<DISPLAY_type*>(data);
    auto& p = *static_cast<DISPLAY_distribute_msg_trv_param*>(param);
    if (dsp.cb_msg_proc == nullptr) return;
    p.cps.uid = dsp.uid;
    dsp.cb_msg_proc(dsp.prv_data, &p.cps, &p.msg, &dsp);
}

bool remove_unwanted(void* data, void* param) {
    auto& dsp = *static_cast<DISPLAY_type*>(data);
    auto& p = *static_cast<DISPLAY_distribute_msg_trv_param*>(param);
    if (dsp.cb_match == nullptr) return false;
    p.cps.uid = dsp.uid;
    if (dsp.cb_match(dsp.prv_data, &p.cps, &p.msg, &dsp) != nullptr) return false;
    release(dsp);
    return true;
}

// Says once for each time that an instrument joins that there is nothing to see of it.
void complain_unknown(const char* src_name, const char* type) {
    if (g_without_display.insert(src_name).second)
        UTIL_complain("no display for %s: its kind \"%s\" is unknown here", src_name, type);
}

// Announcements and departures: what a message means for the registry itself.
void handle_own(const VESKMSG_proc_msg* pm) {
    if (pm->src_name == nullptr || pm->src_name[0] == '\0') return;
    if (pm->msg->msg == MSG_NOTIFY_CLIENT_TERMINATE) {
        DISPLAY_handle_disconnect(pm->src_name);
    } else if (pm->msg->msg == MSG_SERVER_INSTRUMENTINFO) {
        const auto* ii = VESKMSG_payload<NET_SERVER_InstrumentInfo>(pm);
        if (ii != nullptr) DISPLAY_instrument_register(pm->src_name, ii);
    }
}

}  // namespace

void DISPLAY_set_kinds(const DISPLAY_DEFN* rows, std::size_t count) {
    g_injected = {rows, count};
}

BOOL DISPLAY_init() {
    LL_init(&g_displays);
    g_display_uid_next = 1;
    DISPLAY_common_params cps = common_params();
    for (const DISPLAY_DEFN& row : kinds())
        if (std::string_view(row.match_type).starts_with(PERSISTENT))
            create(row.dcl, &cps, nullptr, row.match_type);
    return TRUE;
}

void DISPLAY_cleanup() {
    // One by one, so that a cleanup that looks other displays up finds living ones only.
    while (g_displays.head != nullptr) {
        release(*LL_data<DISPLAY_type>(g_displays.head));
        LL_delete_specfic(&g_displays, g_displays.head);
    }
    g_without_display.clear();
}

BOOL DISPLAY_handle_message(VESKMSG_proc_msg* pm) {
    handle_own(pm);
    DISPLAY_distribute_msg_trv_param p{common_params(), {pm}};
    DISPLAY_create_new_match(&p.cps, &p.msg);
    LL_transverse_forwards(&g_displays, offer_message, &p);
    LL_selective_delete(&g_displays, remove_unwanted, &p);
    return FALSE;
}

void DISPLAY_update() {
    DISPLAY_common_params cps = common_params();
    for (DISPLAY_type& dsp : LL_each<DISPLAY_type>(g_displays)) {
        if (dsp.cb_update == nullptr) continue;
        cps.uid = dsp.uid;
        dsp.cb_update(dsp.prv_data, &cps, &dsp);
    }
}

BOOL DISPLAY_distribute_keypress(int key) {
    DISPLAY_common_params cps = common_params();
    DISPLAY_keypress kp{key};
    for (DISPLAY_type& dsp : LL_each<DISPLAY_type>(g_displays)) {
        if (dsp.cb_keypress == nullptr) continue;
        cps.uid = dsp.uid;
        if (dsp.cb_keypress(dsp.prv_data, &cps, &kp, &dsp)) return TRUE;
    }
    return FALSE;
}

void DISPLAY_instrument_register(const char* src_name, const NET_SERVER_InstrumentInfo* ii) {
    if (DISPLAY_by_name(src_name) != nullptr) return;
    DISPLAY_common_params cps = common_params();
    DISPLAY_match_params mps{src_name, ii->type, ii->display_name, ii->id_ch};
    BOOL shown = FALSE;
    for (const DISPLAY_DEFN& row : kinds()) {
        if (std::strcmp(row.match_type, ii->type) != 0) continue;
        create(row.dcl, &cps, &mps, src_name);
        shown = shown || row.dcl->cb_init != nullptr;
    }
    if (!shown) complain_unknown(src_name, ii->type);
}

void DISPLAY_handle_disconnect(const char* name) {
    g_without_display.erase(name);
    LL_selective_delete(&g_displays, remove_of_source, const_cast<char*>(name));
}

void DISPLAY_create_new_match(DISPLAY_common_params* cps, DISPLAY_msg_params* msg) {
    for (const DISPLAY_DEFN& row : kinds()) {
        if (row.dcl->cb_match == nullptr) continue;
        void* prv_data = row.dcl->cb_match(nullptr, cps, msg, nullptr);
        if (prv_data == nullptr) continue;
        DISPLAY_type dsp = new_display(row.dcl, FALSE, "");
        dsp.prv_data = prv_data;
        dsp.uid = g_display_uid_next++;
        append(dsp);
    }
}

DISPLAY_type* DISPLAY_by_name(const char* name) {
    for (DISPLAY_type& dsp : LL_each<DISPLAY_type>(g_displays))
        if (is_of_source(dsp, name)) return &dsp;
    return nullptr;
}

void* DISPLAY_privatedata_by_uid(DWORD uid) {
    for (const DISPLAY_type& dsp : LL_each<DISPLAY_type>(g_displays))
        if (dsp.uid == uid) return dsp.prv_data;
    return nullptr;
}
