// The simulated instruments on one clock, with a sink each that knows whose words it takes.
#include "station_feed.h"

#include <utility>

class STATION_feed::sink : public SIM_sink {
  public:
    sink(const char* source, std::vector<STATION_message>* sent) : source_(source), sent_(sent) {}

    void send(const SIM_message& m) override {
        const char* const bytes = static_cast<const char*>(m.payload);
        const std::size_t size = m.dsd != nullptr ? m.dsd->total_size : 0;
        sent_->push_back({source_, m.msg, m.dsd, {bytes, bytes + size}});
    }
    void log(const std::string& /*line*/) override {}

  private:
    const char* source_;
    std::vector<STATION_message>* sent_;
};

STATION_feed::STATION_feed() : world_(SIM_settings{}, 1'700'000'040) {
    for (const SIM_kind& kind : SIM_kinds()) {
        auto out = std::make_shared<sink>(kind.name, &sent_);
        const SIM_member member{&kind, kind.name, kind.display_name, kind.id_ch};
        seats_.push_back({out, std::make_unique<SIM_instrument>(world_, *out, member)});
    }
}

std::vector<STATION_message> STATION_feed::join() {
    for (const seat& s : seats_)
        s.instrument->join();
    return std::exchange(sent_, {});
}

std::vector<STATION_message> STATION_feed::next_second() {
    world_.advance();
    for (const seat& s : seats_)
        s.instrument->tick();
    return std::exchange(sent_, {});
}
