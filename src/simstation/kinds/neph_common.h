// The behaviour that all simulated nephelometers share: zeros by schedule and by command, the span check, and
// the kind-independent data. A kind adds its records, and what its own commands change (neph*.cpp).
#pragma once

#include <deque>

#include "simstation/kinds/spancheck.h"
#include "simstation/physics/neph_cell.h"

// Seconds.
struct SIM_neph_zeroing {
    double every;  // from one zero to the next; 0: none by itself
    double length = 300;
    double blank = 60;         // after it, until the cell is full of outer air again
    std::size_t averaged = 1;  // zeros that the background is the mean of
};

// Scenario settings of every nephelometer.
inline constexpr SIM_setting SIM_NEPH_BOTTLE = {"co2", "off: the CO2 bottle is closed"};
inline constexpr SIM_setting SIM_NEPH_LAMP = {"lamp", "off: the lamp is burnt out"};

class SIM_neph {
  public:
    SIM_neph(const SIM_neph_model& model, const SIM_neph_zeroing& zeroing);

    // The callbacks of a kind call these first.
    void start(SIM_instrument& sim);
    void tick(SIM_instrument& sim);
    BOOL hear(SIM_instrument& sim, const VESKMSG_proc_msg* pm);
    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm);
    BOOL set(std::string_view name, const SIM_value& value);

    // These two are refused during a span check, the valve during a zero as well.
    BOOL order_zero(SIM_instrument& sim);
    void set_zeroing(SIM_instrument& sim, const SIM_neph_zeroing& zeroing);
    // Filtered air or not, by hand, until the next zero or span check.
    BOOL set_valve(SIM_instrument& sim, BOOL filtered);
    void set_lamp(double watts);

    [[nodiscard]] BOOL ambient() const { return letter() == 'N' && !valve_; }
    // N: normal, Z: filtered air, B: blanking after it, C: CO2.
    [[nodiscard]] char letter() const;
    [[nodiscard]] BOOL valve_held() const { return valve_; }
    [[nodiscard]] double seconds_left(FTIME now) const;  // of that; missing when nothing is scheduled
    [[nodiscard]] BOOL lit() const { return cell.light > 0; }
    // Particles of the outer air only: missing while the instrument sees something else.
    [[nodiscard]] SIM_neph_six outer_air() const {
        return ambient() ? cell.scattering() : SIM_neph_nothing();
    }

    // Writes bspBK, bbspBK and their shifts.
    template <class R>
    void put_zero(R& record) const {
        for (std::size_t i = 0; i < 3; ++i) {
            record.bspBK[i] = cell.background()[i];
            record.bbspBK[i] = cell.background()[i + 3];
            record.bspBKshift[i] = shift_[i];
            record.bbspBKshift[i] = shift_[i + 3];
        }
    }
    // VESK_NO_TIME: none scheduled.
    [[nodiscard]] FTIME next_zero(const SIM_instrument& sim) const {
        return next_zero_ == VESK_NO_TIME ? VESK_NO_TIME : sim.not_past(next_zero_);
    }
    // The Angstrom exponent of such scattering; missing unless all of it is that of outer air, since filtered
    // air leaves noise.
    [[nodiscard]] double exponent(double green, double red, BOOL outer = TRUE) const {
        return outer ? cell.angstrom(green, red) : VESK_MISSING;
    }

    SIM_neph_cell cell;

  private:
    enum state { NORMAL, ZERO, BLANK };
    [[nodiscard]] SIM_neph_inlet inlet() const;
    void begin_zero(SIM_instrument& sim);
    void advance(SIM_instrument& sim);
    void finish_zero(SIM_instrument& sim);
    void plan_zero(SIM_instrument& sim);
    void take_background(const SIM_neph_six& found);
    void collect(SIM_instrument& sim);
    void send_common(SIM_instrument& sim);

    const SIM_neph_model& model_;
    SIM_neph_zeroing zeroing_;
    SIM_spancheck check_;
    state state_ = NORMAL;
    FTIME until_ = VESK_NO_TIME;  // the end of a zero or blanking
    FTIME last_zero_ = 0;
    FTIME next_zero_ = VESK_NO_TIME;
    BOOL valve_ = FALSE;
    double watts_ = 75;
    BOOL lamp_good_ = TRUE;
    std::array<SIM_stats, SIM_NEPH_SIX> zero_sums_;
    std::deque<SIM_neph_six> zeros_;
    SIM_neph_six shift_ = SIM_neph_nothing();
    SIM_record_running<NET_COMMON_Neph_Shared> common_;
};

// Running and block averages of a kind's record.
template <class R>
class SIM_neph_averages {
  public:
    void add(FTIME time, R record) {
        running_.add(time, record);
        block_.add(record);
    }
    [[nodiscard]] R running() const { return running_.mean(); }
    R take_block(FTIME start) {
        R record = block_.mean();
        record.start_time = start;
        block_.reset();
        return record;
    }

  private:
    SIM_record_running<R> running_;
    SIM_record_block<R> block_;
};
