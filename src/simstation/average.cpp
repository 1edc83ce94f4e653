// Averages of values and of records.
#include "simstation/average.h"

#include <cmath>

void SIM_stats::add(double value) {
    if (VESK_is_missing(value)) return;
    const double before = value - m_mean;
    m_mean += before / ++m_count;
    m_squares += before * (value - m_mean);
}

double SIM_stats::mean() const {
    return m_count > 0 ? m_mean : VESK_MISSING;
}

double SIM_stats::stddev() const {
    return m_count > 1 ? std::sqrt(m_squares / (m_count - 1)) : VESK_MISSING;
}

void SIM_running::add(FTIME time, double value) {
    m_values.emplace_back(time, value);
    while (m_values.front().first <= time - m_seconds)
        m_values.pop_front();
}

FTIME SIM_running::start() const {
    return m_values.empty() ? VESK_NO_TIME : m_values.front().first;
}

SIM_stats SIM_running::stats() const {
    SIM_stats stats;
    for (const auto& [time, value] : m_values)
        stats.add(value);
    return stats;
}

SIM_record_sums::SIM_record_sums(const NETDSD_entry* dsd) : m_dsd(dsd) {
    NETDSD_for_each_leaf(dsd, [this](const NETDSD_field& f, std::size_t at) {
        if (NETDSD_element_type(f.ft) == NETDSD_FT_DOUBLE) m_slots.push_back({.offset = at});
    });
    reset();
}

void SIM_record_sums::reset() {
    m_count = 0;
    for (slot& s : m_slots)
        s = {.offset = s.offset};
    m_first.assign(m_dsd->total_size, 0);
    NETDSD_set_defaults(m_dsd, m_first.data());
    m_last = m_first;
}

void SIM_record_sums::add(const void* record) {
    const char* const bytes = static_cast<const char*>(record);
    m_last.assign(bytes, bytes + m_dsd->total_size);
    if (m_count++ == 0) m_first = m_last;
    for (slot& s : m_slots) {
        const double value = NETDSD_load<double>(bytes + s.offset);
        if (VESK_is_missing(value)) continue;
        s.sum += value;
        ++s.count;
    }
}

void SIM_record_sums::mean(void* record) const {
    char* const bytes = static_cast<char*>(record);
    std::memcpy(bytes, m_last.data(), m_last.size());
    NETDSD_for_each_leaf(m_dsd, [&](const NETDSD_field& f, std::size_t at) {
        if (NETDSD_element_type(f.ft) == NETDSD_FT_FTIME)
            std::memcpy(bytes + at, m_first.data() + at, sizeof(FTIME));
    });
    for (const slot& s : m_slots)
        NETDSD_store<double>(bytes + s.offset, s.count > 0 ? s.sum / s.count : VESK_MISSING);
}
