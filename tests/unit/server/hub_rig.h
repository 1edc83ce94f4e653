// A hub on a socket in a folder of its own, with its time in the test's hand and raw peers to talk to it. All
// of it runs on one thread: round() lets the hub and every peer do what they can.
#pragma once

#include "libvesk/link/asio_config.h"  // first

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <asio/io_context.hpp>
#include <memory>
#include <string>
#include <vector>

#include "libvesk/link/veskmsg.h"
#include "libvesk/support/util.h"
#include "server/hub.h"
#include "server/listener.h"
#include "support/wire.h"

constexpr DWORD ALL = FRAME_TO_ALL;

class HubRig : public testing::Test {
  protected:
    // Before the first peer; a test that wants other limits calls it with them. Every line is logged.
    void start(HUB_params params = {}) {
        params.log_window_seconds = 0;
        params.log = [this](const std::string& line) { log_.push_back(line); };
        UTIL_set_clock([] { return clock_; });
        hub_ = std::make_unique<HUB>(params);
        listener_ = listen({path(), {}, 0});
    }
    // One more way into the hub.
    std::unique_ptr<LISTENER> listen(const ADDRESS& address) {
        auto listener = std::make_unique<LISTENER>(
            context_,
            [this](STREAM::socket_type s, CONNECTION_origin o) { hub_->adopt(std::move(s), std::move(o)); },
            [this](const std::string& line) { listener_log_.push_back(line); });
        std::string why;
        EXPECT_TRUE(listener->listen(address, &why)) << why;
        return listener;
    }
    void TearDown() override {
        listener_.reset();
        hub_.reset();
        UTIL_set_clock(nullptr);
    }
    [[nodiscard]] std::string path() const { return folder_ / "hub.sock"; }

    void pump() {
        context_.restart();
        context_.poll();
    }
    void round() {
        pump();
        for (const auto& p : peers_)
            if (!deaf(p.get())) p->look();
    }
    template <class DONE>
    [[nodiscard]] bool until(DONE done) {
        return wire::until([this] { round(); }, done);
    }
    // Lets that much time pass, in steps as the server's clockwork makes them.
    void pass(double seconds) {
        for (double t = 0; t < seconds; t += HUB::TICK_SECONDS) {
            clock_ += HUB::TICK_SECONDS;
            hub_->tick();
            round();
        }
    }

    wire::End& raw() {
        if (!hub_) start();
        peers_.push_back(std::make_unique<wire::End>(path()));
        return *peers_.back();
    }
    wire::End& join(FRAME_peer_kind kind, const std::string& name = "CLIENT") {
        wire::End& peer = raw();
        peer.send(wire::hello(kind, name));
        EXPECT_TRUE(until([&] { return !peer.frames().empty(); }));
        EXPECT_EQ(peer.frames().at(0).kind, FRAME_WELCOME);
        peer.frames().erase(peer.frames().begin());
        return peer;
    }
    wire::End& instrument(const std::string& name) { return join(FRAME_PEER_INSTRUMENT, name); }
    wire::End& client() { return join(FRAME_PEER_CLIENT); }

    // Everything sent so far has been routed when a message sent now comes back to its sender.
    void settle(wire::End& peer) {
        peer.send(wire::message(MSG_TEST_ONE, ALL));
        const auto is_mark = [](const wire::Seen& s) { return s.value == MSG_TEST_ONE; };
        const auto arrived = [&](wire::End& p) {
            return p.ended() || std::any_of(p.frames().begin(), p.frames().end(), is_mark);
        };
        ASSERT_TRUE(until([&] { return arrived(peer); }));
        ASSERT_TRUE(until([&] {
            return std::all_of(peers_.begin(), peers_.end(),
                               [&](const auto& p) { return deaf(p.get()) || arrived(*p); });
        }));
        for (const auto& p : peers_)
            std::erase_if(p->frames(), is_mark);
    }
    // The names of the messages that a peer has received, in order, and forgets them.
    static std::vector<std::string> names(wire::End& peer) {
        std::vector<std::string> out;
        for (const wire::Seen& s : peer.frames())
            out.push_back(NETMSG_by_type(s.value)->name);
        peer.frames().clear();
        return out;
    }
    [[nodiscard]] std::size_t logged(const std::string& text) const {
        return static_cast<std::size_t>(std::count_if(
            log_.begin(), log_.end(), [&](const std::string& l) { return l.find(text) != l.npos; }));
    }
    // From here on round() leaves that peer's socket alone.
    void make_deaf(const wire::End& peer) { deaf_.push_back(&peer); }

    TemporaryFolder folder_;
    asio::io_context context_;
    std::unique_ptr<HUB> hub_;
    std::unique_ptr<LISTENER> listener_;
    std::vector<std::string> log_;
    std::vector<std::string> listener_log_;
    std::vector<std::unique_ptr<wire::End>> peers_;
    static inline double clock_ = 1.7e9;

  private:
    [[nodiscard]] bool deaf(const wire::End* peer) const {
        return std::count(deaf_.begin(), deaf_.end(), peer) != 0;
    }

    std::vector<const wire::End*> deaf_;
};
