// Cases that run over the displays of all kinds: a first screen without values, a window that
// survives any screen, and commands that are guarded, addressed, and never sent on behalf of an instrument
// that went.
#include <algorithm>
#include <map>
#include <optional>
#include <regex>

#include "support/display_rig.h"

namespace {

using ::testing::IsEmpty;
using list = std::vector<std::string>;

class Kinds : public DisplayRig {
  protected:
    explicit Kinds(int lines = 40, int cols = 100) : DisplayRig(lines, cols) {}

    static std::string ident(const std::string& type) { return type + ":X1"; }
    // The only instrument, new; its window has the focus.
    static void meet(const std::string& type) {
        leave("X1");
        announce("X1", type.c_str());
        focus(ident(type).c_str());
    }
    static std::string size(const std::string& type) {
        const WINS_window* win = redrawn(ident(type).c_str());
        return std::to_string(getmaxx(win->win)) + "x" + std::to_string(getmaxy(win->win));
    }
};

// ---- the window

struct first_screen {
    const char* size;
    int alarm_row;        // where it says NO COMMS
    const char* numbers;  // values that are there before any report: counts, states and words of flags
};

const std::map<std::string, first_screen> FIRST_SCREENS{
    {"aethalometer", {"75x11", 9, ""}},
    {"bestups", {"46x13", 9, ""}},
    {"caps", {"37x13", 11, "0000"}},
    {"ccn", {"41x23", 11, ""}},
    {"clap3w", {"52x15", 13, "0 0000"}},
    {"cpc_3010", {"31x12", 10, "0.0"}},
    {"cpc_3022", {"31x14", 12, ""}},
    {"cpc_3703", {"31x7", 5, ""}},
    {"cpc_3775", {"31x18", 16, "0"}},
    {"cpc_3781", {"31x12", 10, ""}},
    {"cpc_3783", {"61x14", 12, "0"}},
    {"cpc_bmi1710", {"56x11", 9, "0"}},
    {"cpc_pulse", {"31x7", 5, ""}},
    {"genericpid", {"31x6", 0, ""}},
    {"grimm", {"54x22", 11, ""}},
    {"hygrometer", {"46x9", 7, ""}},
    {"lasair", {"34x22", 11, ""}},
    {"lovepid", {"43x7", 0, ""}},
    {"maap", {"34x18", 16, ""}},
    {"neph", {"55x18", 15, "9999 FFFF"}},
    {"neph_passive", {"55x18", 15, "9999 FFFF"}},
    {"nephM903", {"31x11", 9, ""}},
    {"neph_aurora3000", {"55x15", 12, "FFFF"}},
    {"pax", {"60x15", 13, ""}},
    {"psap", {"28x14", 12, "0 0"}},
    {"psap3", {"58x14", 12, ""}},
    {"sems", {"69x22", 11, ""}},
    {"inst_skel", {"30x6", 0, ""}},
    {"tsitmf", {"46x7", 5, ""}},
    {"verticalprofile", {"29x9", 0, ""}},
    {"watlow", {"27x6", 4, ""}},
};

TEST_F(Kinds, BeginWithNothingMeasured) {
    EXPECT_EQ(FIRST_SCREENS.size(), kinds().size());
    for (const std::string& type : kinds()) {
        SCOPED_TRACE(type);
        meet(type);
        const first_screen& expected = FIRST_SCREENS.at(type);
        EXPECT_EQ(size(type), expected.size);
        const std::string screen = inside(ident(type).c_str());
        static const std::regex NUMBER(R"(\s(-?\d+(\.\d+)?|[0-9A-F]{4})(?=\s))");
        std::string numbers;
        for (std::sregex_iterator it(screen.begin(), screen.end(), NUMBER), end; it != end; ++it)
            numbers += (numbers.empty() ? "" : " ") + (*it)[1].str();
        EXPECT_EQ(numbers, expected.numbers) << screen;
        const std::size_t alarm = screen.find("NO COMMS");
        EXPECT_EQ(alarm == std::string::npos
                      ? 0
                      : std::count(screen.begin(), screen.begin() + static_cast<long>(alarm), '\n'),
                  expected.alarm_row)
            << screen;
    }
}

class KindsOnASmallScreen : public Kinds {
  protected:
    KindsOnASmallScreen() : Kinds(8, 20) {}
};

TEST_F(KindsOnASmallScreen, StayInsideTheirFramesAndGetTheirSizeBackWithTheScreen) {
    for (const std::string& type : kinds()) {
        meet(type);
        inside(ident(type).c_str());  // looks at the borders
        resize(40, 100);
        EXPECT_EQ(size(type), FIRST_SCREENS.at(type).size) << type;
        resize(8, 20);
    }
}

// ---- commands

struct command {
    const char *type, *menu_keys;
    list sent;
    std::vector<int> dialog = {};          // the keys that lead through it
    std::optional<NETMSG_type> said = {};  // what the instrument said before, and with which values
    const char* values = "{}";
};

class KindsCommands : public Kinds {
  protected:
    static const std::vector<command> COMMANDS;

    static void meet(const command& c) {
        Kinds::meet(c.type);
        if (c.said) report("X1", *c.said, c.values);
    }
    // Nothing was sent and nothing is asked.
    static void expect_nothing(const char* why) {
        EXPECT_THAT(take_sent(), IsEmpty()) << why;
        EXPECT_FALSE(CURSDIALOG_active()) << why;
    }
};

const std::vector<command> KindsCommands::COMMANDS{
    {"caps", "m2", {"MSG_CAPS_ISSUE_ZERO to X1"}},
    {"ccn", "m2", {R"(MSG_CCN_SET_SCANNING to X1 {"sp":null,"enable":true,"set_enable":true})"}},
    {"ccn",
     "m3",
     {R"(MSG_CCN_SET_SCANNING to X1 {"sp":7,"enable":true,"set_enable":false})"},
     {KEY_UP, KEY_UP, '7', TAB, ENTER}},
    {"ccn", "m4", {R"(MSG_CCN_START_CALIBRATION to X1 {"cycles":1})"}, {KEY_LEFT, ENTER}},
    {"ccn", "m4", {"MSG_CCN_STOP_CALIBRATION to X1"}, {}, MSG_CCN_STATUS, R"({"in_calibration":true})"},
    {"clap3w", "m2", {"MSG_CLAP3W_FILTERCHANGE to X1"}},
    {"clap3w",
     "m2",
     {"MSG_CLAP3W_FILTERCHANGE to X1"},
     {KEY_LEFT, ENTER},
     MSG_CLAP3W_FILTERSTATUS,
     R"({"status":2})"},
    {"clap3w", "m3", {"MSG_CLAP3W_WHITECHANGE to X1"}},
    {"clap3w", "m4", {"MSG_CLAP3W_SPOTADVANCE to X1"}},
    {"clap3w", "m5", {"MSG_CLAP3W_NOFLOW to X1"}, {KEY_UP, ENTER}},
    {"clap3w", "m5", {"MSG_CLAP3W_FLOW to X1"}, {KEY_UP, KEY_LEFT, ENTER}},
    {"clap3w",
     "m5",
     {"MSG_CLAP3W_NOFLOWOVERRIDE to X1"},
     {KEY_UP, KEY_UP, KEY_UP, ENTER, KEY_DOWN, KEY_RIGHT, ENTER}},
    {"clap3w", "m5", {"MSG_CLAP3W_FLOWOVERRIDE to X1"}, {KEY_UP, KEY_UP, KEY_UP, ENTER, KEY_DOWN, ENTER}},
    {"genericpid", "m2", {R"(MSG_GENERICPID_SET to X1 {"sp":5})"}, {KEY_UP, KEY_UP, '5', TAB, ENTER}},
    {"genericpid",
     "m4",
     {R"(MSG_GENERICPID_SET_PARMS to X1 {"params":{"p":null,"i":null,"d":null},)"
      R"("min":{"p":null,"i":null,"d":null},"max":{"p":null,"i":null,"d":null}})"},
     {KEY_LEFT, ENTER}},
    {"genericpid",
     "m5",
     {R"(MSG_GENERICPID_TUNING_START to X1 {"stablity_samples":120,"stablity_stddev":4.9995e-101,)"
      R"("num_runs":8,"num_prime":2,"start_out":null,"output_amp":2.49975e-99,"param_gen":0})"},
     {KEY_LEFT, ENTER}},
    {"genericpid",
     "m5",
     {"MSG_GENERICPID_TUNING_STOP to X1"},
     {},
     MSG_GENERICPID_TUNING_STATUS,
     R"({"state":1})"},
    {"lovepid",
     "m2",
     {R"(MSG_LOVEPID_SET to X1 {"sp":5,"addr":16})"},
     {KEY_UP, KEY_UP, KEY_UP, '5', KEY_DOWN, KEY_DOWN, ENTER},
     MSG_LOVEPID_STATUS,
     R"({"addrs":[16]})"},
    {"maap", "m2", {"MSG_MAAP_ADVANCE to X1"}},
    {"neph", "m3", {"MSG_NEPH_ISSUE_ZERO to X1"}},
    {"neph",
     "m4",
     {R"(MSG_NEPH_CONFIG to X1 {"smz":1,"sta":1,"stb":60,"stp":3600,"stz":300,"smb":true,"sp":75,"l":true,)"
      R"("sx":0,"b":255,"svb":0,"svg":0,"svr":0})"},
     {KEY_UP, KEY_LEFT, ENTER}},
    {"neph",
     "m5",
     {"MSG_COMMON_NEPH_SPANCHECK_ABORT flags 1"},
     {},
     MSG_COMMON_NEPH_SPANCHECK_PHASE,
     R"({"phase":3})"},
    {"neph_aurora3000", "m3", {"MSG_NEPHAURORA3000_ISSUE_ZERO to X1"}},
    {"psap", "m2", {R"(MSG_PSAP_SETFILTERSATUS to X1 {"changing_filter":true})"}},
    {"psap",
     "m2",
     {R"(MSG_PSAP_SETFILTERSATUS to X1 {"changing_filter":false})"},
     {KEY_LEFT, ENTER},
     MSG_PSAP_FILTERSTATUS,
     R"({"changing_filter":true})"},
    {"psap3", "m2", {R"(MSG_PSAP3_SETFILTERSATUS to X1 {"changing_filter":true})"}},
    {"psap3",
     "m2",
     {R"(MSG_PSAP3_SETFILTERSATUS to X1 {"changing_filter":false})"},
     {KEY_LEFT, ENTER},
     MSG_PSAP3_FILTERSTATUS,
     R"({"changing_filter":true})"},
    {"verticalprofile", "m2", {R"(MSG_VERTICALPROFILE_SET_ENABLED to X1 {"enabled":true})"}},
    {"verticalprofile",
     "m2",
     {R"(MSG_VERTICALPROFILE_SET_ENABLED to X1 {"enabled":false})"},
     {},
     MSG_VERTICALPROFILE_ALL,
     R"({"enabled":true})"},
    {"verticalprofile", "m4", {"MSG_VERTICALPROFILE_RESETTASKS to X1"}},
};

TEST_F(KindsCommands, ReachTheirInstrumentAloneAndOnlyWithThePassword) {
    for (const command& c : COMMANDS) {
        SCOPED_TRACE(std::string(c.type) + " " + c.menu_keys);
        g_passwd[0] = '\0';
        meet(c);
        type(c.menu_keys);
        for (const int key : c.dialog)
            press(key);
        EXPECT_EQ(take_sent(), c.sent) << screen_text();
        EXPECT_FALSE(CURSDIALOG_active());

        UTIL_strcpynt(g_passwd, "abc");
        type(c.menu_keys + std::string("abd\r"));
        expect_nothing("a wrong password");
        type(c.menu_keys);
        meet(c);
        type("abc\r");
        expect_nothing("one that comes back under the same name is another");
        type(c.menu_keys + std::string("abc\r"));
        for (const int key : c.dialog)
            press(key);
        EXPECT_EQ(take_sent(), c.sent) << screen_text();
    }
}

TEST_F(KindsCommands, DialogsOfADisplayThatWentSendNothing) {
    for (const command& c : COMMANDS) {
        SCOPED_TRACE(std::string(c.type) + " " + c.menu_keys);
        for (std::size_t gone = 0; gone < c.dialog.size(); ++gone) {
            meet(c);
            type(c.menu_keys);
            for (std::size_t i = 0; i < c.dialog.size(); ++i) {
                if (i == gone) leave("X1");
                press(c.dialog[i]);
            }
            expect_nothing("its display is gone");
        }
    }
}

}  // namespace
