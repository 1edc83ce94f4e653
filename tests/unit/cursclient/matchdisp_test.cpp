// Displays that a message brings up: one of a kind, by whom it is fed, and when it goes.
#include "cursclient/kit/matchdisp.h"

#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/loopctl.h"
#include "libveskcurs/curskeys.h"
#include "support/display_rig.h"

namespace matchdisp_test {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

struct MATCHED_prv_data : MATCHDISP_head {
    NET_WATLOW_Channels now;
};

void draw(MATCHED_prv_data* pd, const CANVAS& d) {
    d.put(1, 1, "A: *~2.1f", pd->now.chA);
}
void stop_heating(MATCHED_prv_data* pd, DWORD /*uid*/) {
    COMMAND_send(pd, MSG_CPC_3010_STATUS);
}

constexpr NETMSG_type MADE_BY[] = {MSG_WATLOW_INSTANT, MSG_WATLOW_SETPOINTS};
constexpr INSTDISP_store<MATCHED_prv_data> STORES[] = {
    INSTDISP_store<MATCHED_prv_data>::into<&MATCHED_prv_data::now>(MSG_WATLOW_INSTANT)};
constexpr INSTDISP_menu_row<MATCHED_prv_data> MENU[] = {
    {.hot_key = '2', .label = "2 Stop", .action = stop_heating, .guard = COMMAND_PASSWORD}};
constexpr MATCHDISP_kind<MATCHED_prv_data> WINDOWED{
    .body = {.cols = 20, .rows = 4, .stores = STORES, .draw = draw, .menu = MENU},
    .display_name = "Heat of the station",
    .ident = "HEAT",
    .id_ch_of = []() -> char { return 'H'; },
    .made_by = MADE_BY,
    .is_over = MATCHDISP_source_left<MATCHED_prv_data>};
constexpr MATCHDISP_kind<MATCHED_prv_data> WINDOWLESS{
    .body = {.cols = 0, .rows = 0, .stores = STORES, .draw = nullptr, .menu = MENU, .any_source = TRUE},
    .display_name = "Heat switch",
    .id_ch = 'S',
    .made_by = MADE_BY};
const DISPLAY_DECL DDCL_HEAT = MATCHDISP_decl<WINDOWED>();
const DISPLAY_DECL DDCL_SWITCH = MATCHDISP_decl<WINDOWLESS>();
static_assert(MATCHDISP_decl<WINDOWLESS>().cb_update == nullptr);
static_assert(MATCHDISP_decl<WINDOWLESS>().cb_keypress == nullptr);

class MatchDisplay : public DisplayRig {
  protected:
    MatchDisplay() { DISPLAY_set_kinds(KINDS, std::size(KINDS)); }
    static void report(const char* source, double value) {
        receive(source, MSG_WATLOW_INSTANT, NET_WATLOW_Channels{value, 0});
    }
    const DISPLAY_DEFN KINDS[2] = {{"HEAT", &DDCL_HEAT}, {"SWITCH", &DDCL_SWITCH}};
};

TEST_F(MatchDisplay, ComesWithItsFirstMessageAndGoesWithItsSource) {
    const int others = g_displays.count;
    announce("X1", "HEAT", "An instrument of that name");
    receive("X1", MSG_NOTIFY_CLIENT_TERMINATE);
    EXPECT_EQ(g_displays.count, others);
    for (int time = 0; time < 2; ++time) {
        report("A1", 25);
        report("A2", 99);
        EXPECT_EQ(g_displays.count, others + 2) << "one of each kind";
        press(CURSKEYS_ALT + 'H');
        EXPECT_EQ(inside("HEAT"), "\nA: 25.0\n") << "that of the source which made it";
        receive("A2", MSG_NOTIFY_CLIENT_TERMINATE);
        EXPECT_NE(window("HEAT"), nullptr);
        press('m');
        receive("A1", MSG_NOTIFY_CLIENT_TERMINATE);
        EXPECT_EQ(window("HEAT"), nullptr);
        EXPECT_EQ(g_displays.count, others + 1);
        type("2");
        EXPECT_THAT(take_sent(), IsEmpty()) << "its menu finds it gone";
    }
}

TEST_F(MatchDisplay, OpensItsMenuFromTheMainMenuWhenItHasNoWindow) {
    report("A1", 25);
    press(CURSKEYS_ALT + 'S');
    EXPECT_THAT(screen_text(), AllOf(HasSubstr("Heat switch"), Not(HasSubstr("Hide window"))));
    type("2");
    EXPECT_THAT(take_sent(), ElementsAre("MSG_CPC_3010_STATUS to A1"));
}

}  // namespace matchdisp_test
