// Tests read the commands of displays at the other end of the link; time stands still until a test moves it.
#include "support/display_rig.h"

#include <optional>
#include <span>
#include <utility>

#include "cursclient/cursclient.h"
#include "cursclient/display.h"
#include "cursclient/displays_generated.h"
#include "libvesk/json/json_line.h"
#include "libvesk/messages/records/server.h"
#include "support/server_end.h"

using ::testing::AnyOf;

namespace {

FTIME g_now = 0;
std::optional<ServerEnd> g_server;

void cut_blanks(std::string* line) {
    line->erase(line->find_last_not_of(' ') + 1);
}

}  // namespace

std::vector<std::string> DisplayRig::kinds() {
    std::vector<std::string> all;
    for (const DISPLAY_DEFN& kind : std::span(g_display_decls, g_n_display_decls)) {
        const std::string type = kind.match_type;
        if (kind.dcl->cb_init != nullptr && !type.starts_with("PERSISTENT_")) all.push_back(type);
    }
    return all;
}

DisplayRig::DisplayRig(int lines, int cols) {
    start(lines, cols);
    set_time(START);
    UTIL_set_clock([] { return g_now; });
    g_server.emplace();
    EXPECT_TRUE(DISPLAY_init());
}

DisplayRig::~DisplayRig() {
    DISPLAY_cleanup();
    DISPLAY_set_kinds(nullptr, 0);
    g_server.reset();
}

void DisplayRig::set_time(FTIME now) {
    g_now = now;
}

DWORD DisplayRig::announce(const char* source, const char* type, const char* display_name, char id_ch) {
    NET_SERVER_InstrumentInfo info{};
    UTIL_strcpynt(info.type, type);
    UTIL_strcpynt(info.display_name, display_name);
    info.id_ch = id_ch;
    receive(source, MSG_SERVER_INSTRUMENTINFO, info);
    const DISPLAY_type* dsp = DISPLAY_by_name(source);
    return dsp != nullptr ? dsp->uid : 0;
}

void DisplayRig::leave(const char* source) {
    receive(source, MSG_NOTIFY_CLIENT_TERMINATE);
}

void DisplayRig::receive(const char* source, NETMSG_type msg, const NETDSD_entry* dsd, const void* payload) {
    VESKMSG_proc_msg pm{NETMSG_by_type(msg), dsd, 1, source, "", payload};
    message_proc(&pm, nullptr);
}

void DisplayRig::report(const char* source, NETMSG_type msg, const std::string& payload) {
    const std::string line =
        std::string(R"({"msg":")") + NETMSG_by_type(msg)->name + R"(","payload":)" + payload + "}";
    JSONLINE_message message;
    std::string error;
    ASSERT_TRUE(JSONLINE_read(line, &message, &error)) << error << " in " << line;
    receive(source, msg, message.dsd, message.payload.data());
}

WINS_window* DisplayRig::window(const char* ident) {
    WINS_UID uid{};
    UTIL_strcpynt(uid, ident);
    return WINS_window_by_uid(&uid);
}

WINS_window* DisplayRig::focus(const char* ident) {
    WINS_window* win = window(ident);
    WINS_focus_window(win);
    return win;
}

void DisplayRig::choose(const char* ident, std::string_view buttons) {
    focus(ident);
    press('m');
    type(buttons);
}

void DisplayRig::redraw() {
    DISPLAY_update();
    look();
}

// A hidden window is not drawn: it is in view for this one pass.
WINS_window* DisplayRig::redrawn(const char* ident) {
    WINS_window* win = window(ident);
    const BOOL was_visible = win != nullptr && std::exchange(win->visible, TRUE);
    redraw();
    win = window(ident);
    if (win != nullptr) win->visible = was_visible;
    return win;
}

std::string DisplayRig::inside(const char* ident) {
    const WINS_window* win = redrawn(ident);
    if (win == nullptr) return "(no window)";
    std::string all = "\n";
    for (int y = 1; y < getmaxy(win->win) - 1; ++y) {
        std::string line = TestScreen::row(win->win, y);
        // A rule joins the borders with its tees.
        EXPECT_THAT(line.front(), AnyOf('|', '+')) << "the left border is whole\n"
                                                   << TestScreen::dump(win->win);
        EXPECT_THAT(line.back(), AnyOf('|', '+')) << "the right border is whole\n"
                                                  << TestScreen::dump(win->win);
        line = line.substr(1, line.size() - 2);
        cut_blanks(&line);
        all += line + '\n';
    }
    all.erase(all.find_last_not_of('\n') + 1);
    return all + '\n';
}

std::string DisplayRig::row(const char* ident, int y) {
    const WINS_window* win = redrawn(ident);
    if (win == nullptr) return "(no window)";
    std::string line = TestScreen::row(win->win, y).substr(1);
    line.pop_back();
    cut_blanks(&line);
    return line;
}

int DisplayRig::color(const char* ident, int y, int x) {
    const WINS_window* win = redrawn(ident);
    if (win == nullptr) return 0;
    const int pair = TestScreen::color_pair(win->win, y, x);
    return (TestScreen::attributes(win->win, y, x) & A_BOLD) != 0 ? -pair : pair;
}

std::string DisplayRig::screen_text() {
    DISPLAY_update();
    return look();
}

std::vector<std::string> DisplayRig::take_sent() {
    return g_server->received();
}
