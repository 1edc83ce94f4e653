// A link under test with a raw server at its other end, on one thread, and the time in the test's hand.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "libvesk/link/inst.h"
#include "libvesk/support/util.h"
#include "support/wire.h"

class LinkRig : public testing::Test {
  protected:
    struct Got {
        NETMSG_type type;
        std::string text;  // "SOURCE>DEST RECORD FLAGS"
        std::string payload;
    };

    void SetUp() override {
        UTIL_set_clock([] { return clock_; });
    }
    void TearDown() override { UTIL_set_clock(nullptr); }
    [[nodiscard]] std::string path() const { return folder_ / "server.sock"; }

    BOOL connect(const char* name = "CLIENT", BOOL monitor = FALSE) {
        const std::string host = path();
        const VESKMSG_connect_params params{name, host.c_str(), monitor};
        const BOOL ok = INST_connect(&inst_, &params);
        if (ok) server_ = std::make_unique<wire::End>(listener_.next());
        return ok;
    }
    void open(const char* name = "CLIENT") {
        ASSERT_TRUE(connect(name)) << VESKMSG_error(link());
        server_->send(wire::welcome());
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
    TemporaryFolder folder_;
    wire::Listener listener_{path()};
    INST_link inst_;
    std::unique_ptr<wire::End> server_;
    std::vector<Got> got_;
};
