// Runs one simulated instrument without any link: simulated seconds pass as fast as the machine can, and
// everything it sends is kept for the test to look at.
//
//   SimProbe probe("cpc_3010");
//   probe.run(120);
//   EXPECT_GT(+probe.last<MSG_CPC_3010_INSTANT>().concentration, 300);
//
// Doubles of records may be unaligned: hand them to EXPECT_... by value, with a "+" in front.
#pragma once

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "libvesk/messages/records/all.h"
#include "simstation/kinds.h"

// When simulated stations of tests begin: a Tuesday night, with a new minute.
constexpr FTIME SIM_START = 1'700'000'040;

template <class R>
concept WireRecord = requires {
    NETDSD_traits<R>::entry;
};

// The record that a type of message carries.
template <NETMSG_type>
struct MessageRecord;
#define SIM_MESSAGE_RECORD(msg, record) \
    template <>                         \
    struct MessageRecord<msg> {         \
        using type = record;            \
    };
NETMSG_LIST(SIM_MESSAGE_RECORD)
#undef SIM_MESSAGE_RECORD
template <NETMSG_type MSG>
using CarriedBy = typename MessageRecord<MSG>::type;

// A value between the two; by value, since fields of records may be unaligned.
inline void expect_between(double value, double low, double high, const char* what) {
    EXPECT_TRUE(value >= low && value <= high) << what << " is " << value;
}

struct SentMessage {
    FTIME time;  // simulated, when it was sent
    NETMSG_type msg;
    DWORD flags;
    std::string dest;
    const NETDSD_entry* dsd;  // null without a payload
    std::string payload;
    bool operator==(const SentMessage&) const = default;

    // Its record, which must be of that kind.
    template <WireRecord R>
    [[nodiscard]] R as() const {
        EXPECT_EQ(dsd, NETDSD_of<R>());
        R record = NETDSD_default<R>();
        if (dsd == NETDSD_of<R>()) std::memcpy(&record, payload.data(), sizeof record);
        return record;
    }
};

// A sink that keeps everything.
class CollectingSink : public SIM_sink {
  public:
    void send(const SIM_message& m) override {
        const char* const bytes = static_cast<const char*>(m.payload);
        std::string payload = m.dsd != nullptr ? std::string(bytes, m.dsd->total_size) : std::string();
        sent.push_back({now != nullptr ? *now : 0, m.msg, m.flags, m.dest, m.dsd, std::move(payload)});
    }
    void log(const std::string& line) override { lines.push_back(line); }

    const FTIME* now = nullptr;
    std::vector<SentMessage> sent;
    std::vector<std::string> lines;
};

// A message as a link would deliver it; the record is copied.
struct DeliveredMessage {
    template <WireRecord R>
    DeliveredMessage(NETMSG_type type, R record, std::string destination, std::string source = "CLIENT")
        : DeliveredMessage(type, std::move(destination), std::move(source)) {
        payload.assign((sizeof record + sizeof(double) - 1) / sizeof(double), 0);
        std::memcpy(payload.data(), &record, sizeof record);
        pm.dsd = NETDSD_of<R>();
        pm.pds = payload.data();
    }
    explicit DeliveredMessage(NETMSG_type type, std::string destination = "", std::string source = "CLIENT")
        : src(std::move(source)), dest(std::move(destination)) {
        pm = {NETMSG_by_type(type), nullptr, 0, src.c_str(), dest.c_str(), nullptr};
    }
    DeliveredMessage(const DeliveredMessage&) = delete;
    [[nodiscard]] const VESKMSG_proc_msg* get() const { return &pm; }

  private:
    std::string src;
    std::string dest;
    std::vector<double> payload;  // aligned for any record
    VESKMSG_proc_msg pm;
};

class SimProbe {
  public:
    struct Options {
        SIM_settings settings;  // seed 1, averages of 60 s
        FTIME start = SIM_START;
        std::string name = "";  // the kind's own when empty
    };

    // Joins at once. `type` is a row of the table of kinds.
    explicit SimProbe(const char* type) : SimProbe(type, Options{}) {}
    SimProbe(const char* type, const Options& options)
        : world(options.settings, options.start), instrument(world, sink, member_of(type, options.name)) {
        sink.now = &world.now;
        instrument.join();
    }

    void run(int seconds) {
        for (int i = 0; i < seconds; ++i) {
            world.advance();
            instrument.tick();
        }
    }

    // A command as a console sends it to this instrument; TRUE when it was understood.
    template <WireRecord R>
    BOOL command(NETMSG_type msg, R record) {
        return receive(DeliveredMessage(msg, record, instrument.name()));
    }
    BOOL command(NETMSG_type msg) { return receive(DeliveredMessage(msg, instrument.name())); }
    // The same to all.
    template <WireRecord R>
    BOOL broadcast(NETMSG_type msg, R record, const char* source = "CLIENT") {
        return receive(DeliveredMessage(msg, record, "", source));
    }
    BOOL broadcast(NETMSG_type msg, const char* source = "CLIENT") {
        return receive(DeliveredMessage(msg, "", source));
    }
    BOOL receive(const DeliveredMessage& m) { return instrument.receive(m.get()); }
    BOOL set(const char* name, const char* value) { return instrument.set(name, SIM_value(value)); }

    // Everything sent of one type, in order.
    [[nodiscard]] std::vector<SentMessage> of(NETMSG_type msg) const {
        std::vector<SentMessage> found;
        for (const SentMessage& m : sink.sent) {
            if (m.msg == msg) found.push_back(m);
        }
        return found;
    }
    [[nodiscard]] std::size_t count(NETMSG_type msg) const { return of(msg).size(); }
    template <NETMSG_type MSG>
    [[nodiscard]] std::vector<CarriedBy<MSG>> records() const {
        std::vector<CarriedBy<MSG>> found;
        for (const SentMessage& m : of(MSG))
            if (m.dsd != nullptr) found.push_back(m.as<CarriedBy<MSG>>());
        return found;
    }
    // The latest of one type; a record that says nothing, and a failed test, when there is none.
    template <NETMSG_type MSG>
    [[nodiscard]] CarriedBy<MSG> last() const {
        const auto all = records<MSG>();
        EXPECT_FALSE(all.empty()) << NETMSG_by_type(MSG)->name << " was never sent";
        return all.empty() ? NETDSD_default<CarriedBy<MSG>>() : all.back();
    }
    void forget() { sink.sent.clear(); }

    CollectingSink sink;
    SIM_world world;
    SIM_instrument instrument;

  private:
    static SIM_member member_of(const char* type, const std::string& name) {
        const SIM_kind* const kind = SIM_kind_by_type(type);
        if (kind == nullptr) throw std::invalid_argument(type);
        return {kind, name.empty() ? kind->name : name, kind->display_name, kind->id_ch};
    }
};
