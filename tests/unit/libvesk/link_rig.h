// A link under test with a raw server at its other end, on one thread, and the time in the test's hand.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "libvesk/inst.h"
#include "libvesk/util.h"
#include "support/wire.h"

class LinkRig : public testing::Test {
  protected:
    struct Got {
        NETMSG_type type;
        std::string text;  // "SOURCE>DEST RECORD FLAGS"
        std::string payload;
        bool operator==(const Got&) const = default;
    };

    void SetUp() override {
        UTIL_set_clock([] { return clock_; });
        listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const sockaddr_un a = wire::address(path());
        ASSERT_EQ(bind(listener_, reinterpret_cast<const sockaddr*>(&a), sizeof a), 0);
        ASSERT_EQ(listen(listener_, 4), 0);
    }
    void TearDown() override {
        UTIL_set_clock(nullptr);
        close(listener_);
    }
    [[nodiscard]] std::string path() const { return folder_ / "server.sock"; }

    BOOL connect(const char* name = "CLIENT", BOOL monitor = FALSE) {
        const std::string host = path();
        VESKMSG_connect_params params;
        VESKMSG_init_params(&params);
        params.id_str = name;
        params.host_override = host.c_str();
        params.monitor = monitor;
        const BOOL ok = INST_connect(&inst_, &params);
        if (ok) server_ = std::make_unique<wire::End>(accept(listener_, nullptr, nullptr));
        return ok;
    }
    void open(const char* name = "CLIENT") {
        ASSERT_TRUE(connect(name)) << VESKMSG_error(link());
        FRAME_bytes welcome;
        FRAME_encode_welcome(&welcome);
        server_->send(welcome);
        ASSERT_TRUE(until([this] { return link()->stat == VESKMSG_S_OPEN; }));
        server_->frames().clear();
    }
    void round() {
        server_->look();
        VESKMSG_process_messages(link(), take, this);
    }
    template <class DONE>
    [[nodiscard]] bool until(DONE done) {
        return wire::until([this] { round(); }, done);
    }
    void pass(double seconds) {
        for (double t = 0; t < seconds; t += 1) {
            clock_ += 1;
            round();
        }
    }
    [[nodiscard]] VESKMSG_link* link() { return &inst_.msg_lnk; }

    static void take(VESKMSG_proc_msg* pm, void* rig) {
        const std::string text = std::string(pm->src_name) + ">" + pm->dest_name + " " +
                                 (pm->dsd != nullptr ? pm->dsd->name : "-") + " " + std::to_string(pm->flags);
        const std::string payload(static_cast<const char*>(pm->pds),
                                  pm->pds != nullptr ? pm->dsd->total_size : 0);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pm->pds) % 8, 0U);
        static_cast<LinkRig*>(rig)->got_.push_back({pm->msg->msg, text, payload});
    }
    [[nodiscard]] std::vector<std::string> texts() const {
        std::vector<std::string> out;
        for (const Got& g : got_)
            out.push_back(g.text);
        return out;
    }

    static inline double clock_ = 1.7e9;
    wire::Folder folder_;
    int listener_ = -1;
    INST_link inst_;
    std::unique_ptr<wire::End> server_;
    std::vector<Got> got_;
};
