// The particle soot absorption photometers: their screens, and the filter change that both have.
#include <gmock/gmock.h>

#include "cursclient/passwd.h"
#include "display_rig.h"
#include "libvesk/netdsd.h"
#include "libvesk/records/log.h"
#include "libvesk/records/psap.h"
#include "libvesk/util.h"
#include "libveskcurs/cursdialog.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr int ENTER = 13;
constexpr int ESCAPE = 27;
constexpr const char* QUESTION = "Have you pressed 'RESET Transmitance'?";

TEST_F(DisplayRig, PsapShowsNothingMeasuredBeforeItReports) {
    announce("A11", "psap");
    EXPECT_EQ(inside("psap:A11"), R"(
Bap (1/Mm):    ---.-
Flow (slpm):    --.--
Transmittance:  --.---
Tr correction:  --.---
I Sample:             0
I Reference:          0
I sam rsd:       -.------
I ref rsd:       -.------
I Normalized:   --.-----
dI:             --.-----
Bap(I) (1/Mm): ---.--
         NO COMMS
)");
}

TEST_F(DisplayRig, PsapShowsItsReadingsInInverseMegametres) {
    announce("A11", "psap");
    auto in = NETDSD_default<NET_PSAP_Instant>();
    in.bap = 4.25e-6;
    in.bap_I = -1.5e-6;
    in.tr = 0.8125;
    in.trc = 1.234;
    in.Q_slpm = 1.05;
    in.I_sample = 123456;
    in.I_reference = -7;
    in.I = 0.98765;
    in.dI = -0.00012;
    in.smoothed_I_sam_rsd = 0.000123;
    in.smoothed_I_ref_rsd = 0.5;
    receive("A11", MSG_PSAP_INSTANT, in);
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
    EXPECT_EQ(getmaxx(window("psap:A11")->win), 28);
    EXPECT_EQ(getmaxy(window("psap:A11")->win), 14);
}

TEST_F(DisplayRig, Psap3HasAColumnForEachColour) {
    announce("A12", "psap3");
    auto in = NETDSD_default<NET_PSAP3_Instant>();
    for (int i = 0; i < 3; ++i) {
        in.bap[i] = (12.5 - 5 * i) * 1e-6;
        in.tr[i] = 0.7 + 0.1 * i;
        in.I_sample[i] = 600000.0 + i;
        in.I_reference[i] = 1234567890.0;
        in.I_sam_rsd[i] = 0.000011 * (i + 1);
        in.I_ref_rsd[i] = 0.000022;
        in.I[i] = 0.987654;
        in.dI[i] = -0.000045;
    }
    in.bap_I[1] = -3.25e-6;
    in.Q = 0.98;
    receive("A12", MSG_PSAP3_INSTANT, in);
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
    EXPECT_EQ(getmaxx(window("psap3:A12")->win), 58);
    EXPECT_EQ(getmaxy(window("psap3:A12")->win), 14);
}

// The two kinds with what tells them apart.
struct PsapKind {
    const char* type;
    NETMSG_type set, filter_status, status;
    const char* record;
    const char* window;
};

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
    static void expect_sent(BOOL changing) {
        ASSERT_EQ(sent.size(), 1u);
        EXPECT_EQ(sent[0].msg, GetParam().set);
        EXPECT_EQ(sent[0].flags, 0u);
        EXPECT_EQ(sent[0].dest, "A1");
        EXPECT_EQ(sent[0].record, GetParam().record);
        EXPECT_EQ(sent[0].payload, std::string(1, changing ? '\1' : '\0'));
        sent.clear();
    }
};

INSTANTIATE_TEST_SUITE_P(Kinds, PsapFilter,
                         testing::Values(PsapKind{"psap", MSG_PSAP_SETFILTERSATUS, MSG_PSAP_FILTERSTATUS,
                                                  MSG_PSAP_STATUS, "NET_PSAP_FilterStatus", "psap:A1"},
                                         PsapKind{"psap3", MSG_PSAP3_SETFILTERSATUS, MSG_PSAP3_FILTERSTATUS,
                                                  MSG_PSAP3_STATUS, "NET_PSAP3_FilterStatus", "psap3:A1"}),
                         [](const auto& param_info) { return std::string(param_info.param.type); });

TEST_P(PsapFilter, StartsAtOnceAndStopsAfterAQuestion) {
    type("m");
    EXPECT_THAT(screen_text(), HasSubstr("2 Start filter change"));
    type("2");
    EXPECT_FALSE(CURSDIALOG_active());
    expect_sent(TRUE);
    EXPECT_EQ(row(GetParam().window, 12), "") << "nothing changes before the instrument says so";

    say_changing(TRUE);
    EXPECT_EQ(row(GetParam().window, 12), "Changing filter...");
    type("M");
    EXPECT_THAT(screen_text(), HasSubstr("2 Stop filter change"));
    type("2");
    EXPECT_THAT(screen_text(), HasSubstr(QUESTION));
    press(ENTER);
    EXPECT_FALSE(CURSDIALOG_active()) << "No is focused";
    EXPECT_TRUE(sent.empty());

    type("m2");
    press({KEY_LEFT, ENTER});
    EXPECT_FALSE(CURSDIALOG_active());
    expect_sent(FALSE);
    EXPECT_EQ(row(GetParam().window, 12), "Changing filter...");
    say_changing(FALSE);
    EXPECT_EQ(row(GetParam().window, 12), "");
}

TEST_P(PsapFilter, LostCommunicationsHideTheChange) {
    say_changing(TRUE);
    say(GetParam().status, FALSE);
    EXPECT_THAT(row(GetParam().window, 12), HasSubstr("NO COMMS"));
    EXPECT_THAT(row(GetParam().window, 12), Not(HasSubstr("Changing")));
}

TEST_P(PsapFilter, IsDecidedByTheStateWhenThePasswordIsGiven) {
    UTIL_strcpynt(g_passwd, "abc");
    type("m2wrong");
    press(ENTER);
    EXPECT_TRUE(sent.empty());
    type("m2");
    say_changing(TRUE);
    type("abc");
    press(ENTER);
    EXPECT_TRUE(sent.empty());
    EXPECT_THAT(screen_text(), HasSubstr(QUESTION));
}

TEST_P(PsapFilter, AnInstrumentThatWentGetsNothing) {
    say_changing(TRUE);
    type("m2");
    press(KEY_LEFT);
    leave("A1");
    press(ENTER);
    EXPECT_FALSE(CURSDIALOG_active());

    announce("A1", GetParam().type, "Absorption");
    UTIL_strcpynt(g_passwd, "abc");
    focus(GetParam().window);
    type("m2");
    leave("A1");
    announce("A1", GetParam().type, "Absorption");
    type("abc");
    press(ENTER);
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_TRUE(sent.empty()) << "one of the same name that came later is another";
}

TEST_P(PsapFilter, OtherKeysAndOtherInstrumentsMeanNothing) {
    receive("A2", GetParam().filter_status, NETMSG_by_type(GetParam().filter_status)->dsd, "\1");
    receive("A1", GetParam().filter_status);  // without a record
    EXPECT_EQ(row(GetParam().window, 12), "");
    type("d2");
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_TRUE(sent.empty());
    press(ESCAPE);
    EXPECT_FALSE(window(GetParam().window)->visible);
}

}  // namespace
