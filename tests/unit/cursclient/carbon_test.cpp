// The black-carbon instruments: the order of the aethalometer's channels and the MAAP's error row.
#include "libvesk/messages/records/carbon.h"
#include "support/display_rig.h"

namespace {

class Aethalometer : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "aethalometer:A81";
    Aethalometer() { announce("A81", "aethalometer", "Aethalometer"); }
};

TEST_F(Aethalometer, ShowsAChannelInEachColumn) {
    auto rep = NETDSD_default<NET_AETHALOMETER_Report>();
    for (int i = 0; i < NET_AETHALOMETER_CHANNELS; ++i) {
        rep.wavelengths[i] = 370 + i;
        rep.conc[i] = 1000 + i;
        rep.attn[i] = 10.5 + i;
        rep.sz[i] = 0.01 * i;
        rep.sb[i] = -1.5;
        rep.rz[i] = 0.0203;
        rep.rb[i] = 3.75;
    }
    rep.fraction = 0.97;
    rep.Q = 4.98;
    receive("A81", MSG_AETHALOMETER_REPORT, rep);
    receive("A81", MSG_AETHALOMETER_STATUS, NET_AETHALOMETER_Status{TRUE});
    EXPECT_EQ(inside(WINDOW), R"(
Chan (nm):       370     371     372     373     374     375     376
Conc (ng/m3):   1000    1001    1002    1003    1004    1005    1006
SZ:              0.0000  0.0100  0.0200  0.0300  0.0400  0.0500  0.0600
SB:             -1.5000 -1.5000 -1.5000 -1.5000 -1.5000 -1.5000 -1.5000
RZ:              0.0203  0.0203  0.0203  0.0203  0.0203  0.0203  0.0203
RB:              3.7500  3.7500  3.7500  3.7500  3.7500  3.7500  3.7500
Atten:          10.500  11.500  12.500  13.500  14.500  15.500  16.500
Fraction:        0.97    Flow:   4.98
)");
}

TEST_F(Aethalometer, ChannelsStandInOrderOfWavelength) {
    struct case_row {
        double nm[NET_AETHALOMETER_CHANNELS];
        const char* columns;  // which channel stands where
    };
    constexpr double NONE = VESK_MISSING;
    const case_row rows[] = {
        {{880, 370, 470, 520, 590, 660, 950}, "1234506"},
        {{470, 370, 470, 370, 590, 660, 950}, "1302456"},
        {{NONE, 370, NONE, 520, 590, NONE, 950}, "1346520"},
    };
    for (const case_row& r : rows) {
        auto rep = NETDSD_default<NET_AETHALOMETER_Report>();
        for (int i = 0; i < NET_AETHALOMETER_CHANNELS; ++i) {
            rep.wavelengths[i] = r.nm[i];
            rep.conc[i] = i;  // tells where the column came from
        }
        receive("A81", MSG_AETHALOMETER_REPORT, rep);
        std::string columns = row(WINDOW, 2).substr(16);
        std::erase(columns, ' ');
        EXPECT_EQ(columns, r.columns);
    }
}

class Maap : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "maap:A82";
    Maap() { announce("A82", "maap", "MAAP"); }
};

TEST_F(Maap, ShowsItsReport) {
    report("A82", MSG_MAAP_REPORT, R"({"abs": 3.456, "tr": 0.8765432, "C": 0.5234, "ssa": 0.91, "Q": 16.67,
        "P_amb": 985.25, "T_measure": 31.5, "Sref": 2000.5, "Szref": 2001.75})");
    receive("A82", MSG_MAAP_STATUS, NET_MAAP_Status{TRUE, 0, 0, 0});
    EXPECT_EQ(inside(WINDOW), R"(
Bap (1/Mm):         3.46
Tr:                0.8765432
BC conc (ug/m3):    0.523
SSA:                0.91000
Flow (slpm):       16.670
P Orifice (hPa): ----.--
P Pump (hPa):    ----.--
P Ambient (hPa):  985.25
T Ambient (C):    ---.--
T Measure (C):     31.50
T System (C):     ---.--
SRef/SZRef:      2000.50/2001.75
S0/SZ0:          ----.--/----.--
S135/SZ135:      ----.--/----.--
S165/SZ165:      ----.--/----.--
)");
}

TEST_F(Maap, TheErrorRow) {
    struct case_row {
        NET_MAAP_Status status;
        const char* text;
        int color;
    };
    const case_row rows[] = {
        {{FALSE, 1, 2, 3}, "            NO COMMS", -CP_RED_BLUE},
        {{TRUE, 0, 0, 0x80}, "Status: 000080", CP_WHITE_BLUE},
        {{TRUE, 0, 0, 0x100}, "Error: 000100 0000000000000000", CP_RED_BLUE},
        {{TRUE, 0xA, 0xB000, 0x80}, "Error: 000080 0000B0000000000A", CP_RED_BLUE},
        {{TRUE, 0, 0, 0}, "", CP_WHITE_BLUE},
    };
    for (const case_row& r : rows) {
        receive("A82", MSG_MAAP_STATUS, r.status);
        EXPECT_EQ(row(WINDOW, 16), r.text);
        EXPECT_EQ(color(WINDOW, 16, 14), r.color) << r.text;
    }
}

}  // namespace
