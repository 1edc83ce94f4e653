// Averages of what an instrument measures: of one value with its standard deviation, and of whole records by
// their descriptors. Each comes as a block (from one reset to the next) and as a running average over the
// last minute. Missing values are left out; an average of none is missing.
#pragma once

#include <deque>
#include <utility>
#include <vector>

#include "libvesk/netdsd.h"

inline constexpr double SIM_RUNNING_SECONDS = 60;

// Block average of one value.
class SIM_stats {
  public:
    void add(double value);
    void reset() { *this = {}; }
    [[nodiscard]] int count() const { return m_count; }
    [[nodiscard]] double mean() const;
    [[nodiscard]] double stddev() const;  // of the sample; missing below two values

  private:
    int m_count = 0;
    double m_mean = 0;
    double m_squares = 0;  // sum of squared distances from the mean
};

// Running average of one value.
class SIM_running {
  public:
    explicit SIM_running(double seconds = SIM_RUNNING_SECONDS) : m_seconds(seconds) {}
    void add(FTIME time, double value);  // forgets what is `seconds` old or older
    void reset() { m_values.clear(); }
    [[nodiscard]] FTIME start() const;  // of the oldest value; -1 without any
    [[nodiscard]] SIM_stats stats() const;
    [[nodiscard]] double mean() const { return stats().mean(); }
    [[nodiscard]] double stddev() const { return stats().stddev(); }

  private:
    double m_seconds;
    std::deque<std::pair<FTIME, double>> m_values;
};

// Sums over the doubles of a record type, wherever they stand in it (arrays, nested records).
class SIM_record_sums {
  public:
    explicit SIM_record_sums(const NETDSD_entry* dsd);
    void add(const void* record);
    void reset();
    // The mean record: doubles averaged, times those of the first record added, all else from the last.
    // Without any record, the values of a record that says nothing.
    void mean(void* record) const;
    [[nodiscard]] int count() const { return m_count; }

  private:
    struct slot {
        std::size_t offset;  // of the double in the record
        double sum = 0;
        int count = 0;  // of values that were not missing
    };
    const NETDSD_entry* m_dsd;
    int m_count = 0;
    std::vector<slot> m_slots;
    std::vector<char> m_first;
    std::vector<char> m_last;
};

// Block average of records of type R.
template <class R>
class SIM_record_block {
  public:
    void add(R record) { m_sums.add(&record); }
    void reset() { m_sums.reset(); }
    [[nodiscard]] int count() const { return m_sums.count(); }
    [[nodiscard]] R mean() const {
        R record;
        m_sums.mean(&record);
        return record;
    }

  private:
    SIM_record_sums m_sums{NETDSD_of<R>()};
};

// Running average of records of type R.
template <class R>
class SIM_record_running {
  public:
    explicit SIM_record_running(double seconds = SIM_RUNNING_SECONDS) : m_seconds(seconds) {}
    void add(FTIME time, R record) {
        m_records.emplace_back(time, record);
        while (m_records.front().first <= time - m_seconds)
            m_records.pop_front();
    }
    void reset() { m_records.clear(); }
    [[nodiscard]] R mean() const {
        SIM_record_sums sums{NETDSD_of<R>()};
        for (const auto& [time, record] : m_records)
            sums.add(&record);
        R mean;
        sums.mean(&mean);
        return mean;
    }

  private:
    double m_seconds;
    std::deque<std::pair<FTIME, R>> m_records;
};
