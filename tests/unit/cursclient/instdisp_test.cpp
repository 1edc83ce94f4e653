// The shared body of instrument displays, on the skeleton and on a kind made for the test.
#include "cursclient/kit/instdisp.h"

#include <clocale>
#include <limits>

#include "cursclient/cursclient.h"
#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/log.h"
#include "libveskcurs/curskeys.h"
#include "support/display_rig.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

// ---- a kind with everything a kind can have

struct TESTER_prv_data : INSTDISP_head {
    NET_CPC_3010_Avg avg;
    NET_CPC_3010_Status status;
    WINS_window* extra;
    FTIME stored_at;
    int others;  // messages seen, whoever sent them
    int mode;
};

BOOL g_start_works = TRUE;
int g_stops = 0;

BOOL start(TESTER_prv_data* pd, DWORD /*uid*/) {
    pd->extra = WINS_create((std::string(pd->name) + ".extra").c_str(), 20, 4);
    return g_start_works;
}

void stop(TESTER_prv_data* pd) {
    ++g_stops;
    WINS_delete(pd->extra);
    pd->extra = nullptr;
}

void next_mode(TESTER_prv_data* pd, DWORD /*uid*/) {
    pd->mode = INSTDISP_next_mode(pd->mode);
}

void ask(TESTER_prv_data* /*pd*/, DWORD uid) {
    COMMAND_confirm("Really?", uid, COMMAND_do<next_mode>);
}

std::string mode_label(const TESTER_prv_data* pd) {
    return pd->mode == 9 ? "" : INSTDISP_mode_label('4', pd->mode);
}

void draw(TESTER_prv_data* pd, const CANVAS& d) {
    d.put(1, 1, "Average: *~5.1f and more than fits", pd->avg.concentration);
    d.rule(2, " title ");
    static constexpr int COLUMNS[] = {8, 16, 24};
    d.across(3, "Row:", COLUMNS, "*~3.1f", [](int i) { return i == 1 ? VESK_MISSING : i + 0.5; });
    d.block(4, 1);
    d.block(4, 28);
    d.block(4, 29);  // the border
    d.put(0, 1, "on the border");
    d.put(6, 1, "on the border");
    d.no_comms(5, pd->status.have_comms);
}

constexpr INSTDISP_store<TESTER_prv_data> STORES[] = {
    INSTDISP_store<TESTER_prv_data>::into<&TESTER_prv_data::avg>(
        MSG_CPC_3010_AVERAGE, [](TESTER_prv_data* pd, FTIME curtime) { pd->stored_at = curtime; }),
    INSTDISP_store<TESTER_prv_data>::into<&TESTER_prv_data::status>(MSG_CPC_3010_STATUS)};
constexpr INSTDISP_menu_row<TESTER_prv_data> MENU[] = {
    {.hot_key = '3', .label = "3 Ask", .action = ask},
    {.hot_key = '4', .action = next_mode, .label_of = mode_label},
    {.hot_key = '5', .label = "5 Last", .action = next_mode}};
constexpr INSTDISP_kind<TESTER_prv_data> KIND{
    .cols = 30,
    .rows = 7,
    .stores = STORES,
    .draw = draw,
    .reset = [](TESTER_prv_data* pd) { pd->status.flags = 3; },
    .key = [](TESTER_prv_data* pd, DWORD, int key) -> BOOL { return key == 'k' && ++pd->mode > 0; },
    .menu = MENU,
    .start = start,
    .stop = stop,
    .message = [](TESTER_prv_data* pd, const VESKMSG_proc_msg*) { ++pd->others; },
    .second_window = [](const TESTER_prv_data* pd) { return pd->extra; }};

}  // namespace

INSTDISP_BINDINGS(TESTER, tester, KIND)

namespace {

constexpr DISPLAY_DEFN KINDS[] = {{"tester", &DDCL_tester}};

class InstrumentDisplay : public DisplayRig {
  protected:
    InstrumentDisplay() { DISPLAY_set_kinds(KINDS, std::size(KINDS)); }
    ~InstrumentDisplay() override { g_start_works = TRUE; }

    TESTER_prv_data* meet(char id_ch = 't') {
        uid_ = announce("N11", "tester", "A tester", id_ch);
        return pd();
    }
    [[nodiscard]] TESTER_prv_data* pd() const { return COMMAND_display<TESTER_prv_data>(uid_); }
    DWORD uid_ = 0;
};

// ---- coming and going

class Skeleton : public DisplayRig {};

TEST_F(Skeleton, ComesAndGoesWithItsInstrument) {
    const int windows = g_window_list.count;
    const int entries = g_mainmenu_entrys.count;
    announce("N11", "inst_skel", "Bare instrument", 'b');
    WINS_window* win = window("inst_skel:N11");
    ASSERT_NE(win, nullptr);
    EXPECT_FALSE(win->visible) << "windows begin hidden";
    ASSERT_EQ(g_status_entrys.count, 1);
    EXPECT_EQ(LL_data<STATUS_entry>(g_status_entrys.head)->log_char, 'b');
    EXPECT_TRUE(LL_data<STATUS_entry>(g_status_entrys.head)->is_logging);

    press(CURSKEYS_ALT + 'b');
    EXPECT_TRUE(win->visible && win->focused) << "the menu entry leads to the window";
    EXPECT_THAT(screen_text(), HasSubstr("Bare instrument"));
    EXPECT_EQ(color("inst_skel:N11", 0, 0), -CP_YELLOW_BLUE) << "focused";
    EXPECT_EQ(inside("inst_skel:N11"), "\n");
    press('m');
    EXPECT_EQ(color("inst_skel:N11", 0, 0), CP_WHITE_BLUE) << "a dialog is open";
    EXPECT_THAT(screen_text(), HasSubstr("1 Hide window"));
    press('1');
    EXPECT_FALSE(win->visible);
    EXPECT_FALSE(CURSDIALOG_active());

    leave("N11");
    EXPECT_EQ(window("inst_skel:N11"), nullptr);
    EXPECT_EQ(g_window_list.count, windows);
    EXPECT_EQ(g_mainmenu_entrys.count, entries);
    EXPECT_EQ(g_status_entrys.count, 0);
}

TEST_F(Skeleton, AWindowThatComesUpShowsTheLatestAtOnce) {
    announce("N61", "cpc_3010", "Counter");
    receive("N61", MSG_CPC_3010_AVERAGE, NET_CPC_3010_Avg{START, 1234.5, 3});
    EXPECT_THAT(screen_text(), Not(HasSubstr("1234.5")));
    receive("N61", MSG_CPC_3010_AVERAGE, NET_CPC_3010_Avg{START, 77.5, 3});
    focus("cpc_3010:N61");
    EXPECT_THAT(screen_text(), HasSubstr(" 77.5"));
}

TEST_F(InstrumentDisplay, WithoutIdentifierHasNoIndicatorAndNoHotKey) {
    meet(0);
    ASSERT_NE(pd(), nullptr);
    EXPECT_EQ(pd()->se, nullptr);
    EXPECT_EQ(pd()->mme->sc_char, 0);
    EXPECT_EQ(g_status_entrys.count, 0);
    receive("N11", MSG_LOG_INFO, NET_LOG_Info{FALSE});
    EXPECT_TRUE(pd()->is_logging) << "without an indicator nobody asks";
}

TEST_F(InstrumentDisplay, AnInitThatFailsLeavesNothingBehind) {
    const int windows = g_window_list.count;
    const int entries = g_mainmenu_entrys.count;
    g_start_works = FALSE;
    EXPECT_EQ(announce("N11", "tester"), 0U);
    EXPECT_EQ(g_window_list.count, windows);
    EXPECT_EQ(g_mainmenu_entrys.count, entries);
    EXPECT_EQ(g_status_entrys.count, 0);
    g_start_works = TRUE;
    EXPECT_NE(meet(), nullptr) << "the identity is free again";

    const DISPLAY_DEFN twice[] = {{"tester", &DDCL_tester}, {"tester", &DDCL_tester}};
    DISPLAY_set_kinds(twice, 2);
    leave("N11");
    meet();
    EXPECT_EQ(g_status_entrys.count, 2) << "a second display of that identity has a window too";
    EXPECT_TRUE(window("tester:N11")->saveable) << "and the first is not harmed";
}

// ---- messages

TEST_F(InstrumentDisplay, StartsWithEverythingMissingAndTakesOnlyItsOwnRecords) {
    meet();
    const NET_CPC_3010_Avg average{1, 2, 3};
    set_time(START + 5);
    const int seen = pd()->others;
    receive("N12", MSG_CPC_3010_AVERAGE, average);
    receive("", MSG_CPC_3010_AVERAGE, average);
    receive(nullptr, MSG_CPC_3010_AVERAGE, average);
    receive("N11", MSG_CPC_3010_AVERAGE);
    receive("N11", MSG_CPC_3010_AVERAGE, NET_CPC_3022_Avg{7, 8, 9});
    receive("N11", MSG_CPC_3022_AVERAGE, average);
    EXPECT_EQ(pd()->others, seen + 6) << "a kind may look at everything";
    EXPECT_EQ(pd()->avg.concentration, VESK_MISSING);
    EXPECT_EQ(pd()->avg.start_time, VESK_NO_TIME);
    EXPECT_EQ(pd()->status.flags, 3) << "as its reset says";
    EXPECT_EQ(pd()->stored_at, 0);
    receive("N11", MSG_CPC_3010_AVERAGE, average);
    EXPECT_EQ(pd()->avg.concentration, 2);
    EXPECT_EQ(pd()->avg.stddev_concentration, 3);
    EXPECT_EQ(pd()->stored_at, START + 5);
}

TEST_F(InstrumentDisplay, FollowsTheLoggingStateOfItsOwnSource) {
    meet();
    const auto indicator = [] { return LL_data<STATUS_entry>(g_status_entrys.head)->is_logging; };
    receive("N12", MSG_LOG_INFO, NET_LOG_Info{FALSE});
    receive("N11", MSG_LOG_INFO);
    receive("N11", MSG_LOG_INFO, NET_CPC_3703_Status{FALSE});
    EXPECT_TRUE(pd()->is_logging && indicator());
    receive("N11", MSG_LOG_INFO, NET_LOG_Info{FALSE});
    EXPECT_FALSE(pd()->is_logging || indicator());
    receive("N11", MSG_LOG_INFO, NET_LOG_Info{TRUE});
    EXPECT_TRUE(pd()->is_logging && indicator());
}

// ---- the screen

TEST_F(InstrumentDisplay, ClipsEverythingToItsInside) {
    meet();
    focus("tester:N11");
    redraw();
    WINDOW* win = window("tester:N11")->win;
    EXPECT_EQ(TestScreen::dump(win),
              "+----------A tester----------+\n"
              "|Average: -----.- and more th|\n"
              "+----------- title ----------+\n"
              "|Row:     0.5   ---.-     2.5|\n"
              "|#                          #|\n"
              "|          NO COMMS          |\n"
              "+----------------------------+\n");
    EXPECT_EQ(color("tester:N11", 2, 3), -CP_YELLOW_BLUE) << "a rule belongs to the frame";
    EXPECT_EQ(color("tester:N11", 3, 1), CP_WHITE_BLUE);
    EXPECT_EQ(color("tester:N11", 4, 1), CP_WHITE_BLUE);
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_EQ(row("tester:N11", 4), "#                          #")
        << "a real block where the locale has one";
    EXPECT_EQ(color("tester:N11", 4, 1), CP_WHITE_BLUE);
    std::setlocale(LC_CTYPE, "C");
}

TEST(InstrumentDisplayTime, IsTheUtcTimeOfDayRoundedDown) {
    const struct {
        FTIME t;
        const char* text;
    } cases[] = {
        {1700000000.999, "22:13:20"},
        {-1, "23:59:59"},
        {VESK_MISSING, "00:00:00"},
        {-1e300, "--:--:--"},
        {std::numeric_limits<double>::quiet_NaN(), "--:--:--"},
        {std::numeric_limits<double>::infinity(), "--:--:--"},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(INSTDISP_time(c.t).c_str(), c.text) << c.t;
}

// ---- keys and menu

TEST_F(InstrumentDisplay, UsesKeysOnlyWhileItHasTheFocus) {
    meet();
    announce("N12", "tester");
    DISPLAY_common_params cps{nullptr, START, uid_};
    DISPLAY_keypress k{'k'};
    WINS_focus_window(window("tester:N12"));
    EXPECT_FALSE(TESTER_keypress(pd(), &cps, &k, nullptr));
    const WINS_window* win = focus("tester:N11");
    EXPECT_TRUE(TESTER_keypress(pd(), &cps, &k, nullptr));
    EXPECT_EQ(pd()->mode, 1);
    k.key = 'z';
    EXPECT_FALSE(TESTER_keypress(pd(), &cps, &k, nullptr));
    const int x = getbegx(win->win);
    press(KEY_LEFT);
    EXPECT_EQ(getbegx(win->win), x - 1);
    focus("N11.extra");
    press('k');
    EXPECT_EQ(pd()->mode, 2) << "its second window counts as well";
    press(CURSKEYS_ESCAPE);
    EXPECT_FALSE(window("N11.extra")->visible);
    EXPECT_TRUE(window("tester:N11")->visible);
    press(CURSKEYS_CTRL_W);
    EXPECT_FALSE(window("tester:N11")->visible);
}

TEST_F(InstrumentDisplay, MenuFollowsTheState) {
    meet();
    focus("tester:N11");
    type("M4m");
    EXPECT_THAT(screen_text(), HasSubstr("4 Displaying running average"));
    press('4');
    pd()->mode = 9;
    press('m');
    EXPECT_THAT(screen_text(), Not(HasSubstr("Displaying")));
    EXPECT_THAT(screen_text(), HasSubstr("5 Last"));
    press('4');
    EXPECT_EQ(pd()->mode, 9) << "what is not offered has no key either";
    press('5');
    EXPECT_EQ(pd()->mode, 0);
    EXPECT_FALSE(CURSDIALOG_active());
    TESTER_open_menu(nullptr, uid_);
    EXPECT_FALSE(CURSDIALOG_active());
    press('m');
    leave("N11");
    press('3');
    EXPECT_FALSE(CURSDIALOG_active()) << "a menu that outlived its display asks nothing";
    EXPECT_THAT(take_sent(), IsEmpty());
}

}  // namespace
