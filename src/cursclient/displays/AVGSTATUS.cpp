// The state of the station's averaging: contamination, bypass and flush, until when and by whom, and the
// commands that change it for all instruments at once.
#include "cursclient/displays_generated.h"
#include "cursclient/kit/matchdisp.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/support/util.h"

namespace {

using source_name = char[32];

struct AVGSTATUS_prv_data : MATCHDISP_head {
    NET_LOG_AVG_Contamination contamination;
    NET_LOG_AVG_Bypass bypass;
    NET_LOG_AVG_ContamFlags causes;
    FTIME flush_until;  // the latest that any of them told
    source_name contaminated_by, bypassed_by, flushed_by;
};

void took_flush(AVGSTATUS_prv_data* pd, const VESKMSG_proc_msg* pm, FTIME until) {
    if (until < pd->flush_until && pm->msg->msg != MSG_LOG_AVG_FLUSH) return;
    pd->flush_until = until;
    UTIL_strcpynt(pd->flushed_by, pm->src_name);
}

void message(AVGSTATUS_prv_data* pd, const VESKMSG_proc_msg* pm) {
    if (pm->src_name == nullptr) return;
    if (const auto* contamination = VESKMSG_payload<NET_LOG_AVG_Contamination>(pm)) {
        pd->contamination = *contamination;
        UTIL_strcpynt(pd->contaminated_by, pm->src_name);
        took_flush(pd, pm, contamination->flush_until);
    } else if (const auto* bypass = VESKMSG_payload<NET_LOG_AVG_Bypass>(pm)) {
        pd->bypass = *bypass;
        UTIL_strcpynt(pd->bypassed_by, pm->src_name);
        took_flush(pd, pm, bypass->flush_until);
    } else if (const auto* flush = VESKMSG_payload<NET_LOG_AVG_Flush>(pm)) {
        took_flush(pd, pm, flush->flush_until);
    } else if (const auto* causes = VESKMSG_payload<NET_LOG_AVG_ContamFlags>(pm)) {
        pd->causes = *causes;
    }
}

void draw_state(const CANVAS& d, int row, const char* label, bool is_on, const char* on, const char* off,
                const char* by) {
    d.text(row, 1, label);
    (is_on ? d.fault() : d).text(row, 16, is_on ? on : off);
    d.text(row, 30, by);
}

void draw(AVGSTATUS_prv_data* pd, const CANVAS& d) {
    d.text(1, 16, "State         By");
    draw_state(d, 2, "Contamination:", pd->contamination.contaminated, "CONTAMINATED", "clean",
               pd->contaminated_by);
    draw_state(d, 3, "Bypass:", pd->bypass.bypassed, "BYPASSED", "sampling", pd->bypassed_by);
    d.text(4, 1, "Flush until:");
    d.text(4, 16, pd->flush_until > 0 ? INSTDISP_time(pd->flush_until).c_str() : "--:--:--");
    d.text(4, 30, pd->flushed_by);
    d.put(5, 1, "Causes:        %04X", pd->causes.flags);
}

void reset(AVGSTATUS_prv_data* pd) {
    pd->flush_until = -1;
}

// ---- commands: each is told to the whole station, after a Yes to what it will do and the password

struct command {
    NETMSG_type msg;
    int hot_key;
    const char* label;
    const char* question;
};

template <const command& C>
void send(AVGSTATUS_prv_data*, DWORD) {
    COMMAND_queue(C.msg, FRAME_TO_ALL, nullptr, nullptr, 0, nullptr);
}

template <const command& C>
void send_guarded(AVGSTATUS_prv_data*, DWORD uid) {
    COMMAND_run(uid, COMMAND_do<send<C>>, COMMAND_PASSWORD);
}

template <const command& C>
void ask(AVGSTATUS_prv_data*, DWORD uid) {
    COMMAND_confirm(C.question, uid, COMMAND_do<send_guarded<C>>);
}

constexpr command CONTAMINATE{.msg = MSG_CONTAMINATION_CONTAMINATE,
                              .hot_key = '2',
                              .label = "2 Contaminate",
                              .question = "Mark all averages as contaminated from now on?"};
constexpr command UNCONTAMINATE{.msg = MSG_CONTAMINATION_UNCONTAMINATE,
                                .hot_key = '3',
                                .label = "3 Uncontaminate",
                                .question = "Let averages count as clean again?"};
constexpr command BYPASS{.msg = MSG_CONTAMINATION_BYPASS,
                         .hot_key = '4',
                         .label = "4 Bypass",
                         .question = "Stop averaging and sampling at all instruments?"};
constexpr command UNBYPASS{.msg = MSG_CONTAMINATION_UNBYPASS,
                           .hot_key = '5',
                           .label = "5 Unbypass",
                           .question = "Begin averaging and sampling again?"};
constexpr command CONTAMINATE_OVERRIDE{
    .msg = MSG_CONTAMINATION_CONTAMINATEOVERRIDE,
    .hot_key = '6',
    .label = "6 Override: contaminate",
    .question = "Mark averages as contaminated whatever the station decides?"};
constexpr command UNCONTAMINATE_OVERRIDE{
    .msg = MSG_CONTAMINATION_UNCONTAMINATEOVERRIDE,
    .hot_key = '7',
    .label = "7 Override: uncontaminate",
    .question = "Let averages count as clean whatever the station decides?"};
constexpr command BYPASS_OVERRIDE{.msg = MSG_CONTAMINATION_BYPASSOVERRIDE,
                                  .hot_key = '8',
                                  .label = "8 Override: bypass",
                                  .question = "Stop averaging and sampling whatever the station decides?"};
constexpr command UNBYPASS_OVERRIDE{.msg = MSG_CONTAMINATION_UNBYPASSOVERRIDE,
                                    .hot_key = '9',
                                    .label = "9 Override: unbypass",
                                    .question = "Begin averaging and sampling whatever the station decides?"};

template <const command& C>
constexpr INSTDISP_menu_row<AVGSTATUS_prv_data> ROW{.hot_key = C.hot_key, .label = C.label, .action = ask<C>};
constexpr INSTDISP_menu_row<AVGSTATUS_prv_data> MENU[] = {
    ROW<CONTAMINATE>,          ROW<UNCONTAMINATE>,          ROW<BYPASS>,          ROW<UNBYPASS>,
    ROW<CONTAMINATE_OVERRIDE>, ROW<UNCONTAMINATE_OVERRIDE>, ROW<BYPASS_OVERRIDE>, ROW<UNBYPASS_OVERRIDE>};

constexpr NETMSG_type MADE_BY[] = {MSG_LOG_AVG_CONTAMINATION, MSG_LOG_AVG_FLUSH, MSG_LOG_AVG_BYPASS};
constexpr MATCHDISP_kind<AVGSTATUS_prv_data> KIND{.body = {.cols = 46,
                                                           .rows = 7,
                                                           .stores = {},
                                                           .draw = draw,
                                                           .reset = reset,
                                                           .menu = MENU,
                                                           .message = message,
                                                           .ignores_logging = true,
                                                           .any_source = true},
                                                  .display_name = "Averaging Status",
                                                  .made_by = MADE_BY};

}  // namespace

extern const DISPLAY_DECL DDCL_AVGSTATUS;
const DISPLAY_DECL DDCL_AVGSTATUS = MATCHDISP_decl<KIND>();
