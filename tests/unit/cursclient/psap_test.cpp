// The particle soot absorption photometers: their screens, and the filter change that both have.
#include "libvesk/messages/records/psap.h"
#include "support/display_rig.h"

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

// Both kinds change their filters in the same way.
class PsapFilter : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "psap:A11";

    PsapFilter() {
        announce("A11", "psap");
        focus(WINDOW);
        receive("A11", MSG_PSAP_STATUS, NET_PSAP_Status{TRUE});
    }
    static void say_changing(BOOL changing) {
        receive("A11", MSG_PSAP_FILTERSTATUS, NET_PSAP_FilterStatus{changing});
    }
    static std::string status_row() { return row(WINDOW, 12); }
};

TEST_F(PsapFilter, StartsAtOnceAndStopsAfterAQuestion) {
    type("m2");
    EXPECT_THAT(take_sent(), ElementsAre(R"(MSG_PSAP_SETFILTERSATUS to A11 {"changing_filter":true})"));
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
    receive("A11", MSG_PSAP_STATUS, NET_PSAP_Status{FALSE});
    EXPECT_THAT(status_row(), AllOf(HasSubstr("NO COMMS"), Not(HasSubstr("Changing"))));
}

TEST_F(PsapFilter, IsDecidedByTheStateWhenThePasswordIsGiven) {
    UTIL_strcpynt(g_passwd, "abc");
    type("m2");
    say_changing(TRUE);
    type("abc\r");
    EXPECT_THAT(take_sent(), IsEmpty());
    EXPECT_THAT(screen_text(), HasSubstr(QUESTION));
}

}  // namespace
