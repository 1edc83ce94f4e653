// Forms: every kind of row, what is sent of them, and what is refused.
#include "cursclient/kit/form.h"

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/loopctl.h"
#include "support/display_rig.h"

namespace form_test {

using ::testing::AllOf;
using ::testing::HasSubstr;

struct FORMS_prv_data : INSTDISP_head {
    NET_CPC_3010_Status status;
    NET_LOVEPID_Setpoints now;
};

struct values {
    char packed_after[3];
    NET_LOVEPID_Setpoints levels;
    std::int16_t count;
    BOOL heat;
    BYTE pump;
    WORD port;
    char name[6];
};

std::string g_sent;

void note_values(FORMS_prv_data*, const values& v) {
    g_sent = std::to_string(v.levels.sp[1]) + " " + std::to_string(v.count) + (v.heat ? " heat " : " cold ") +
             std::to_string(v.pump) + " " + std::to_string(v.port) + " " + v.name;
}

BOOL read_values(const FORMS_prv_data* pd, values* start) {
    start->levels = pd->now;
    start->count = 7;
    start->port = 2;
    UTIL_strcpynt(start->name, "air");
    return pd->status.have_comms;
}

std::vector<FORM_listed> ports(const FORMS_prv_data* pd) {
    return {{2, "two"}, {static_cast<double>(pd->status.flags), "by the flags"}};
}

constexpr FORM_choice PUMP[] = {{0, "Pump off"}, {1, "Pump slow"}, {5, "Pump fast"}};

using form = FORM<FORMS_prv_data, values>;
constexpr form::row ROWS[] = {
    form::note("", [](const FORMS_prv_data* pd) { return "About " + std::string(pd->name); }),
    form::number<&values::levels, &NET_LOVEPID_Setpoints::sp, 1>("Level: ",
                                                                 {.min = -5, .max = 5, .format = "%.1f"}),
    form::number<&values::count>("Count: ", {.min = 0, .max = 99999, .format = "%.0f", .x = 20}),
    form::text<&values::name>("Name: "),
    form::check<&values::heat>("Heat"),
    form::cycle<&values::pump>("", PUMP),
    form::pick<&values::port>("Ports", "Port: ", ports),
};
constexpr form ALL{.title = "All rows", .rows = ROWS, .read = read_values, .send = note_values};

FTIME g_until;

struct until_values {
    FTIME until;
};
void note_until(FORMS_prv_data*, const until_values& v) {
    g_until = v.until;
}
bool read_until(const FORMS_prv_data*, until_values* start) {
    start->until = VESK_NO_TIME;
    return true;
}
using until_form = FORM<FORMS_prv_data, until_values>;
constexpr until_form::row UNTIL_ROWS[] = {until_form::clock<&until_values::until>("Until: "),
                                          until_form::button("Leave", 1, 9, nullptr)};
constexpr until_form UNTIL{.title = "Until", .rows = UNTIL_ROWS, .read = read_until, .send = note_until};

constexpr INSTDISP_store<FORMS_prv_data> STORES[] = {
    INSTDISP_store<FORMS_prv_data>::into<&FORMS_prv_data::status>(MSG_CPC_3010_STATUS),
    INSTDISP_store<FORMS_prv_data>::into<&FORMS_prv_data::now>(MSG_LOVEPID_SETPOINTS)};
constexpr INSTDISP_menu_row<FORMS_prv_data> MENU[] = {
    {.hot_key = '2', .label = "2 All rows", .action = FORM_open<ALL>},
    {.hot_key = '3', .label = "3 Until", .action = FORM_open<UNTIL>}};
constexpr INSTDISP_kind<FORMS_prv_data> KIND{
    .cols = 30, .rows = 4, .stores = STORES, .draw = nullptr, .menu = MENU};

INSTDISP_BINDINGS(FORMS, forms, KIND)

constexpr DISPLAY_DEFN KINDS[] = {{"forms", &DDCL_forms}};

class Form : public DisplayRig {
  protected:
    Form() {
        DISPLAY_set_kinds(KINDS, std::size(KINDS));
        announce("F1", "forms", "Forms");
        comms(TRUE);
        g_sent.clear();
    }
    static void level(double value) {
        receive("F1", MSG_LOVEPID_SETPOINTS, NET_LOVEPID_Setpoints{{0, value, 0, 0}});
    }
    static void comms(BOOL have_comms) {
        NET_CPC_3010_Status status{};
        status.have_comms = have_comms;
        status.flags = 40000;
        receive("F1", MSG_CPC_3010_STATUS, status);
    }
    static void open() { choose("forms:F1", "2"); }
};

TEST_F(Form, SendsWhatEachRowShows) {
    level(1.26);
    open();
    EXPECT_THAT(screen_text(), AllOf(HasSubstr("About F1"), HasSubstr("Level: 1.3"), HasSubstr("Count: 7"),
                                     HasSubstr("Port: two"), HasSubstr("[ ] Heat")));
    press({KEY_LEFT, ENTER});
    EXPECT_EQ(g_sent, "1.300000 7 cold 0 2 air");

    open();
    press({KEY_UP, KEY_UP, ENTER, KEY_DOWN, ENTER});  // the list of ports, its second
    EXPECT_THAT(screen_text(), HasSubstr("Port: by the flags"));
    press({KEY_UP, ENTER, ENTER, ENTER, ENTER, ENTER});  // round the pump's choices, and two further
    EXPECT_THAT(screen_text(), HasSubstr("Pump fast"));
    press({KEY_UP, ENTER, KEY_UP});
    type("nitrogen");
    press({KEY_UP, KEY_RIGHT});
    type("70000\t\t\t\t\t\r");
    EXPECT_EQ(g_sent, "1.300000 4464 heat 5 40000 nitro")
        << "texts are cut and numbers wrap as their members do";
}

TEST_F(Form, RefusesValuesThatNobodyEnteredAndThatAreNone) {
    for (const double start : {VESK_MISSING, 5.1}) {
        level(start);
        open();
        press({KEY_LEFT, ENTER});
        EXPECT_TRUE(CURSDIALOG_active());
        EXPECT_EQ(g_sent, "");
        type("-5\t\t\t\t\t\t\r");
        EXPECT_FALSE(CURSDIALOG_active());
        EXPECT_EQ(std::exchange(g_sent, ""), "-5.000000 7 cold 0 2 air");
    }
}

TEST_F(Form, TakesTheNextTimeOfDay) {
    struct {
        const char* typed;
        FTIME until;
    } const cases[] = {{"22:30", START + 1000},    {"22:13:20", START + 86400}, {"24:00", VESK_NO_TIME},
                       {"22:59:60", VESK_NO_TIME}, {"22", VESK_NO_TIME},        {"-1:30", VESK_NO_TIME},
                       {"9:5:7:1", VESK_NO_TIME}};
    for (const auto& c : cases) {
        g_until = VESK_NO_TIME;
        choose("forms:F1", "3");
        press({KEY_LEFT, ENTER});
        ASSERT_TRUE(CURSDIALOG_active()) << "a time must be entered";
        type(c.typed);
        press(ENTER);
        EXPECT_EQ(c.until == VESK_NO_TIME,
                  screen_text().find("a time of day, as 22:30") != std::string::npos);
        press({TAB, TAB, ENTER});
        EXPECT_EQ(g_until, c.until) << c.typed;
        if (CURSDIALOG_active()) press({TAB, ENTER});
        EXPECT_FALSE(CURSDIALOG_active()) << "leaving asks for no time";
    }
}

TEST_F(Form, OpensOnlyWhenThereIsSomethingToRead) {
    comms(FALSE);
    open();
    EXPECT_FALSE(CURSDIALOG_active());
}

}  // namespace form_test
