// The optical sizers and the mobility sizer: what the graph draws where, the table and its pages, derived
// values, and the ways between the screens.
#include <algorithm>
#include <limits>

#include "cursclient/display.h"
#include "libvesk/messages/records/sizers.h"
#include "support/display_rig.h"

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

class Sizers : public DisplayRig {
  protected:
    static constexpr const char* GRIMM = "grimm:S11";
    static constexpr const char* LASAIR = "lasair:S11";
    static constexpr const char* SEMS = "sems:S11";

    // An instrument S11 that answers; its window has the focus.
    template <class Status>
    static void meet(const char* ident, NETMSG_type status) {
        announce("S11", std::string(ident, std::strchr(ident, ':')).c_str(), "Sizer");
        focus(ident);
        get(status, Status{TRUE});
    }
    static void meet_grimm() { meet<NET_GRIMM_Status>(GRIMM, MSG_GRIMM_STATUS); }
    static void meet_lasair() { meet<NET_LASAIR_Status>(LASAIR, MSG_LASAIR_STATUS); }
    static void meet_sems() { meet<NET_SEMS_Status>(SEMS, MSG_SEMS_STATUS); }

    template <class R>
    static void get(NETMSG_type msg, R record) {
        receive("S11", msg, record);
    }
    // Diameters 1, 2, 3, ...
    static void get_grimm_diameters() {
        NET_GRIMM_Info info;
        for (std::size_t i = 0; i < NET_GRIMM_BINS; ++i)
            info.D[i] = static_cast<double>(i) + 1;
        get(MSG_GRIMM_INFO, info);
    }
    // Bins by their number; those not named are missing.
    static NET_GRIMM_Instant grimm(const std::vector<std::pair<std::size_t, double>>& bins) {
        auto in = NETDSD_default<NET_GRIMM_Instant>();
        for (const auto& [bin, n] : bins)
            in.dN[bin] = n;
        return in;
    }
    template <class F>
    static NET_SEMS_Bins bins(F value) {
        NET_SEMS_Bins b{.start_time = 1, .v = {}};
        for (std::size_t i = 0; i < NET_SEMS_BINS; ++i)
            b.v[i] = value(i);
        return b;
    }
    static NET_SEMS_Bins all_bins(double v) {
        return bins([v](std::size_t) { return v; });
    }
    static std::string caption_of(const char* ident) {
        const std::string text = row(ident, 1);
        return text.substr(text.find_first_not_of(' '));
    }
    // Heights of the bars as they stand on the screen, by column.
    static std::string bars(const char* ident) {
        redraw();
        WINDOW* win = window(ident)->win;
        std::string heights;
        for (int col = 1; col < getmaxx(win) - 1; ++col) {
            int height = 0;
            for (int y = 1; y < getmaxy(win) - 1; ++y)
                height += TestScreen::row(win, y)[static_cast<std::size_t>(col)] == '#';
            heights += static_cast<char>(height < 10 ? '0' + height : 'a' + height - 10);
        }
        heights.erase(heights.find_last_not_of('0') + 1);
        return heights;
    }
};

// ---- the graph

TEST_F(Sizers, BarsAreRoundedAndBinsThatAreNoNumbersLeftOut) {
    struct {
        const char* what;
        std::vector<std::pair<std::size_t, double>> bins;
        const char* bars;  // heights from column 1 on, in base 19; bin 0 is the eighth
    } const cases[] = {
        {"half a row is a row", {{0, 0}, {1, 0.5}, {2, 0.49}, {3, 18}}, "0000000010i"},
        {"the first and the last bin", {{0, 2}, {29, 0}, {30, 1}}, "0000000i000000000000000000000000000009"},
        {"negative values", {{0, -18}, {1, -9}, {2, 0}}, "000000009i"},
        {"NaN and infinite",
         {{0, 0}, {1, NOT_A_NUMBER}, {2, INFINITE}, {3, -INFINITE}, {4, 9}, {5, 18}},
         "000000000009i"},
        {"one bin alone has no range", {{3, 7}}, ""},
        {"all equal", {{3, 7}, {4, 7}, {30, 7}}, ""},
        {"nothing but NaN", {{1, NOT_A_NUMBER}, {2, NOT_A_NUMBER}}, ""},
        {"a range beyond all numbers", {{1, -1.7e308}, {2, 1.7e308}}, ""},
    };
    meet_grimm();
    press('N');
    get_grimm_diameters();
    for (const auto& c : cases) {
        get(MSG_GRIMM_INSTANT, grimm(c.bins));
        EXPECT_EQ(bars(GRIMM), c.bars) << c.what;
        if (*c.bars == '\0') {
            EXPECT_EQ(inside(GRIMM), "\n                  dN - Instantanous\n") << c.what;
        }
    }
}

TEST_F(Sizers, WithoutDiametersThereIsNoGraph) {
    meet_grimm();
    get(MSG_GRIMM_INSTANT, grimm({{0, 1}, {1, 2}}));
    NET_GRIMM_Info info;
    for (double same : {VESK_MISSING, 4.0, NOT_A_NUMBER}) {
        std::fill(std::begin(info.D), std::end(info.D), same);
        get(MSG_GRIMM_INFO, info);
        EXPECT_EQ(bars(GRIMM), "") << same;
    }
    info.D[0] = 1;
    info.D[30] = VESK_MISSING;
    info.D[1] = 2;
    get(MSG_GRIMM_INFO, info);
    EXPECT_EQ(bars(GRIMM), "00000000i");
    EXPECT_EQ(row(GRIMM, 20), "       1.0       NaN       NaN       -.-") << "labels say what there is";
}

TEST_F(Sizers, TheCumulativeSumCarriesOverAGap) {
    meet_grimm();
    get_grimm_diameters();
    get(MSG_GRIMM_INSTANT, grimm({{0, 10}, {2, 10}, {3, NOT_A_NUMBER}, {4, 10}}));
    EXPECT_EQ(bars(GRIMM), "00000000090i") << "sums 10, 20, 30 at bins 0, 2 and 4";
    press('t');
    EXPECT_EQ(row(GRIMM, 4), " 1.00         10.0      10.0");
    EXPECT_EQ(row(GRIMM, 5), " 2.00      -----.-   -----.-");
    EXPECT_EQ(row(GRIMM, 6), " 3.00         10.0      20.0");
    EXPECT_EQ(row(GRIMM, 7), " 4.00          NaN       NaN");
    EXPECT_EQ(row(GRIMM, 8), " 5.00         10.0      30.0");
}

// ---- modes

TEST_F(Sizers, TheDataSetChangesWithTheNextMessage) {
    meet_grimm();
    get_grimm_diameters();
    auto in = grimm({{0, 1}});
    in.running.dN[0] = 2;
    auto avg = NETDSD_default<NET_GRIMM_Avg>();
    avg.dN[0] = 3;
    const auto shown = [] { return caption_of(GRIMM) + ": " + row(GRIMM, 4).substr(15, 3); };
    get(MSG_GRIMM_INSTANT, in);
    get(MSG_GRIMM_AVERAGE, avg);
    press('t');
    EXPECT_EQ(shown(), "Tabular - Instantanous: 1.0");
    press('a');
    get(MSG_GRIMM_AVERAGE, avg);
    EXPECT_EQ(shown(), "Tabular - Running average: 1.0") << "not yet";
    get(MSG_GRIMM_INSTANT, in);
    EXPECT_EQ(shown(), "Tabular - Running average: 2.0");
    press('A');
    get(MSG_GRIMM_INSTANT, in);
    EXPECT_EQ(shown(), "Tabular - Last average: 2.0");
    get(MSG_GRIMM_AVERAGE, avg);
    EXPECT_EQ(shown(), "Tabular - Last average: 3.0");
    type("amA");
    EXPECT_EQ(shown(), "Tabular - Instantanous: 1.0") << "the menu's button only refreshes, the mode stays";
}

TEST_F(Sizers, PagesOfTheTable) {
    meet_grimm();
    EXPECT_FALSE(DISPLAY_distribute_keypress(KEY_NPAGE)) << "no pages in the graph";
    EXPECT_FALSE(DISPLAY_distribute_keypress(KEY_PPAGE));
    get_grimm_diameters();
    press('t');
    EXPECT_EQ(row(GRIMM, 2), "    D           dN  cum N(D)");
    EXPECT_EQ(row(GRIMM, 3), " (um)      (cm^-3)   (cm^-3)");
    const auto after = [](int key) {
        press(key);
        return row(GRIMM, 4).substr(0, 5) + "," + row(GRIMM, 18).substr(0, 5);
    };
    for (const int key : {KEY_NPAGE, KEY_NPAGE, static_cast<int>('t')})
        EXPECT_EQ(after(key), "17.00,31.00") << "the last page, and no way back by the table's own key";
    for (const int key : {KEY_PPAGE, KEY_PPAGE})
        EXPECT_EQ(after(key), " 1.00,15.00");
    press({KEY_NPAGE, 's'});
    EXPECT_EQ(after('t'), " 1.00,15.00") << "from another screen to the first page";
    leave("S11");

    meet_lasair();
    press('t');
    EXPECT_EQ(row(LASAIR, 3), "  (um)     (cm^-3)   (cm^-3)");
    EXPECT_EQ(row(LASAIR, 11), "---.--   -------.- -------.-");
    EXPECT_EQ(row(LASAIR, 12), "");
    press(KEY_NPAGE);
    EXPECT_EQ(row(LASAIR, 4), "") << "the second page is empty";
}

// ---- the mobility sizer

TEST_F(Sizers, SweepsAreDerivedFromCountsWidthsAndDiameters) {
    meet_sems();
    get(MSG_SEMS_DN_UP, bins([](std::size_t i) { return i == 1 ? 0.0 : 10.0; }));
    press('t');
    EXPECT_EQ(row(SEMS, 3), "-----   1.000e+01   10.0      -.-------     -.-------");
    press('h');
    EXPECT_EQ(row(SEMS, 3), "   Upward:   590.0     0.000e+00     0.000e+00") << "nothing to divide by";
    EXPECT_EQ(row(SEMS, 4), " Downward:  ----.-     -.-------     -.-------");

    get(MSG_SEMS_DLOGD, bins([](std::size_t i) { return i == 2 ? 0.0 : 0.05; }));
    get(MSG_SEMS_D, bins([](std::size_t i) { return i == 3 ? VESK_MISSING : 100.0; }));
    press('t');
    // 10 / 0.05 = 200; a sphere of 0.1 um has pi / 6000 = 5.236e-4 um3, times 200 is 0.1047.
    EXPECT_EQ(inside(SEMS).substr(0, 383), R"(
    D           dN  cum N(D)    dN/dlogD       dV/dlogD
 (nm)      (cm^-3)   (cm^-3)     (cm^-3)    (um^3/cm^3)
  100   1.000e+01   10.0      2.000e+02     1.047e-01
  100   0.000e+00 ----.-      -.-------     -.-------
  100   1.000e+01   20.0      -.-------     -.-------
-----   1.000e+01   30.0      2.000e+02     -.-------
  100   1.000e+01   40.0      2.000e+02     1.047e-01
)");
    press('h');
    EXPECT_EQ(row(SEMS, 3), "   Upward:   590.0     1.160e+04     5.969e+00") << "58 and 57 bins";
    EXPECT_EQ(row(SEMS, 4), " Downward:  ----.-     0.000e+00     0.000e+00");
    get(MSG_SEMS_DN_DOWN, all_bins(1));
    EXPECT_EQ(row(SEMS, 4), " Downward:    60.0     1.180e+03     6.074e-01");
    EXPECT_EQ(row(SEMS, 3), "   Upward:   590.0     1.160e+04     5.969e+00") << "the other sweep stays";
}

TEST_F(Sizers, TheSweepsTableHasFourPagesAndTwoSides) {
    meet_sems();
    get(MSG_SEMS_D, bins([](std::size_t i) { return static_cast<double>(i); }));
    get(MSG_SEMS_DN_UP, all_bins(1));
    get(MSG_SEMS_DN_DOWN, all_bins(2));
    const auto after = [](std::initializer_list<int> keys) {
        press(keys);
        return row(SEMS, 3).substr(0, 17);
    };
    EXPECT_EQ(after({'T'}), "    0   1.000e+00");
    EXPECT_EQ(row(SEMS, 19).substr(0, 5), "   16");
    EXPECT_EQ(after({KEY_NPAGE}), "   17   1.000e+00");
    EXPECT_EQ(after({'t'}), "   17   2.000e+00") << "the other sweep on the same page";
    EXPECT_EQ(after({KEY_NPAGE, KEY_NPAGE, KEY_NPAGE}), "   51   2.000e+00");
    EXPECT_EQ(row(SEMS, 11).substr(0, 5), "   59");
    EXPECT_EQ(row(SEMS, 12), "");
    EXPECT_EQ(after({'t'}), "   51   1.000e+00");
    EXPECT_EQ(after({'t', 'h', 't'}), "    0   1.000e+00") << "from elsewhere: upward, first page";
}

TEST_F(Sizers, EachGraphKeyShowsTheUpwardThenTheDownwardSweep) {
    meet_sems();
    EXPECT_EQ(caption_of(SEMS), "dN/dlogD, upward sweep");
    for (const auto& [keys, caption] : {std::pair{"n", "dN/dlogD, downward sweep"},
                                        {"N", "dN/dlogD, upward sweep"},
                                        {"v", "dV/dlogD, upward sweep"},
                                        {"V", "dV/dlogD, downward sweep"},
                                        {"c", "cum N(D), upward sweep"},
                                        {"C", "cum N(D), downward sweep"},
                                        {"hc", "cum N(D), upward sweep"},
                                        {"cn", "dN/dlogD, upward sweep"},
                                        {"mN", "dN/dlogD, downward sweep"},
                                        {"mV", "dV/dlogD, upward sweep"},
                                        {"mC", "cum N(D), upward sweep"},
                                        {"mT", "D           dN  cum N(D)    dN/dlogD       dV/dlogD"},
                                        {"mH", "Integrals:      dN     dN/dlogD     dV/dlogD"}}) {
        type(keys);
        EXPECT_EQ(caption_of(SEMS), caption) << keys;
    }
}

}  // namespace
