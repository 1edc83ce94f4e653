// The screens of the particle counters, compared as wholes.
#include <cmath>
#include <limits>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/cpc.h"
#include "support/display_rig.h"

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

template <class Avg>
Avg average(double n, double sd) {
    return {.start_time = 1, .concentration = n, .stddev_concentration = sd};
}

class Counters : public DisplayRig {
  protected:
    // An instrument N11 of that type, the only one; its window has the focus.
    static void meet(const std::string& type) {
        leave("N11");
        announce("N11", type.c_str(), "Counter");
        focus((type + ":N11").c_str());
    }
    template <class R>
    static void get(NETMSG_type msg, R record) {
        receive("N11", msg, record);
    }
    static void get(NETMSG_type msg, const char* values) { report("N11", msg, values); }
};

TEST_F(Counters, TheSimpleKindsShowTheirValues) {
    const auto screen = R"(
                Value  StdDev
Last Average:  1234.6    3.27
Running Avg:  15000.0   12.50
Last reading:   998.1
)";
    meet("cpc_3703");
    get(MSG_CPC_3703_AVERAGE, average<NET_CPC_3703_Avg>(1234.56, 3.27));
    get(MSG_CPC_3703_INSTANT, NET_CPC_3703_Instant{1, 998.06, average<NET_CPC_3703_Avg>(15000, 12.5)});
    get(MSG_CPC_3703_STATUS, NET_CPC_3703_Status{TRUE});
    EXPECT_EQ(inside("cpc_3703:N11"), screen);
    meet("cpc_pulse");
    get(MSG_CPC_PULSE_AVERAGE, average<NET_CPC_Pulse_Avg>(1234.56, 3.27));
    get(MSG_CPC_PULSE_INSTANT, NET_CPC_Pulse_Instant{1, 998.06, average<NET_CPC_Pulse_Avg>(15000, 12.5)});
    get(MSG_CPC_PULSE_STATUS, NET_CPC_Pulse_Status{TRUE});
    EXPECT_EQ(inside("cpc_pulse:N11"), screen);
}

TEST_F(Counters, The3010ShowsValuesAndWarnings) {
    const char* ident = "cpc_3010:N11";
    meet("cpc_3010");
    get(MSG_CPC_3010_AVERAGE, average<NET_CPC_3010_Avg>(NOT_A_NUMBER, 3.27));
    NET_CPC_3010_Instant in{.start_time = 1,
                            .concentration = 998.06,
                            .display_concentration = 1001.2,
                            .T_condenser = 10.04,
                            .T_saturator = 27.11,
                            .running = average<NET_CPC_3010_Avg>(15000, 12.5)};
    get(MSG_CPC_3010_INSTANT, in);
    get(MSG_CPC_3010_STATUS, NET_CPC_3010_Status{TRUE, FALSE, 7});
    EXPECT_EQ(inside(ident), R"(
                Value  StdDev
Last Average:     NaN    3.27
Running Avg:  15000.0   12.50
Last reading:   998.1
Display Conc:  1001.2
T Saturator:     27.1
T Condenser:     10.0
Delta T:         17.1
LASER/TEMP             VACUUM
LOW BUTANOL
)");
    EXPECT_EQ(color(ident, 9, 1), CP_RED_BLUE);
    EXPECT_EQ(color(ident, 9, 24), CP_RED_BLUE);
    EXPECT_EQ(color(ident, 10, 1), CP_WHITE_BLUE) << "low butanol is meant to be quiet";
    EXPECT_EQ(color(ident, 2, 1), CP_WHITE_BLUE);

    in.T_condenser = VESK_MISSING;
    get(MSG_CPC_3010_INSTANT, in);
    EXPECT_EQ(row(ident, 8), "Delta T:        ---.-") << "never a difference with the marker";
}

TEST_F(Counters, The3010StatusBlockByStatus) {
    struct {
        NET_CPC_3010_Status status;
        const char* row9;
        const char* row10;
    } const cases[] = {
        {{TRUE, FALSE, 0}, "", ""},
        {{TRUE, FALSE, 1}, "LASER/TEMP", ""},
        {{TRUE, FALSE, 2}, "", "LOW BUTANOL"},
        {{TRUE, FALSE, 4}, "                       VACUUM", ""},
        {{TRUE, FALSE, 0xFFF8}, "", ""},
        {{FALSE, FALSE, 7}, "", "          NO COMMS"},
        {{FALSE, TRUE, 7}, "", "     INVALID DIP SWITCH"},
    };
    meet("cpc_3010");
    for (const auto& c : cases) {
        get(MSG_CPC_3010_STATUS, c.status);
        EXPECT_EQ(row("cpc_3010:N11", 9), c.row9);
        EXPECT_EQ(row("cpc_3010:N11", 10), c.row10);
    }
}

TEST_F(Counters, The3022ShowsValuesAndWarnings) {
    const char* ident = "cpc_3022:N11";
    meet("cpc_3022");
    get(MSG_CPC_3022_INSTANT, NET_CPC_3022_Instant{1, 998.06, 1001.2, 10, 35.2, 35.49, 1.4567,
                                                   average<NET_CPC_3022_Avg>(15000, 12.5)});
    get(MSG_CPC_3022_STATUS, NET_CPC_3022_Status{TRUE, 7});
    EXPECT_EQ(inside(ident), R"(
                Value  StdDev
Last Average: -----.-  ---.--
Running Avg:  15000.0   12.50
Last reading:   998.1
Display Conc:  1001.2
T Saturator:     35.2
T Condenser:     10.0
Delta T:         25.2
T Optics:        35.5
Q (lpm):          1.457
LASER/TEMP
LOW BUTANOL
)") << "bit 2 means nothing here";
    EXPECT_EQ(color(ident, 11, 1), CP_RED_BLUE);
    EXPECT_EQ(color(ident, 12, 1), CP_WHITE_BLUE);
}

TEST_F(Counters, The3775ShowsHousekeepingAndFlagWord) {
    const char* ident = "cpc_3775:N11";
    meet("cpc_3775");
    get(MSG_CPC_3775_AVERAGE, average<NET_CPC_3775_Avg>(1234.56, 3.27));
    get(MSG_CPC_3775_INSTANT, R"({
        "concentration": 998.06, "display_concentration": 7, "T_condenser": 14, "T_saturator": 39,
        "T_optics": 40, "T_cabinet": 26.46, "P_ambient": 1013.4, "P_orifice": 512.6, "P_nozzle": 21.36,
        "I_laser": 55, "Q": 0.3, "Q_inlet": 1.5, "liquid": 2471,
        "running": {"concentration": 15000, "stddev_concentration": 12.5}})");
    get(MSG_CPC_3775_STATUS, NET_CPC_3775_Status{TRUE, 0x2A});
    EXPECT_EQ(inside(ident), R"(
                Value  StdDev
Last Average:  1234.6    3.27
Running Avg:  15000.0   12.50
Last reading:   998.1
T Condenser:     14.0
T Saturator:     39.0
T Optics:        40.0
T Cabinet:       26.5
Q inlet (lpm):    1.50
Q (lpm):          0.30
P ambient (hPa):1013
P orifice (hPa): 513
P nozzle (hPa):   21.4
I laser (mA):     55
Liquid:         2471
Flags:         002A
)");
    EXPECT_EQ(color(ident, 16, 1), CP_RED_BLUE);
    get(MSG_CPC_3775_STATUS, NET_CPC_3775_Status{TRUE, 0});
    EXPECT_EQ(row(ident, 16), "");
}

TEST_F(Counters, The3781ShowsHousekeepingAndFlagWord) {
    meet("cpc_3781");
    get(MSG_CPC_3781_INSTANT, NET_CPC_3781_Instant{1, 998.06, 7, 20, 60.04, 62, 1012.5, 0.1199,
                                                   average<NET_CPC_3781_Avg>(15000, 12.5)});
    get(MSG_CPC_3781_STATUS, NET_CPC_3781_Status{TRUE, 0xBEEF});
    EXPECT_EQ(inside("cpc_3781:N11"), R"(
                Value  StdDev
Last Average: -----.-  ---.--
Running Avg:  15000.0   12.50
Last reading:   998.1
T Saturator:     20.0
T Growth:        60.0
T Optics:        62.0
Q (lpm):          0.12
P (hPa):       1012
Flags:         BEEF
)");
}

TEST_F(Counters, The3783ShowsTwoColumns) {
    meet("cpc_3783");
    get(MSG_CPC_3783_AVERAGE, average<NET_CPC_3783_Avg>(1234.56, 3.27));
    get(MSG_CPC_3783_INSTANT, R"({
        "concentration": 998.06, "display_concentration": 1001.2, "T_inlet": 25, "T_growth": 60,
        "T_condenser": 20, "T_optics": 61, "T_water": 26, "T_cabinet": 30, "Q_inlet": 2.96,
        "P_absolute": 1013.2, "P_vacuum": 300.1, "P_nozzle": 99.6, "I_laser": 70, "V_photo": 105,
        "V_pulse": 2000, "liquid": -5, "running": {"concentration": 15000, "stddev_concentration": 12.5}})");
    get(MSG_CPC_3783_STATUS, NET_CPC_3783_Status{TRUE, 0, TRUE});
    EXPECT_EQ(inside("cpc_3783:N11"), R"(
                     Value    StdDev
Last Average:       1234.6       3.3
Running Avg:       15000.0      12.5
Last reading:        998.1   Display:             1001.2
T Inlet (C):          25.0   Q inlet (lpm):          3.0
T Growth (C):         60.0   P Nozzle (%):         100
T Condenser (C):      20.0   P Vacuum (hPa):       300
T Optics (C):         61.0   P Absolute (hPa):    1013
T Water (C):          26.0   Liquid:                -5
T Cabinet (C):        30.0   V Pulse (mV):        2000
V Photo (mV):        105     I Laser (mA):          70
)");
}

TEST_F(Counters, The3783StatusRow) {
    struct {
        NET_CPC_3783_Status status;
        const char* row;
    } const cases[] = {
        {{FALSE, 0x10, FALSE}, "                         NO COMMS"},
        {{TRUE, 0x10, TRUE}, "Flags:              0010"},
        {{TRUE, 0x10, FALSE}, "Flags:              0010     Water low"},
        {{TRUE, 0, FALSE}, "Water low"},
        {{TRUE, 0, TRUE}, ""},
    };
    meet("cpc_3783");
    for (const auto& c : cases) {
        get(MSG_CPC_3783_STATUS, c.status);
        EXPECT_EQ(row("cpc_3783:N11", 12), c.row);
    }
    get(MSG_CPC_3783_STATUS, cases[2].status);
    EXPECT_EQ(color("cpc_3783:N11", 12, 30), CP_RED_BLUE);
}

TEST_F(Counters, The1710ShowsTheChosenDataSet) {
    const char* ident = "cpc_bmi1710:N11";
    const auto reading = [](double n) {
        return NET_CPC_BMI1710_Reading{1, n, 3.27, 1, 2, 3, 4, 25, 0.36, 0.72, 11, 12, 13, 14, 15};
    };
    meet("cpc_bmi1710");
    get(MSG_CPC_BMI1710_AVERAGE, reading(300));
    get(MSG_CPC_BMI1710_INSTANT, NET_CPC_BMI1710_Instant{1, reading(100), reading(200), 42});
    get(MSG_CPC_BMI1710_STATUS, NET_CPC_BMI1710_Status{TRUE});
    EXPECT_EQ(inside(ident), R"(
Concentration (cm-3):  100.0    StdDev (cm-3):    3.27
T Inlet (C):            25.0
T Saturator Top (C):     2.0    Power (%):       12.00
T Saturator Bot (C):     3.0    Power (%):       13.00
T Condenser (C):         1.0    Power (%):       11.00
T Optics (C):            4.0    Power (%):       14.00
Q Saturator (lpm):       0.720  Pump (%):        15.00
Q Sample (lpm):          0.360  Fill Count:      42
)");
    for (const auto& [keys, expected] :
         {std::pair{"d", "200.0"}, {"d", "300.0"}, {"d", "100.0"}, {"md", "200.0"}}) {
        type(keys);
        EXPECT_EQ(row(ident, 1).substr(23, 5), expected);
        EXPECT_EQ(row(ident, 8).substr(47), "  42") << "always from the instant record";
    }
}

}  // namespace
