// Averages of values and of records.
#include "simstation/physics/average.h"

#include <cmath>

void SIM_stats::add(double value) {
    if (VESK_is_missing(value)) return;
    const double before = value - mean_;
    mean_ += before / ++count_;
    squares_ += before * (value - mean_);
}

double SIM_stats::mean() const {
    return count_ > 0 ? mean_ : VESK_MISSING;
}

double SIM_stats::stddev() const {
    return count_ > 1 ? std::sqrt(squares_ / (count_ - 1)) : VESK_MISSING;
}

void SIM_running::add(FTIME time, double value) {
    values_.emplace_back(time, value);
    while (values_.front().first <= time - seconds_)
        values_.pop_front();
}

FTIME SIM_running::start() const {
    return values_.empty() ? VESK_NO_TIME : values_.front().first;
}

SIM_stats SIM_running::stats() const {
    SIM_stats stats;
    for (const auto& [time, value] : values_)
        stats.add(value);
    return stats;
}

SIM_record_sums::SIM_record_sums(const NETDSD_entry* dsd) : dsd_(dsd) {
    NETDSD_for_each_leaf(dsd, [this](const NETDSD_field& f, std::size_t at) {
        if (NETDSD_element_type(f.ft) == NETDSD_FT_DOUBLE) slots_.push_back({.offset = at});
    });
    reset();
}

void SIM_record_sums::reset() {
    count_ = 0;
    for (slot& s : slots_)
        s = {.offset = s.offset};
    first_.assign(dsd_->total_size, 0);
    NETDSD_set_defaults(dsd_, first_.data());
    last_ = first_;
}

void SIM_record_sums::add(const void* record) {
    const char* const bytes = static_cast<const char*>(record);
    last_.assign(bytes, bytes + dsd_->total_size);
    if (count_++ == 0) first_ = last_;
    for (slot& s : slots_) {
        const double value = NETDSD_load<double>(bytes + s.offset);
        if (VESK_is_missing(value)) continue;
        s.sum += value;
        ++s.count;
    }
}

void SIM_record_sums::mean(void* record) const {
    char* const bytes = static_cast<char*>(record);
    std::memcpy(bytes, last_.data(), last_.size());
    NETDSD_for_each_leaf(dsd_, [&](const NETDSD_field& f, std::size_t at) {
        if (NETDSD_element_type(f.ft) == NETDSD_FT_FTIME)
            std::memcpy(bytes + at, first_.data() + at, sizeof(FTIME));
    });
    for (const slot& s : slots_)
        NETDSD_store<double>(bytes + s.offset, s.count > 0 ? s.sum / s.count : VESK_MISSING);
}
