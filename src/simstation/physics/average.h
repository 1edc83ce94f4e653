// Averages of what an instrument measures: of one value with its standard deviation, and of whole records by
// their descriptors. Each comes as a block (from one reset to the next) and as a running average over the
// last minute. Missing values are left out; an average of none is missing.
#pragma once

#include <deque>
#include <utility>
#include <vector>

#include "libvesk/messages/netdsd.h"

inline constexpr double SIM_RUNNING_SECONDS = 60;

// Block average of one value.
class SIM_stats {
  public:
    void add(double value);
    void reset() { *this = {}; }
    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] double mean() const;
    [[nodiscard]] double stddev() const;  // of the sample; missing below two values

  private:
    int count_ = 0;
    double mean_ = 0;
    double squares_ = 0;  // sum of squared distances from the mean
};

// Running average of one value.
class SIM_running {
  public:
    explicit SIM_running(double seconds = SIM_RUNNING_SECONDS) : seconds_(seconds) {}
    void add(FTIME time, double value);  // forgets what is `seconds` old or older
    void reset() { values_.clear(); }
    [[nodiscard]] FTIME start() const;  // of the oldest value; -1 without any
    [[nodiscard]] SIM_stats stats() const;
    [[nodiscard]] double mean() const { return stats().mean(); }
    [[nodiscard]] double stddev() const { return stats().stddev(); }

  private:
    double seconds_;
    std::deque<std::pair<FTIME, double>> values_;
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
    [[nodiscard]] int count() const { return count_; }

  private:
    struct slot {
        std::size_t offset;  // of the double in the record
        double sum = 0;
        int count = 0;  // of values that were not missing
    };
    const NETDSD_entry* dsd_;
    int count_ = 0;
    std::vector<slot> slots_;
    std::vector<char> first_;
    std::vector<char> last_;
};

// Block average of records of type R.
template <class R>
class SIM_record_block {
  public:
    void add(R record) { sums_.add(&record); }
    void reset() { sums_.reset(); }
    [[nodiscard]] int count() const { return sums_.count(); }
    [[nodiscard]] R mean() const {
        R record;
        sums_.mean(&record);
        return record;
    }

  private:
    SIM_record_sums sums_{NETDSD_of<R>()};
};

// Running average of records of type R.
template <class R>
class SIM_record_running {
  public:
    explicit SIM_record_running(double seconds = SIM_RUNNING_SECONDS) : seconds_(seconds) {}
    void add(FTIME time, R record) {
        records_.emplace_back(time, record);
        while (records_.front().first <= time - seconds_)
            records_.pop_front();
    }
    void reset() { records_.clear(); }
    [[nodiscard]] R mean() const {
        SIM_record_sums sums{NETDSD_of<R>()};
        for (const auto& [time, record] : records_)
            sums.add(&record);
        R mean;
        sums.mean(&mean);
        return mean;
    }

  private:
    double seconds_;
    std::deque<std::pair<FTIME, R>> records_;
};
