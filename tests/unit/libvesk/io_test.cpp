// The registry of I/O channels: which report changes what, and what is forgotten when.
#include "libvesk/link/io.h"

#include "libvesk/messages/records/io.h"
#include "link_rig.h"

namespace {

constexpr double NONE = VESK_MISSING;

class Io : public LinkRig {
  protected:
    void SetUp() override {
        LinkRig::SetUp();
        ASSERT_TRUE(IO_init());
        IO_register_link(&inst_);
        open();
    }
    void TearDown() override {
        IO_cleanup();
        LinkRig::TearDown();
    }
    void report(NETMSG_type type, const char* channel, double value, double running,
                const char* source = "IO1") {
        auto record = NETDSD_default<NET_IO_Value>();
        UTIL_strcpynt(record.channel, channel);
        record.value = value;
        record.running = running;
        FRAME_bytes out;
        FRAME_encode_message(&out,
                             {type, 1, source, "", "NET_IO_Value", std::as_bytes(std::span(&record, 1))});
        send(out);
    }
    void send(const FRAME_bytes& bytes) {
        server_->send(bytes);
        const std::size_t due = got_.size() + 1;
        ASSERT_TRUE(until([&] { return got_.size() == due; }));
    }
};

TEST_F(Io, EachReportSetsItsOwnMember) {
    struct {
        NETMSG_type type;
        double value;
        double running;
        double value_after;
        double running_after;
    } const rows[] = {
        {MSG_IO_INSTANT, 1, NONE, 1, NONE},    {MSG_IO_RUNNINGAVG, NONE, 2, 1, 2},
        {MSG_IO_INSTANT, 3, 4, 3, 4},          {MSG_IO_RUNNINGAVG, 5, 6, 5, 6},
        {MSG_IO_AVG, 9, NONE, 5, 6},           {MSG_IO_AVG, 9, 7, 5, 7},
        {MSG_IO_RUNNINGAVG, 8, NONE, 8, NONE}, {MSG_IO_INSTANT, NONE, 1, NONE, 1},
    };
    EXPECT_EQ(IO_lookup("Pd_P01"), NONE);
    for (const auto& row : rows) {
        report(row.type, "Pd_P01", row.value, row.running);
        EXPECT_EQ(IO_lookup("Pd_P01"), row.value_after);
        EXPECT_EQ(IO_lookup_runningavg("Pd_P01"), row.running_after);
    }
    EXPECT_EQ(IO_lookup("Pd_P0"), NONE);
    EXPECT_EQ(IO_lookup(nullptr), NONE);
    EXPECT_EQ(IO_lookup_runningavg(""), NONE);
}

TEST_F(Io, ChannelsGoWithTheSourceThatReportedThemLast) {
    report(MSG_IO_INSTANT, "a", 1, NONE, "IO1");
    report(MSG_IO_INSTANT, "b", 2, NONE, "IO1");
    report(MSG_IO_INSTANT, "b", 3, NONE, "IO2");
    report(MSG_IO_INSTANT, "", 4, NONE, "IO2");
    send(wire::message(MSG_NOTIFY_CLIENT_TERMINATE, 1, "", 0, "IO1"));
    EXPECT_EQ(IO_lookup("a"), NONE);
    EXPECT_EQ(IO_lookup("b"), 3);
    EXPECT_EQ(IO_lookup(""), NONE);
    IO_cleanup();
    EXPECT_EQ(IO_lookup("b"), NONE);
    report(MSG_IO_INSTANT, "a", 2, NONE);
    EXPECT_EQ(IO_lookup("a"), NONE) << "nothing is followed any more";
}

}  // namespace
