// Housekeeping values by the names of record fields.
#include "simstation/physics/channels.h"

#include <algorithm>
#include <cmath>

SIM_channels::SIM_channels(std::span<const SIM_channel> rows) {
    for (const SIM_channel& row : rows) {
        const double at = row.lag > 0 ? row.start : row.target;
        values_.push_back({&row, row.target, at, at});
    }
}

void SIM_channels::step(SIM_noise& noise, double dt) {
    for (value& v : values_) {
        v.actual = SIM_approach(v.actual, v.target, v.row->lag, dt);
        v.reading = noise.normal(v.actual, v.row->noise);
    }
}

std::size_t SIM_channels::fill(const NETDSD_entry* dsd, void* record) const {
    std::size_t written = 0;
    for (const value& v : values_) {
        const NETDSD_field* const f = NETDSD_field_by_name(dsd, v.row->field);
        if (f == nullptr || f->nested != nullptr || f->count != 1) continue;
        char* const at = static_cast<char*>(record) + f->offset;
        NETDSD_visit_type(f->ft, [&]<class T>(std::type_identity<T>) {
            if constexpr (std::is_floating_point_v<T>) {
                NETDSD_store<T>(at, static_cast<T>(v.reading));
            } else {
                NETDSD_store<T>(at, static_cast<T>(std::lround(v.reading)));
            }
        });
        ++written;
    }
    return written;
}

const SIM_channels::value* SIM_channels::find(std::string_view field) const {
    const auto found =
        std::find_if(values_.begin(), values_.end(), [&](const value& v) { return field == v.row->field; });
    return found != values_.end() ? &*found : nullptr;
}

double SIM_channels::reading(std::string_view field) const {
    const value* const v = find(field);
    return v != nullptr ? v->reading : VESK_MISSING;
}

double SIM_channels::target(std::string_view field) const {
    const value* const v = find(field);
    return v != nullptr ? v->target : VESK_MISSING;
}

void SIM_channels::set_target(std::string_view field, double target) {
    for (value& v : values_) {
        if (field == v.row->field) v.target = target;
    }
}

double SIM_channels::progress() const {
    double least = 1;
    for (const value& v : values_) {
        if (v.row->lag <= 0 || v.target == v.row->start) continue;
        least = std::min(least, (v.actual - v.row->start) / (v.target - v.row->start));
    }
    return std::max(0.0, least);
}

BOOL SIM_channels::settled(double tolerance) const {
    return std::all_of(values_.begin(), values_.end(),
                       [&](const value& v) { return std::abs(v.actual - v.target) <= tolerance; });
}
