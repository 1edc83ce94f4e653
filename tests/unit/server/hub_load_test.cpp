// The hub under load and over time: floods, readers that do not read, peers that say nothing, clocks that
// leap.
#include "hub_rig.h"
#include "libvesk/link/veskmsg.h"

namespace {

using wire::message;

class HubLoad : public HubRig {
  protected:
    void start_with_queues_of(std::size_t kilobytes) {
        HUB_params params;
        params.connection.queue_bytes = kilobytes * 1024;
        start(params);
    }
    // `count` messages of about 8 KiB to everybody who is called CLIENT.
    static void flood(wire::End& from, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            from.send(message(MSG_LOG_MONITOR, 0, "CLIENT"));
    }
};

TEST_F(HubLoad, SenderWaitsForASlowReaderAndLosesNothing) {
    start_with_queues_of(256);
    wire::End& slow = client();
    wire::End& a = instrument("A1");
    make_deaf(slow);
    constexpr std::size_t COUNT = 400;
    flood(a, COUNT);
    // Until the hub takes no more: queue, socket buffers and one read are all there is.
    std::size_t before = 0;
    do {
        before = a.unsent();
        for (int i = 0; i < 100; ++i)
            round();
    } while (a.unsent() != before);
    EXPECT_GT(a.unsent(), COUNT * 8204 / 2);

    ASSERT_TRUE(wire::until(
        [&] {
            round();
            slow.look();
        },
        [&] { return slow.frames().size() == COUNT; }));
    EXPECT_FALSE(slow.ended());
}

TEST_F(HubLoad, MessageToManyWhoDoNotReadIsStoredOnceAndItsMemoryComesBack) {
    start_with_queues_of(1024);
    for (int i = 0; i < 20; ++i)
        make_deaf(client());
    wire::End& a = instrument("A1");
    flood(a, 300);
    for (int i = 0; i < 300; ++i)
        round();
    EXPECT_GT(hub_->memory(), 1024U * 1024);
    EXPECT_LT(hub_->memory(), 2 * 1024U * 1024);
    pass(2);
    EXPECT_EQ(logged("it does not read"), 20U);
    settle(a);
    pass(HUB::TICK_SECONDS);
    EXPECT_LT(hub_->memory(), 64U * 1024);
}

TEST_F(HubLoad, MemoryOfAllIsBoundedAndWhoHoldsMostOfItGoesFirst) {
    HUB_params params;
    params.memory_bytes = 1024 * 1024;
    start(params);
    wire::End& little = instrument("L1");
    wire::End& most = instrument("M1");
    make_deaf(little);
    make_deaf(most);
    wire::End& a = instrument("A1");
    for (int i = 0; i < 200; ++i) {
        a.send(message(MSG_LOG_MONITOR, 0, "M1"));
        if (i % 4 == 0) a.send(message(MSG_LOG_MONITOR, 0, "L1"));
    }
    settle(a);
    EXPECT_EQ(logged("M1"), 2U);
    EXPECT_EQ(logged("no memory is left"), 1U);
    EXPECT_LE(hub_->memory(), params.memory_bytes);
    EXPECT_TRUE(wire::until([&] { round(), little.look(); }, [&] { return little.frames().size() == 52; }));
}

TEST_F(HubLoad, NewcomerIsToldMoreThanItsQueueHoldsAndHoldsUpNobody) {
    start_with_queues_of(64);
    wire::End& a = instrument("A1");
    constexpr int KEPT = 60;  // of 8 KiB, of types that are tied to no record
    FRAME_bytes m = message(MSG_LOG_MONITOR, FRAME_TO_ALL | FRAME_KEEP);
    for (int type = 0, kept = 0; kept < KEPT; ++type) {
        if (NETMSG_by_type(type)->dsd != nullptr) continue;
        m[6] = std::byte(type % 256);
        m[7] = std::byte(type / 256);
        a.send(m);
        ++kept;
    }
    settle(a);
    wire::End& late = raw();
    make_deaf(late);
    late.send(wire::hello(FRAME_PEER_CLIENT, "CLIENT"));
    late.write();
    pass(1);
    for (int i = 0; i < 5; ++i) {
        settle(a);
        pass(1);
    }
    EXPECT_LT(hub_->memory(), 256U * 1024);
    ASSERT_TRUE(
        wire::until([&] { round(), late.look(); }, [&] { return late.frames().size() == 1 + KEPT + 5; }));
    EXPECT_EQ(late.frames()[KEPT + 1].value, MSG_TEST_ONE) << "what happened meanwhile comes behind";
}

TEST_F(HubLoad, PeerThatNeverReadsIsDroppedAndTheOthersGoOn) {
    start_with_queues_of(256);
    wire::End& reader = client();
    wire::End& never = client();
    wire::End& a = instrument("A1");
    make_deaf(never);
    flood(a, 300);
    ASSERT_TRUE(until([&] {
        pass(HUB::TICK_SECONDS);
        return reader.frames().size() == 300;
    }));
    EXPECT_EQ(logged("it does not read"), 1U);
    EXPECT_EQ(hub_->count(), 2U);
}

TEST_F(HubLoad, PeerThatReadsATrickleIsDroppedInTheEnd) {
    start_with_queues_of(1024);
    wire::End& trickle = client();
    wire::End& reader = client();
    wire::End& a = instrument("A1");
    make_deaf(trickle);
    flood(a, 300);
    for (int i = 0; i < 200; ++i)
        round();
    double seconds = 0;
    for (; seconds < 20 && logged("reads too slowly") == 0; seconds += HUB::TICK_SECONDS) {
        trickle.skip(16 * 1024);  // once in every tick, so that it never stalls
        pass(HUB::TICK_SECONDS);
    }
    EXPECT_NEAR(seconds, 5.0, 1.0);
    EXPECT_TRUE(until([&] { return reader.frames().size() == 300; }));
}

TEST_F(HubLoad, SenderThatDoesNotReadItsOwnEchoIsDroppedAlone) {
    start_with_queues_of(256);
    wire::End& mad = instrument("M1");
    wire::End& reader = client();
    make_deaf(mad);
    for (int i = 0; i < 300; ++i)
        mad.send(message(MSG_LOG_MONITOR, ALL));
    ASSERT_TRUE(until([&] {
        mad.write();
        pass(HUB::TICK_SECONDS);
        return logged("disconnected") == 1;
    }));
    settle(reader);
    EXPECT_EQ(reader.frames().back().value, MSG_NOTIFY_CLIENT_TERMINATE);
}

TEST_F(HubLoad, SilentPeersAreDroppedAfterThirtySecondsAndHeartbeatsCount) {
    wire::End& silent = instrument("A1");
    wire::End& alive = client();
    for (int i = 0; i < 5; ++i) {
        alive.send(wire::heartbeat());
        pass(5);
    }
    for (const double leap : {3600.0, -7200.0, 1e9, -1e9}) {  // a clock that is set is not silence
        clock_ += leap;
        hub_->tick();
        round();
    }
    EXPECT_EQ(logged("silent"), 0U);
    alive.send(wire::heartbeat());
    pass(6);
    EXPECT_EQ(logged("A1"), 2U);  // connected, and then
    EXPECT_EQ(logged("silent for too long"), 1U);
    EXPECT_TRUE(silent.ended());
    EXPECT_FALSE(alive.ended());
    EXPECT_NEAR(alive.heartbeats(), 6, 1);
}

TEST_F(HubLoad, HalfAHelloIsClosedAfterTenSeconds) {
    wire::End& half = raw();
    const FRAME_bytes hello = wire::hello(FRAME_PEER_CLIENT, "CLIENT");
    half.send(FRAME_span(hello).first(9));
    raw();
    pass(9);
    EXPECT_EQ(hub_->count(), 2U) << "and one that says nothing";
    pass(2);
    EXPECT_EQ(hub_->count(), 0U);
    EXPECT_EQ(logged("no complete hello"), 2U);
}

TEST_F(HubLoad, NewcomerWaitsForANameWhoseHolderIsGoneButNotReadToItsEnd) {
    start_with_queues_of(256);
    wire::End& first = instrument("A1");
    wire::End& never = client();
    make_deaf(never);
    // The holder has gone, but what it said last is still held up by a peer that does not read.
    flood(first, 100);
    for (int i = 0; i < 200; ++i)
        round();
    first.hang_up();
    wire::End& second = raw();
    second.send(wire::hello(FRAME_PEER_INSTRUMENT, "A1"));
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_TRUE(second.frames().empty());  // neither welcome nor refused
    pass(2);                               // the one that does not read is dropped, the holder's end is read
    ASSERT_FALSE(second.frames().empty());
    EXPECT_EQ(second.frames()[0].kind, FRAME_WELCOME);
}

}  // namespace
