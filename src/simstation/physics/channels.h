// Housekeeping values: the temperatures, flows, pressures, voltages that every instrument reports beside its
// measurement. A kind lists them as rows by the name of the record's field; each value follows its target
// with a lag, carries noise, and is written into any record that has a field of that name.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "libvesk/messages/netdsd.h"
#include "simstation/physics/noise.h"

struct SIM_channel {
    const char* field;  // of the record
    double target;      // in the record's unit
    double noise;       // standard deviation of one reading
    double lag = 0;     // seconds to follow the target; 0: it is always there
    double start = 0;   // where a lagging value is when the instrument is switched on
};

class SIM_channels {
  public:
    // The rows are static tables: they must outlive this.
    explicit SIM_channels(std::span<const SIM_channel> rows);

    void step(SIM_noise& noise, double dt);
    // Writes the present readings into the fields of their names, whatever their number type; a row whose
    // field the record does not have is left out. Returns how many were written.
    template <class R>
    std::size_t fill(R& record) const {
        return fill(NETDSD_of<R>(), &record);
    }
    std::size_t fill(const NETDSD_entry* dsd, void* record) const;

    [[nodiscard]] double reading(std::string_view field) const;  // with its noise; missing for no such row
    void set_target(std::string_view field, double target);
    [[nodiscard]] double target(std::string_view field) const;
    // How far the slowest value has come from its start to its target: 0 to 1 when all are there.
    [[nodiscard]] double progress() const;
    // All lagging values are within `tolerance` of their targets.
    [[nodiscard]] BOOL settled(double tolerance) const;

  private:
    struct value {
        const SIM_channel* row;
        double target;
        double actual;
        double reading;
    };
    [[nodiscard]] const value* find(std::string_view field) const;
    std::vector<value> values_;
};
