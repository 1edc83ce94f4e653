// The shell of the console. Start-up brings the layers up one by one and counts those that stand; the exit
// handler takes exactly those down again. One pass of the loop is the whole story of a redraw: messages in,
// keys in, erase, draw bottom to top, one physical update, sleep.
#include "cursclient/cursclient.h"

#include <curses.h>
#include <panel.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "cursclient/conffile.h"
#include "cursclient/debug.h"
#include "cursclient/display.h"
#include "cursclient/keyhelp.h"
#include "cursclient/mainmenu.h"
#include "cursclient/mouse.h"
#include "cursclient/overview.h"
#include "cursclient/passwd.h"
#include "cursclient/reconnect.h"
#include "cursclient/snapshot.h"
#include "cursclient/status.h"
#include "cursclient/wins.h"
#include "cursclient/winscreen.h"
#include "libvesk/link/io.h"
#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog.h"
#include "libveskcurs/curskeys.h"

namespace {

constexpr double PASS_SECONDS = 0.2;  // sleep of an idle pass, and the period of the tick

constexpr int EXIT_NO_SERVER = 1;
constexpr int EXIT_NO_START = 2;

int g_sys_init = 0;  // stages that stand, 0 to 10

// The counted stages after the link, in order; each is undone by the exit handler when its number was
// reached. The capture of standard error has no stage of its own: it spans all of them.
struct stage {
    BOOL (*init)();
    void (*cleanup)();
};

BOOL init_io() {
    if (!DEBUG_preinit() || !IO_init()) return FALSE;
    IO_register_link(&g_lnk);
    return TRUE;
}

BOOL init_windows() {
    if (!CONFFILE_is_usable()) return FALSE;
    load_conf_file();  // no file is no error: every setting has a default
    return WINS_init();
}

constexpr stage STAGES[] = {
    {init_io, IO_cleanup},           {init_windows, WINS_cleanup},  {CURSDIALOG_init, CURSDIALOG_cleanup},
    {STATUS_init, STATUS_cleanup},   {PASSWD_init, PASSWD_cleanup}, {MAINMENU_init, MAINMENU_cleanup},
    {DISPLAY_init, DISPLAY_cleanup}, {DEBUG_init, DEBUG_cleanup},
};
constexpr CONFFILE_owner CONF_OWNERS[] = {MAINMENU_save_config, WINS_save_window_setup, PASSWD_save_config};

constexpr int STAGE_LIBRARY = 1;
constexpr int STAGE_LINK = 2;
constexpr int STAGE_COUNT = STAGE_LINK + static_cast<int>(std::size(STAGES));
static_assert(STAGE_COUNT == 10);

void atexit_cleanup() {
    UTIL_atexit_set_signal_mask();
    OVERVIEW_cleanup();
    for (int s = STAGE_COUNT; s > STAGE_LINK; --s)
        if (g_sys_init >= s) STAGES[s - STAGE_LINK - 1].cleanup();
    // Only now that curses has given the terminal back can captured text be shown on it.
    DEBUG_release_stderr();
    if (g_sys_init >= STAGE_LINK) INST_disconnect(&g_lnk);
    if (g_sys_init >= STAGE_LIBRARY) LIBVESK_cleanup();
    CONF_free(g_conf);
    g_conf = nullptr;
    g_sys_init = 0;
}

int connection_failed() {
    static constexpr char TEXT[] = "\n\n *** Failed to connect to server\n\n";
    std::fwrite(TEXT, 1, sizeof TEXT - 1, stderr);
    const std::string reason = VESKMSG_error(&g_lnk.msg_lnk);
    if (!reason.empty()) UTIL_complain("%s", reason.c_str());
    return EXIT_NO_SERVER;
}

// Stages 1 and 2; 0 when both stand, else the exit code.
int start_link() {
    if (!LIBVESK_init("CURSCLIENT")) {
        UTIL_assertion_failed("cursclient.c", 162, "LIBVESK_init(\"CURSCLIENT\")");
        return EXIT_NO_SERVER;
    }
    g_sys_init = STAGE_LIBRARY;
    VESKMSG_connect_params cps;
    VESKMSG_init_params(&cps);
    cps.id_str = "CLIENT";
    cps.host_override = g_hostoverride;
    if (!INST_connect(&g_lnk, &cps)) return connection_failed();
    g_sys_init = STAGE_LINK;
    return INST_wait_connected(&g_lnk) ? 0 : connection_failed();
}

// Sleeps until a key waits (TRUE), the terminal takes more of a picture that it left standing, or for that
// long. What comes over the link meanwhile is taken from the socket now and then, which holds no more than a
// fraction of what thousands of messages a second are in that time.
BOOL sleep_a_pass(double seconds, BOOL watch_keyboard) {
    static constexpr int LOOKS = 4;
    VESKMSG_link* const links[] = {&g_lnk.msg_lnk};
    pollfd fds[] = {{watch_keyboard ? CURSKEYS_input_fd() : -1, POLLIN, 0},
                    {WINSCREEN_waiting_fd(), POLLOUT, 0}};
    for (int i = 0; i < LOOKS; ++i) {
        if (UTIL_wait_fds(fds, seconds / LOOKS)) return fds[0].revents != 0;
        VESKMSG_wait(links, 0);
    }
    return FALSE;
}

// An idle pass lasts until its tick, and never longer than that takes, whatever the clock says.
double seconds_to_tick(FTIME ticktime) {
    const double left = ticktime - UTIL_ftime();
    return left < PASS_SECONDS ? std::max(left, 0.0) : PASS_SECONDS;
}

[[noreturn]] void main_loop(FTIME ticktime) {
    BOOL woken = FALSE;  // before this pass, by the keyboard
    for (;;) {
        VESKMSG_process_messages(&g_lnk.msg_lnk, message_proc, nullptr);
        if (!INST_test_connected(&g_lnk) && !RECONNECT_wait()) std::exit(0);
        if (UTIL_exit_poll() || CURSKEYS_terminal_lost()) std::exit(0);
        WINSCREEN_stop_if_asked();
        const BOOL short_sleep = CURSKEYS_handle_keys(DEBUG_rawkeypress, distribute_key);
        if (WINSCREEN_ready()) redraw();
        if (short_sleep) {
            woken = FALSE;
            UTIL_sched_yield();
        } else {
            // A keyboard that has something but gives no key must not keep the loop awake.
            woken = sleep_a_pass(seconds_to_tick(ticktime), !woken);
        }
        const FTIME curtime = UTIL_ftime();
        // A clock that was set back must not freeze the tick.
        if (ticktime > curtime + PASS_SECONDS) ticktime = curtime + PASS_SECONDS;
        if (curtime >= ticktime) {
            ticktime = curtime + PASS_SECONDS;
            ++g_tick;
        }
    }
}

}  // namespace

const std::span<const CONFFILE_owner> g_conf_owners = CONF_OWNERS;

void print_usage() {
    static constexpr char TEXT[] =
        "Usage: vesk.cursclient [-h] [-c FILENAME] [HOSTNAME]\n"
        "\t-c FILENAME\tLoad configuration from FILENAME\n"
        "\t\t\t(default: $HOME/.veskcursclient.conf)\n"
        "\t-h\t\tDisplay this message\n"
        "\tHOSTNAME\tHostname to connect to (default: local unix socket)\n";
    static_assert(sizeof TEXT - 1 == 228);
    std::fwrite(TEXT, 1, sizeof TEXT - 1, stderr);
}

void proc_arguments(int argc, char** argv) {
    int i = 1;
    for (; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "-h" || argument == "--help") {
            print_usage();
            std::exit(1);
        }
        if (argument != "-c") break;
        if (i < argc - 1) g_conffile = argv[++i];
    }
    if (i < argc) g_hostoverride = argv[i];
}

void message_proc(VESKMSG_proc_msg* pm, void* /*param*/) {
    OVERVIEW_message(pm);
    if (!DEBUG_handle_message(pm)) DISPLAY_handle_message(pm);
}

void distribute_key(int key) {
    DEBUG_interpkeypress(key);
    if (key == KEY_RESIZE) {  // no key of the operator's: the next pass draws everything on the new screen
        WINS_screen_resized();
        return;
    }
    if (key == CURSKEYS_CTRL_L) {  // nor one for any window: the terminal's picture is wrong
        WINSCREEN_repaint();
        return;
    }
    if (key == KEY_MOUSE && (key = MOUSE_key(key)) == 0) return;
    if (CURSDIALOG_keypress(key)) return;
    if (WINS_keypress(key)) return;
    if (OVERVIEW_keypress(key) || KEYHELP_keypress(key) || SNAPSHOT_keypress(key)) return;
    if (DEBUG_keypress(key)) return;
    if (DISPLAY_distribute_keypress(key)) return;
    MAINMENU_keypress(key);
}

void redraw() {
    STATUS_update();
    WINS_update();
    MAINMENU_update();
    CURSDIALOG_update();
    DISPLAY_update();
    OVERVIEW_update();
    RECONNECT_update();
    DEBUG_update();
    WINS_show_pictures();
    update_panels();
    WINSCREEN_title(OVERVIEW_title());
    WINSCREEN_update();
}

int CURSCLIENT_main(int argc, char** argv) {
    proc_arguments(argc, argv);
    g_tick = 1;
    const FTIME ticktime = UTIL_ftime();
    g_sys_init = 0;
    std::atexit(atexit_cleanup);
    UTIL_exit_signal_poll_setup_hup();
    if (const int code = start_link(); code != 0) return code;
    for (const stage& s : STAGES) {
        if (!s.init()) return EXIT_NO_START;
        ++g_sys_init;
    }
    MOUSE_start();
    main_loop(ticktime);
}
