// The DMT cloud condensation nuclei counter: 21 sizes of activated droplets, the state of its column, and the
// commands that set the temperature difference along it and calibrate.
#include "libvesk/messages/records/ccn.h"
#include "cursclient/kit/form.h"
#include "cursclient/kit/sizer.h"

namespace {

constexpr SIZER_graph GRAPHS[] = {{.caption = "cum N(D)", .y_format = "*~5.1f"},
                                  {.caption = "dN", .y_format = "*~5.1f"}};
constexpr SIZER_column COLUMNS[] = {
    {.col = 1, .title = "     D", .units = "  (nm)", .format = "*~4.1f"},
    {.col = 9, .title = "     dN", .units = "(cm^-3)", .format = "*~5.1f"},
    {.col = 20, .title = "cum N(D)", .units = " (cm^-3)", .format = " *~5.1f"},
};

struct CCN_prv_data : SIZER_optical<NET_CCN_BINS, NET_CCN_Avg, NET_CCN_Instant, NET_CCN_Status> {
    NET_CCN_Scanning scanning;
    NET_CCN_DMTModelResults dmtmodel;

    static constexpr SIZER_row ROW{.cols = 41,
                                   .rows = 23,
                                   .bar_col = 8,
                                   .label_row = 21,
                                   .labels = 5,
                                   .x_format = "*~.0f",
                                   .graphs = GRAPHS,
                                   .columns = COLUMNS};

    void housekeeping(const CANVAS& d) const;
};

// The diameter axis is fixed: nothing announces it.
void reset(CCN_prv_data* pd) {
    pd->clear();
    pd->D.fill([](std::size_t i) { return static_cast<double>(i) / NET_CCN_BINS * 10 + 0.5; });
}

// ---- housekeeping

// Time of day, or nothing for a time that is none.
std::string CCN_nexttime(FTIME t) {
    return t == VESK_NO_TIME || VESK_is_missing(t) ? "" : INSTDISP_time(t).c_str();
}

void draw_calibration(const CCN_prv_data* pd, const CANVAS& d) {
    static constexpr int ROW = 21;
    const NET_CCN_Scanning& scanning = pd->scanning;
    if (const NETDSD_meaning* runs = NETDSD_meaning_of(NET_CCN_CALIBRATION, pd->status.in_calibration))
        d.meaning(ROW, 1, *runs);
    else if (scanning.enabled && !VESK_is_missing(scanning.time_next))
        d.put(ROW, 1, "Next dT SP:           *~2.2f @ %s", scanning.next,
              CCN_nexttime(scanning.time_next).c_str());
    else
        d.put(ROW, 1, "Next dT SP:         NONE");
}

// `r` is an average or the instantaneous data: they name their values alike.
template <class Values>
void draw_values(const CCN_prv_data* pd, const CANVAS& d, const Values& r, double stddev) {
    d.put(2, 1, "N ccn (1/cc):      *~5.1f", r.cnc);
    d.put(3, 1, "SS Set/Calc (%%):      *~2.3f/*~-2.3f", r.ss_setting, pd->dmtmodel.ss_calc);
    d.put(4, 1, "dT Set/Calc (C):       *~2.2f/*~-2.2f", pd->scanning.last, VESK_difference(r.T3, r.T1));
    d.put(5, 1, "T stable CALC/rep:     %s,%s", r.stable_flag & NET_CCN_UNSTABLE_CALC ? "N" : "Y",
          r.stable_flag & NET_CCN_UNSTABLE_REPORTED ? "n" : "y");
    d.put(6, 1, "StdDev T3-T1(C):      *~2.3f", stddev);
    d.put(7, 1, "Bin # (N ccn):        %2d", r.bin_number);
    d.put(8, 1, "T Sample (C):        *~3.1f", r.T_sample);
    d.put(9, 1, "T Inlet (C):         *~3.1f", r.T_inlet);
    d.put(10, 1, "T TEC1 (C):          *~3.1f", r.T1);
    d.put(11, 1, "T TEC2 (C):          *~3.1f", r.T2);
    d.put(12, 1, "T TEC3 (C):          *~3.1f", r.T3);
    d.put(13, 1, "T OPC (C):           *~3.1f", r.T_OPC);
    d.put(14, 1, "T Nafion (C):        *~3.1f", r.T_nafion);
    d.put(15, 1, "Q Sample (ccm):      *~3.1f", r.Q_sample);
    d.put(16, 1, "Q Sheath (ccm):      *~3.1f", r.Q_sheath);
    d.put(17, 1, "P Sample (hPa):     *~4.1f", r.P_sample);
    d.put(18, 1, "Laser current (mA): *~4.1f", r.I_laser);
    d.put(19, 1, "First stage monitor:  *~2.2f", r.V_fsm);
    d.put(20, 1, "dT OPC/Nafion (C): *~ 4.1f/*~- 4.1f", VESK_difference(r.T_OPC, r.T3),
          VESK_difference(r.T_nafion, r.T_inlet));
}

void CCN_prv_data::housekeeping(const CANVAS& d) const {
    d.center(1, "Housekeeping - %s", data_set());
    if (am == SIZER_AM_AVG)
        draw_values(this, d, avg, avg.dT_T3_T1_stddev);
    else if (am == SIZER_AM_RUNNING)
        draw_values(this, d, instant.running, instant.running.dT_T3_T1_stddev);
    else
        draw_values(this, d, instant, instant.running.dT_T3_T1_stddev);
    draw_calibration(this, d);
}

// ---- commands

std::string scanning_label(const CCN_prv_data* pd) {
    return pd->scanning.enabled ? "2 Disable setpoint scanning" : "2 Enable setpoint scanning";
}

void toggle_scanning(CCN_prv_data* pd, DWORD /*uid*/) {
    COMMAND_send(
        pd, MSG_CCN_SET_SCANNING,
        NET_CCN_ScanningControl{.sp = VESK_MISSING, .enable = !pd->scanning.enabled, .set_enable = TRUE});
}

// A set point other than the present one; scanning goes on as it is.
void send_setpoint(CCN_prv_data* pd, const NET_CCN_ScanningControl& wanted) {
    if (VESK_is_missing(wanted.sp) || wanted.sp == pd->scanning.last) return;
    COMMAND_send(pd, MSG_CCN_SET_SCANNING, wanted);
}

bool read_setpoint(const CCN_prv_data* pd, NET_CCN_ScanningControl* start) {
    *start = {.sp = pd->scanning.last, .enable = TRUE, .set_enable = FALSE};
    return true;
}

using setpoint_form = FORM<CCN_prv_data, NET_CCN_ScanningControl>;
constexpr setpoint_form::row SETPOINT_ROWS[] = {setpoint_form::number<&NET_CCN_ScanningControl::sp>(
    "Setpoint: ", {.min = 0, .max = 99.99, .format = "%.2f", .exact_until_edited = true})};
constexpr setpoint_form SETPOINT{.title = "Change setpoint",
                                 .rows = SETPOINT_ROWS,
                                 .read = read_setpoint,
                                 .send = send_setpoint,
                                 .gap = 1,
                                 .trusts_start_values = true};

std::string calibration_label(const CCN_prv_data* pd) {
    return pd->status.in_calibration ? "4 Stop calibration scans" : "4 Start calibration scans";
}

bool read_calibration(const CCN_prv_data*, NET_CCN_StartCalibration* start) {
    start->cycles = 1;
    return true;
}

void send_calibration(CCN_prv_data* pd, const NET_CCN_StartCalibration& wanted) {
    if (wanted.cycles > 0) COMMAND_send(pd, MSG_CCN_START_CALIBRATION, wanted);
}

using calibration_form = FORM<CCN_prv_data, NET_CCN_StartCalibration>;
constexpr calibration_form::row CALIBRATION_ROWS[] = {
    calibration_form::number<&NET_CCN_StartCalibration::cycles>("Cycles: ",
                                                                {.min = 0, .max = 999, .format = "%.0f"})};
constexpr calibration_form CALIBRATION{.title = "Start Calibration",
                                       .rows = CALIBRATION_ROWS,
                                       .read = read_calibration,
                                       .send = send_calibration,
                                       .ok = "Start",
                                       .gap = 1};

void change_calibration(CCN_prv_data* pd, DWORD uid) {
    if (pd->status.in_calibration)
        COMMAND_send(pd, MSG_CCN_STOP_CALIBRATION);
    else
        FORM_open<CALIBRATION>(pd, uid);
}

using store = INSTDISP_store<CCN_prv_data>;
constexpr store STORES[] = {
    store::into<&CCN_prv_data::instant>(MSG_CCN_INSTANT, SIZER_instant_stored),
    store::into<&CCN_prv_data::avg>(MSG_CCN_AVERAGE, SIZER_average_stored),
    store::into<&CCN_prv_data::status>(MSG_CCN_STATUS),
    store::into<&CCN_prv_data::scanning>(MSG_CCN_SCANNING),
    store::into<&CCN_prv_data::dmtmodel>(MSG_CCN_DMTMODELRESULTS),
};
using menu_row = INSTDISP_menu_row<CCN_prv_data>;
constexpr auto MENU = SIZER_optical_menu<CCN_prv_data>(
    menu_row{
        .hot_key = '2', .action = toggle_scanning, .guard = COMMAND_PASSWORD, .label_of = scanning_label},
    menu_row{.hot_key = '3',
             .label = "3 Change dT setpoint",
             .action = FORM_open<SETPOINT>,
             .guard = COMMAND_PASSWORD},
    menu_row{.hot_key = '4',
             .action = change_calibration,
             .guard = COMMAND_PASSWORD,
             .label_of = calibration_label});
constexpr auto KIND = SIZER_kind(STORES, reset, SIZER_optical_key<CCN_prv_data>, MENU);

}  // namespace

INSTDISP_BINDINGS(CCN, ccn, KIND)
