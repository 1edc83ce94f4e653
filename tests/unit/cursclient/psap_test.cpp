// The particle soot absorption photometers: their screens, and the filter change that both have.
#include <gmock/gmock.h>

#include "cursclient/passwd.h"
#include "display_rig.h"
#include "libvesk/records/psap.h"
#include "libvesk/util.h"
#include "libveskcurs/cursdialog.h"

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* QUESTION = "Have you pressed 'RESET Transmitance'?";

TEST_F(DisplayRig, PsapShowsItsReadingsInInverseMegametres) {
    announce("A11", "psap");
    report("A11", MSG_PSAP_INSTANT, R"({"bap": 4.25e-6, "bap_I": -1.5e-6, "tr": 0.8125, "trc": 1.234,
        "Q_slpm": 1.05, "I_sample": 123456, "I_reference": -7, "I": 0.98765, "dI": -0.00012,
        "smoothed_I_sam_rsd": 0.000123, "smoothed_I_ref_rsd": 0.5})");
    receive("A11", MSG_PSAP_STATUS, NET_PSAP_Status{TRUE});
    EXPECT_EQ(inside("psap:A11"), R"(
Bap (1/Mm):      4.2
Flow (slpm):     1.05
Transmittance:   0.812
Tr correction:   1.234
I Sample:        123456
I Reference:         -7
I sam rsd:       0.000123
I ref rsd:       0.500000
I Normalized:    0.98765
dI:             -0.00012
Bap(I) (1/Mm):  -1.50
)");
}

TEST_F(DisplayRig, Psap3HasAColumnForEachColour) {
    announce("A12", "psap3");
    report("A12", MSG_PSAP3_INSTANT, R"({"bap": [12.5e-6, 7.5e-6, 2.5e-6], "bap_I": [null, -3.25e-6],
        "tr": [0.7, 0.8, 0.9], "Q": 0.98, "I_sample": [600000, 600001, 600002],
        "I_reference": [1234567890, 1234567890, 1234567890], "I_sam_rsd": [0.000011, 0.000022, 0.000033],
        "I_ref_rsd": [0.000022, 0.000022, 0.000022], "I": [0.987654, 0.987654, 0.987654],
        "dI": [-0.000045, -0.000045, -0.000045]})");
    EXPECT_EQ(inside("psap3:A12"), R"(
                  Blue        Green            Red
Bap (1/Mm):        12.50         7.50           2.50
Bap(I) (1/Mm):   ----.--        -3.25        ----.--
Transmittance:      0.700        0.800          0.900
I_sample:             600000       600001         600002
I_reference:      1234567890   1234567890     1234567890
I_sam rsd:          0.000011     0.000022       0.000033
I_ref rsd:          0.000022     0.000022       0.000022
I_normalized:       0.987654     0.987654       0.987654
dI:                -0.000045    -0.000045      -0.000045
Flow (slpm):        0.98
                        NO COMMS
)");
}

// The two kinds with what tells them apart.
struct PsapKind {
    const char* type;
    NETMSG_type filter_status, status;
    const char* start;  // what is sent
    const char* stop;
    const char* window;
};

void PrintTo(const PsapKind& kind, std::ostream* os) {
    *os << kind.type;
}

class PsapFilter : public DisplayRig, public testing::WithParamInterface<PsapKind> {
  protected:
    PsapFilter() {
        announce("A1", GetParam().type, "Absorption");
        focus(GetParam().window);
        say(GetParam().status, TRUE);
    }
    // Both records of the instrument's state are one flag.
    static void say(NETMSG_type msg, BOOL flag) { receive("A1", msg, NETMSG_by_type(msg)->dsd, &flag); }
    static void say_changing(BOOL changing) { say(GetParam().filter_status, changing); }
    static std::string status_row() { return row(GetParam().window, 12); }
};

INSTANTIATE_TEST_SUITE_P(
    Kinds, PsapFilter,
    testing::Values(PsapKind{"psap", MSG_PSAP_FILTERSTATUS, MSG_PSAP_STATUS,
                             R"(MSG_PSAP_SETFILTERSATUS to A1 {"changing_filter":true})",
                             R"(MSG_PSAP_SETFILTERSATUS to A1 {"changing_filter":false})", "psap:A1"},
                    PsapKind{"psap3", MSG_PSAP3_FILTERSTATUS, MSG_PSAP3_STATUS,
                             R"(MSG_PSAP3_SETFILTERSATUS to A1 {"changing_filter":true})",
                             R"(MSG_PSAP3_SETFILTERSATUS to A1 {"changing_filter":false})", "psap3:A1"}),
    [](const auto& param_info) { return std::string(param_info.param.type); });

TEST_P(PsapFilter, StartsAtOnceAndStopsAfterAQuestion) {
    type("m2");
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_THAT(take_sent(), ElementsAre(GetParam().start));
    EXPECT_EQ(status_row(), "") << "nothing changes before the instrument says so";

    say_changing(TRUE);
    EXPECT_EQ(status_row(), "Changing filter...");
    type("M");
    EXPECT_THAT(screen_text(), HasSubstr("2 Stop filter change"));
    type("2");
    EXPECT_THAT(screen_text(), HasSubstr(QUESTION));
    press(ENTER);
    EXPECT_FALSE(CURSDIALOG_active()) << "No is focused";
    EXPECT_THAT(take_sent(), IsEmpty());

    type("m2");
    press({KEY_LEFT, ENTER});
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_THAT(take_sent(), ElementsAre(GetParam().stop));
    EXPECT_EQ(status_row(), "Changing filter...");
    say(GetParam().status, FALSE);
    EXPECT_THAT(status_row(), AllOf(HasSubstr("NO COMMS"), Not(HasSubstr("Changing"))));
    say(GetParam().status, TRUE);
    say_changing(FALSE);
    EXPECT_EQ(status_row(), "");
}

TEST_P(PsapFilter, IsDecidedByTheStateWhenThePasswordIsGiven) {
    UTIL_strcpynt(g_passwd, "abc");
    type("m2");
    say_changing(TRUE);
    type("abc\r");
    EXPECT_THAT(take_sent(), IsEmpty());
    EXPECT_THAT(screen_text(), HasSubstr(QUESTION));
}

}  // namespace
