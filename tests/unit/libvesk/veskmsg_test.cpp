// The peer's end of the link, against a server that says exactly what a test wants it to say.
#include "libvesk/link/veskmsg.h"

#include <sys/resource.h>
#include <unistd.h>

#include "libvesk/messages/records/log.h"
#include "libvesk/messages/records/loopctl.h"
#include "libvesk/messages/records/server.h"
#include "link_rig.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using wire::message;

using Link = LinkRig;

NET_SERVER_InstrumentInfo info(const char* type, const char* tag = "") {
    auto out = NETDSD_default<NET_SERVER_InstrumentInfo>();
    UTIL_strcpynt(out.type, type);
    UTIL_strcpynt(out.tags[1].tag, tag);
    return out;
}

template <class R>
FRAME_bytes message_of(NETMSG_type type, const R& record, const char* source) {
    FRAME_bytes out;
    FRAME_encode_message(&out,
                         {type, 1, source, "", NETDSD_of<R>()->name, std::as_bytes(std::span(&record, 1))});
    return out;
}

TEST_F(Link, SaysHelloAndIsOpenWhenWelcomed) {
    ASSERT_TRUE(connect("N11"));
    EXPECT_EQ(link()->stat, VESKMSG_S_AWAITING_HANDSHAKE);
    ASSERT_TRUE(until([this] { return !server_->frames().empty(); }));
    EXPECT_EQ(server_->frames()[0].bytes, wire::hello(FRAME_PEER_INSTRUMENT, "N11"));
    server_->send(wire::welcome());
    server_->send(message(MSG_LOG_INFO, 1, "", 1, "N12"));  // what is kept comes at once
    server_->look();
    EXPECT_TRUE(INST_wait_connected(&inst_));
    EXPECT_EQ(VESKMSG_error(link()), "");
    EXPECT_TRUE(got_.empty());  // and waits until it is asked for
    ASSERT_TRUE(until([this] { return !got_.empty(); }));
    EXPECT_THAT(texts(), ElementsAre("N12> NET_LOG_Info 1"));

    ASSERT_TRUE(connect("CLIENT", TRUE));
    ASSERT_TRUE(until([this] { return !server_->frames().empty(); }));
    EXPECT_EQ(server_->frames()[0].bytes, wire::hello(FRAME_PEER_MONITOR, "CLIENT"));
}

TEST_F(Link, SaysWhyItCannotConnect) {
    const std::string nobody = folder_ / "nobody.sock";
    const std::string dead = folder_ / "dead.sock";
    { const wire::Listener gone_at_once(dead); }
    struct {
        const char* id;
        const char* host;
        BOOL monitor;
        std::string error;
    } const rows[] = {
        {"CLIENT", nobody.c_str(), FALSE, "cannot connect to " + nobody + ": No such file or directory"},
        {"CLIENT", dead.c_str(), FALSE, "cannot connect to " + dead + ": Connection refused"},
        {"CLIENT", "127.0.0.1:1", FALSE, "cannot connect to 127.0.0.1:1: Connection refused"},
        {"CLIENT", "a b", FALSE, "\"a b\" names no host"},
        {"", nobody.c_str(), FALSE, "\"\" cannot be a name"},
        {nullptr, nobody.c_str(), FALSE, "\"\" cannot be a name"},
        {"N11", nobody.c_str(), TRUE, "only a CLIENT can be a monitor"},
    };
    for (const auto& row : rows) {
        const VESKMSG_connect_params params{row.id, row.host, row.monitor};
        const BOOL up = INST_connect(&inst_, &params) && INST_wait_connected(&inst_);
        EXPECT_FALSE(up);
        EXPECT_EQ(VESKMSG_error(link()), row.error);
    }
}

TEST_F(Link, PathFromTheEnvironmentThatIsTooLongIsAnErrorLikeAnyOther) {
    setenv("VESK_SOCKET", ("/\x1b" + std::string(106, 'x')).c_str(), 1);
    const VESKMSG_connect_params params{"CLIENT", nullptr, FALSE};
    EXPECT_FALSE(INST_connect(&inst_, &params));
    EXPECT_THAT(VESKMSG_error(link()), HasSubstr("connect to /?xx"));
    EXPECT_THAT(VESKMSG_error(link()), HasSubstr("longer than 107 bytes"));
}

TEST_F(Link, RunningOutOfDescriptorsIsAnErrorLikeAnyOther) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers need descriptors of their own to look at memory";
#endif
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit few = before;
    const int next = dup(0);
    close(next);
    for (int left = 0; left < 4; ++left) {
        few.rlim_cur = static_cast<rlim_t>(next + left);
        setrlimit(RLIMIT_NOFILE, &few);
        const BOOL connected = connect();
        setrlimit(RLIMIT_NOFILE, &before);
        EXPECT_FALSE(connected) << left;
        EXPECT_THAT(VESKMSG_error(link()), HasSubstr("Too many open files")) << left;
    }
}

TEST_F(Link, EndsForEveryReasonWithItsOwnText) {
    const FRAME_bytes refusal = wire::refusal(FRAME_NAME_TAKEN, "name taken\x1b[2J");
    struct {
        bool opened;
        FRAME_bytes bytes;
        bool hang_up;
        const char* error;
    } const rows[] = {
        {false, refusal, true, "the server refused: name taken?[2J"},
        {false, {}, true, "the other side closed the connection"},
        {true, {}, true, "the connection to the server ended: the other side closed the connection"},
        {true, FRAME_bytes(9, std::byte{'x'}), false,
         "the server broke the protocol: a frame of 2021161084 bytes"},
        {true, refusal, false, "a frame out of turn"},
        {false, message(MSG_LOG_FLUSH, 1), false, "a frame out of turn"},
    };
    for (const auto& row : rows) {
        if (row.opened) {
            open();
        } else {
            ASSERT_TRUE(connect());
        }
        server_->send(row.bytes);
        server_->look();
        if (row.hang_up) server_->hang_up();
        EXPECT_TRUE(wire::until([&] { VESKMSG_process_messages(link(), nullptr, nullptr); },
                                [&] { return link()->stat == VESKMSG_S_UNLINKED; }))
            << row.error;
        EXPECT_THAT(VESKMSG_error(link()), HasSubstr(row.error));
        EXPECT_FALSE(INST_test_connected(&inst_));
        EXPECT_FALSE(VESKMSG_queue_message(link(), MSG_LOG_FLUSH, 1, nullptr, nullptr, 0, nullptr));
    }
}

TEST_F(Link, LastWordsOfTheServerAreDeliveredBeforeItsEnd) {
    open();
    for (int i = 0; i < 100; ++i)
        server_->send(message(MSG_LOG_MONITOR, 1, "", 0, "N11"));
    ASSERT_TRUE(wire::until([&] { round(); }, [&] { return server_->unsent() == 0; }));
    server_->hang_up();
    ASSERT_TRUE(wire::until([&] { VESKMSG_process_messages(link(), take, this); },
                            [&] { return link()->stat == VESKMSG_S_UNLINKED; }));
    EXPECT_EQ(got_.size(), 100U);
}

TEST_F(Link, GivesUpAfterTenSecondsWithoutAnswerOrAtOnceOnAnExitRequest) {
    ASSERT_TRUE(connect());
    UTIL_request_exit();
    EXPECT_FALSE(INST_wait_connected(&inst_));
    UTIL_request_exit(FALSE);
    EXPECT_EQ(VESKMSG_error(link()), "");
    static int looks = 0;
    UTIL_set_clock([] { return clock_ + 0.5 * ++looks; });
    EXPECT_FALSE(INST_wait_connected(&inst_));
    EXPECT_GE(looks, 20);
}

TEST_F(Link, SilenceForThirtySecondsEndsItAndHeartbeatsDoNot) {
    open();
    for (int i = 0; i < 10; ++i) {
        pass(5);
        server_->send(wire::heartbeat());
    }
    round();
    EXPECT_TRUE(INST_test_connected(&inst_));
    EXPECT_NEAR(server_->heartbeats(), 10, 1);
    clock_ += 1e6;  // a clock that is set is not silence
    round();
    EXPECT_TRUE(INST_test_connected(&inst_));
    pass(31);
    EXPECT_FALSE(INST_test_connected(&inst_));
    EXPECT_EQ(VESKMSG_error(link()), "30 s of silence from the server");
}

TEST_F(Link, ReceivedPayloadsAreCleanAndWrongMessagesAreIgnored) {
    open();
    NET_SERVER_InstrumentInfo dirty{};
    std::memset(&dirty, 0x1b, sizeof dirty);
    server_->send(message_of(MSG_SERVER_INSTRUMENTINFO, dirty, "N\x1b"));
    server_->send(message(MSG_LOG_INFO, 1, "", 0xFF, "N11"));
    for (const auto& [type, record, size] : {std::tuple{999, "", 0},
                                             {MSG_LOG_INFO, "NET_NONE", 1},
                                             {MSG_LOG_INFO, "NET_LOG_Info", 2},
                                             {MSG_LOG_INFO, "NET_IO_Value", 48}}) {
        FRAME_bytes wrong;
        FRAME_encode_message(&wrong,
                             {type, 1, "N11", "", record, FRAME_bytes(static_cast<std::size_t>(size))});
        server_->send(wrong);
    }
    server_->send(message(MSG_LOG_FLUSH, 5, "N12", 0, "CLIENT"));
    testing::internal::CaptureStderr();
    ASSERT_TRUE(until([this] { return got_.size() >= 3; }));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("received and ignored: type 999"));
    EXPECT_THAT(texts(),
                ElementsAre("N?> NET_SERVER_InstrumentInfo 1", "N11> NET_LOG_Info 1", "CLIENT>N12 - 5"));
    EXPECT_EQ(got_[0].payload.substr(0, 32), std::string(31, ' ') + '\0');
    EXPECT_EQ(got_[1].payload, std::string("\1"));
}

TEST_F(Link, QueuedMessagesArriveAndWrongOnesAreRefusedHere) {
    open("N11");
    const NET_LOG_SetState state{TRUE};
    EXPECT_TRUE(VESKMSG_queue(link(), MSG_LOG_SET_STATE, 1, "LOGGER", state));
    EXPECT_TRUE(VESKMSG_announce(link(), info("cpc_3010")));
    testing::internal::CaptureStderr();
    const auto refused = [&](int type, DWORD flags, const void* record, std::size_t size, const char* name) {
        return !VESKMSG_queue_message(link(), static_cast<NETMSG_type>(type), flags, nullptr, record, size,
                                      name);
    };
    EXPECT_TRUE(refused(MSG_LOG_SET_STATE, 1, &state, 2, "NET_LOG_SetState"));
    EXPECT_TRUE(refused(MSG_LOG_SET_STATE, 1, &state, 1, "NET_NONE"));
    EXPECT_TRUE(refused(MSG_LOG_SET_STATE, 1, &state, 1, nullptr));
    EXPECT_TRUE(refused(MSG_LOG_SET_STATE, 1, nullptr, 1, "NET_LOG_SetState"));
    EXPECT_TRUE(refused(MSG_LOG_FLUSH, 0, nullptr, 0, nullptr));
    EXPECT_TRUE(refused(MSG_SERVER_HEARTBEAT, 1, nullptr, 0, nullptr));
    EXPECT_TRUE(refused(270, 1, nullptr, 0, nullptr));
    const std::string complaints = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(complaints.begin(), complaints.end(), '\n'), 7);
    EXPECT_TRUE(
        VESKMSG_queue_message(link(), MSG_COMMON_NEPH_SPANCHECK_ISSUE, 0, "N12", nullptr, 0, nullptr));
    // Bytes between the members of a record are not sent.
    unsigned char setpoint[sizeof(NET_LOVEPID_Setpoint)];
    std::memset(setpoint, 0x93, sizeof setpoint);
    EXPECT_TRUE(VESKMSG_queue_message(link(), MSG_LOVEPID_SET, 0, "N12", setpoint, sizeof setpoint,
                                      "NET_LOVEPID_Setpoint"));
    EXPECT_TRUE(VESKMSG_flush(link(), 5));
    ASSERT_TRUE(until([this] { return server_->frames().size() >= 4; }));
    const auto& sent = server_->frames();
    ASSERT_EQ(sent.size(), 4U);
    EXPECT_EQ(sent[0].dest, "LOGGER");
    EXPECT_EQ(sent[0].payload, FRAME_bytes{std::byte{1}});
    EXPECT_EQ(sent[1].flags, FRAME_TO_ALL | FRAME_KEEP);
    EXPECT_EQ(sent[2].dest, "N12");
    EXPECT_EQ(sent[2].record, "");
    FRAME_bytes without_padding(sizeof setpoint, std::byte{0x93});
    without_padding[10] = without_padding[11] = std::byte{0};
    EXPECT_EQ(sent[3].payload, without_padding);
}

TEST_F(Link, ServerThatDoesNotReadBoundsWhatIsQueued) {
    open();
    const auto monitor = NETDSD_default<NET_LOG_MonitorMessage>();
    testing::internal::CaptureStderr();
    int taken = 0;
    while (taken < 2000 && VESKMSG_queue(link(), MSG_LOG_MONITOR, 1, nullptr, monitor))
        ++taken;
    EXPECT_FALSE(VESKMSG_queue(link(), MSG_LOG_MONITOR, 1, nullptr, monitor));
    const std::string complaints = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(complaints.begin(), complaints.end(), '\n'), 1);  // not one per message
    EXPECT_NEAR(taken, 1023, 5);
    EXPECT_FALSE(VESKMSG_flush(link(), 0.05));
    ASSERT_TRUE(until([&] { return server_->frames().size() == static_cast<std::size_t>(taken); }));
    EXPECT_TRUE(VESKMSG_queue(link(), MSG_LOG_MONITOR, 1, nullptr, monitor));
}

TEST_F(Link, CallerThatDoesNotTakeMessagesStopsTheReadingAndLosesNothing) {
    open();
    constexpr std::size_t COUNT = 4000;  // 32 MB, many times what may wait
    const FRAME_bytes m = message(MSG_LOG_MONITOR, 1, "", 0, "N11");
    for (std::size_t i = 0; i < COUNT; ++i)
        server_->send(m);
    VESKMSG_link* const links[] = {link()};
    std::size_t before = 0;
    do {
        before = server_->unsent();
        for (int i = 0; i < 50; ++i) {
            server_->write();
            EXPECT_TRUE(VESKMSG_wait(links, 0) || i == 0);
        }
        clock_ += 5;  // who does not read hears no silence
    } while (server_->unsent() != before);
    EXPECT_GT(server_->unsent(), COUNT * m.size() / 4);
    ASSERT_TRUE(until([&] { return got_.size() == COUNT; }));
}

TEST_F(Link, AFloodWithoutEndLeavesItsReaderTimeForOtherThings) {
    open();
    struct flood {
        wire::End* server;
        FRAME_bytes message;
        std::size_t delivered = 0;
    } endless{server_.get(), message(MSG_LOG_MONITOR, 1, "", 0, "N11")};
    constexpr std::size_t TOO_MANY = 10'000;  // 80 MB
    const VESKMSG_cb goes_on = [](VESKMSG_proc_msg*, void* param) {
        auto& f = *static_cast<flood*>(param);
        if (++f.delivered > TOO_MANY) return;
        f.server->send(f.message);
        f.server->look();
    };
    for (int i = 0; i < 2000; ++i)
        server_->send(endless.message);
    ASSERT_TRUE(wire::until(
        [&] {
            server_->look();
            VESKMSG_process_messages(link(), goes_on, &endless);
        },
        [&] { return endless.delivered > 1000; }));
    EXPECT_LT(endless.delivered, TOO_MANY);
}

TEST_F(Link, KnowsInstrumentsFromAnnouncementToDeparture) {
    open();
    server_->send(message_of(MSG_SERVER_INSTRUMENTINFO, info("neph", "dry"), "N11"));
    ASSERT_TRUE(until([this] { return got_.size() == 1; }));
    NET_SERVER_InstrumentInfo found{};
    EXPECT_TRUE(VESKMSG_instrument_info_by_name(link(), "N11", &found));
    EXPECT_STREQ(found.type, "neph");
    EXPECT_FALSE(VESKMSG_instrument_info_by_name(link(), "N1", &found));
    EXPECT_FALSE(VESKMSG_instrument_info_by_name(link(), nullptr, &found));

    for (const char* selector : {"N11", "N*", "dry", "d?y", "", static_cast<const char*>(nullptr)})
        EXPECT_TRUE(VESKMSG_filter_name_and_tag(link(), "N11", selector)) << (selector ? selector : "null");
    EXPECT_FALSE(VESKMSG_filter_name_and_tag(link(), "N11", "wet"));
    EXPECT_FALSE(VESKMSG_filter_name_and_tag(link(), "N12", "dry"));
    EXPECT_FALSE(VESKMSG_filter_name_and_tag(link(), nullptr, "N11"));

    server_->send(message(MSG_NOTIFY_CLIENT_TERMINATE, 1, "", 0, "N11"));
    ASSERT_TRUE(until([this] { return got_.size() == 2; }));
    EXPECT_FALSE(VESKMSG_instrument_info_by_name(link(), "N11", &found));
    EXPECT_FALSE(VESKMSG_filter_name_and_tag(link(), "N11", "dry"));
}

TEST_F(Link, CallbacksMayQueueAndListenersHearFirst) {
    open();
    static std::vector<std::string> order;
    static VESKMSG_link* the_link;
    the_link = link();
    const VESKMSG_cb listener = [](VESKMSG_proc_msg*, void*) { order.emplace_back("listener"); };
    const VESKMSG_cb answer = [](VESKMSG_proc_msg*, void*) {
        order.emplace_back("callback");
        VESKMSG_queue_message(the_link, MSG_LOG_FLUSH, 1, nullptr, nullptr, 0, nullptr);
    };
    VESKMSG_add_listener(link(), listener, nullptr);
    for (const std::size_t messages : {1U, 2U}) {
        server_->send(message(MSG_TEST_ONE, 1));
        ASSERT_TRUE(wire::until(
            [&] {
                server_->look();
                VESKMSG_process_messages(link(), answer, nullptr);
            },
            [&] { return server_->frames().size() == messages; }));
        VESKMSG_remove_listener(link(), listener, nullptr);
    }
    EXPECT_THAT(order, ElementsAre("listener", "callback", "callback"));
}

TEST_F(Link, WaitWakesForMessagesDescriptorsAndTheEnd) {
    open();
    VESKMSG_link* const links[] = {link()};
    EXPECT_FALSE(VESKMSG_wait(links, 0.01));
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    EXPECT_FALSE(VESKMSG_wait(links, 0.01, ends[0]));
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    EXPECT_TRUE(VESKMSG_wait(links, 20, ends[0]));
    server_->send(message(MSG_TEST_ONE, 1));
    server_->look();
    EXPECT_TRUE(VESKMSG_wait(links, 20));
    round();
    EXPECT_EQ(got_.size(), 1U);
    UTIL_request_exit();
    EXPECT_FALSE(VESKMSG_wait(links, 20));
    UTIL_request_exit(FALSE);
    server_->hang_up();
    EXPECT_TRUE(VESKMSG_wait(links, 20));
    EXPECT_EQ(link()->stat, VESKMSG_S_UNLINKED);
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
