// The span check of one nephelometer as the station runs it: five phases of filtered air and CO2, whose ends
// a console gave, the averages of the two gases, and the results. Each instrument runs its own; a check of
// all of them is the same order to each.
#pragma once

#include <array>

#include "libvesk/messages/records/common_neph.h"
#include "simstation/physics/average.h"
#include "simstation/physics/neph_cell.h"

class SIM_spancheck {
  public:
    // Starts at the ends that the order gives. The console gives them by its own clock, the real one: what is
    // left of the first phase is measured by that, and all of it then passes in simulated seconds. FALSE, and
    // an error line, when the check is refused. One that runs begins anew.
    BOOL begin(SIM_instrument& sim, const NET_COMMON_Neph_SpancheckIssue& order);
    // FALSE when none runs.
    BOOL abort(SIM_instrument& sim);
    // On to the phase that the present time belongs to. TRUE when the last one is over: the results were
    // sent.
    BOOL advance(SIM_instrument& sim, const SIM_neph_six& rayleigh);
    // One second's measurement; counts in the phases that sample.
    void measure(const NET_COMMON_Neph_SpancheckRun& second);
    // Says the phase to all, when it is another.
    void say(SIM_instrument& sim) const;

    void forbid(BOOL forbidden) { forbidden_ = forbidden; }
    [[nodiscard]] BOOL running() const { return phase_ != NET_COMMON_NEPH_SC_NONE; }
    [[nodiscard]] int phase() const { return phase_; }
    [[nodiscard]] FTIME end() const;        // of the last phase, likewise
    [[nodiscard]] FTIME phase_end() const;  // simulated; VESK_NO_TIME when none runs
    [[nodiscard]] SIM_neph_inlet inlet() const;

  private:
    static constexpr std::size_t PHASES = NET_COMMON_NEPH_SC_COUNT - 1;
    void enter(SIM_instrument& sim, int phase);
    BOOL conclude(SIM_instrument& sim, const SIM_neph_six& rayleigh);

    int phase_ = NET_COMMON_NEPH_SC_NONE;
    std::array<FTIME, PHASES> ends_{};
    SIM_record_block<NET_COMMON_Neph_SpancheckRun> air_;
    SIM_record_block<NET_COMMON_Neph_SpancheckRun> co2_;
    BOOL forbidden_ = FALSE;
};

// Compares what was measured with what CO2 should give. `rayleigh` is that of air at standard conditions.
[[nodiscard]] NET_COMMON_Neph_SpancheckResults SIM_spancheck_results(const NET_COMMON_Neph_SpancheckRun& air,
                                                                     const NET_COMMON_Neph_SpancheckRun& co2,
                                                                     const SIM_neph_six& rayleigh);
