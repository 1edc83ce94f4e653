// The registry with kinds made for the test: what is created and removed when, and who is offered what.
#include "cursclient/display.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "libvesk/messages/records/server.h"
#include "libvesk/support/util.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Every callback notes its display ("kind:source") and what happened.
std::vector<std::string> g_events;
int g_key_taken_by = 0;  // uid of the display that uses keys
BOOL g_match_wanted = FALSE;
BOOL g_match_active = FALSE;

struct probe {
    char who[80];
    DWORD uid;
};

void note(const void* pd, const std::string& what) {
    g_events.push_back(std::string(static_cast<const probe*>(pd)->who) + " " + what);
}

BOOL init(void* prv_data, DISPLAY_common_params* cps, DISPLAY_match_params* mps, void* dsp) {
    auto* pd = static_cast<probe*>(prv_data);
    EXPECT_EQ(pd->who[0], '\0') << "records are handed over zero-filled";
    EXPECT_EQ(static_cast<DISPLAY_type*>(dsp)->uid, cps->uid);
    pd->uid = cps->uid;
    const std::string who = mps == nullptr ? "persistent:"
                                           : std::string(mps->type) + ":" + mps->src_name + ":" +
                                                 mps->display_name + ":" + mps->id_ch;
    UTIL_strcpynt(pd->who, who.c_str());
    note(pd, "init");
    return TRUE;
}

BOOL init_refuses(void* prv_data, DISPLAY_common_params*, DISPLAY_match_params*, void*) {
    UTIL_strcpynt(static_cast<probe*>(prv_data)->who, "refuser");
    note(prv_data, "init");
    return FALSE;
}

void cleanup(void* prv_data) {
    note(prv_data, "cleanup");
}

void update(void* prv_data, DISPLAY_common_params* cps, void*) {
    EXPECT_EQ(static_cast<probe*>(prv_data)->uid, cps->uid);
    note(prv_data, "update");
}

void msg_proc(void* prv_data, DISPLAY_common_params* cps, DISPLAY_msg_params* mp, void* dsp) {
    EXPECT_EQ(static_cast<DISPLAY_type*>(dsp)->uid, cps->uid);
    note(prv_data, mp->pm->msg->name);
}

BOOL keypress(void* prv_data, DISPLAY_common_params* cps, DISPLAY_keypress* kp, void*) {
    note(prv_data, "key " + std::string(1, static_cast<char>(kp->key)));
    return cps->uid == static_cast<DWORD>(g_key_taken_by);
}

void* match(void* prv_data, DISPLAY_common_params*, DISPLAY_msg_params* mp, void* dsp) {
    if (prv_data == nullptr) {
        EXPECT_EQ(dsp, nullptr);
        if (!g_match_wanted || g_match_active || mp->pm->msg->msg != MSG_LOG_AVG_FLUSH) return nullptr;
        auto* pd = static_cast<probe*>(std::calloc(1, sizeof(probe)));
        UTIL_strcpynt(pd->who, "matched");
        g_match_active = TRUE;
        return pd;
    }
    if (mp->pm->msg->msg != MSG_NOTIFY_CLIENT_TERMINATE) return prv_data;
    g_match_active = FALSE;
    return nullptr;
}

constexpr DISPLAY_DECL FULL{sizeof(probe), init, cleanup, update, msg_proc, keypress, nullptr};
constexpr DISPLAY_DECL QUIET{sizeof(probe), init, cleanup, nullptr, nullptr, nullptr, nullptr};
constexpr DISPLAY_DECL REFUSER{sizeof(probe), init_refuses, cleanup, nullptr, nullptr, nullptr, nullptr};
constexpr DISPLAY_DECL NOTHING{};
constexpr DISPLAY_DECL MATCHED{sizeof(probe), nullptr, cleanup, nullptr, msg_proc, nullptr, match};

class Registry : public ::testing::Test {
  protected:
    ~Registry() override {
        DISPLAY_cleanup();
        DISPLAY_set_kinds(nullptr, 0);
    }

    void start(std::vector<DISPLAY_DEFN> kinds) {
        kinds_ = std::move(kinds);
        g_events.clear();
        g_match_wanted = g_match_active = FALSE;
        g_key_taken_by = 0;
        DISPLAY_set_kinds(kinds_.data(), kinds_.size());
        EXPECT_TRUE(DISPLAY_init());
    }

    static std::vector<std::string> events() { return std::exchange(g_events, {}); }

    static void receive(const char* source, NETMSG_type msg, const NETDSD_entry* dsd = nullptr,
                        const void* payload = nullptr) {
        VESKMSG_proc_msg pm{NETMSG_by_type(msg), dsd, 1, source, "", payload};
        EXPECT_FALSE(DISPLAY_handle_message(&pm));
    }

    static void announce(const char* source, const char* type) {
        NET_SERVER_InstrumentInfo info{};
        UTIL_strcpynt(info.type, type);
        UTIL_strcpynt(info.display_name, "Name");
        info.id_ch = 'i';
        receive(source, MSG_SERVER_INSTRUMENTINFO, NETDSD_of<NET_SERVER_InstrumentInfo>(), &info);
    }

    static std::vector<DWORD> uids() {
        std::vector<DWORD> all;
        for (const DISPLAY_type& dsp : LL_each<DISPLAY_type>(g_displays))
            all.push_back(dsp.uid);
        return all;
    }

  private:
    std::vector<DISPLAY_DEFN> kinds_;
};

TEST_F(Registry, StartsPersistentKindsInOrderAndSkipsThoseThatRefuse) {
    start({{"PERSISTENT_A", &QUIET},
           {"alpha", &FULL},
           {"PERSISTENT_B", &REFUSER},
           {"PERSISTENT_C", &NOTHING},
           {"PERSISTENTX", &FULL}});
    EXPECT_THAT(events(), ElementsAre("persistent: init", "refuser init")) << "a refusal is not cleaned up";
    EXPECT_THAT(uids(), ElementsAre(1, 3)) << "the uid of the refused display stays used";
    const auto& last = *LL_data<DISPLAY_type>(g_displays.tail);
    EXPECT_STREQ(last.match_name, "PERSISTENT_C");
    EXPECT_FALSE(last.wasmatched);
    EXPECT_EQ(last.prv_data, nullptr) << "a kind without a record has none";
    EXPECT_EQ(DISPLAY_by_name("PERSISTENT_C"), nullptr) << "only announced displays have a source";
    DISPLAY_cleanup();
    EXPECT_THAT(events(), ElementsAre("persistent: cleanup"));
    EXPECT_EQ(g_displays.count, 0);
}

TEST_F(Registry, AnnouncementMakesOneDisplayPerMatchingRowOnce) {
    start({{"alpha", &FULL}, {"Alpha", &FULL}, {"beta", &FULL}, {"alpha", &FULL}});
    announce("S1", "alpha");
    EXPECT_THAT(events(), ElementsAre("alpha:S1:Name:i init", "alpha:S1:Name:i init",
                                      "alpha:S1:Name:i MSG_SERVER_INSTRUMENTINFO",
                                      "alpha:S1:Name:i MSG_SERVER_INSTRUMENTINFO"))
        << "both see the announcement itself";
    announce("S1", "alpha");
    announce("S1", "beta");
    announce("S2", "gamma");
    announce("", "alpha");
    announce(nullptr, "alpha");
    receive("S3", MSG_SERVER_INSTRUMENTINFO);
    EXPECT_THAT(uids(), ElementsAre(1, 2));
    EXPECT_EQ(DISPLAY_by_name("S1")->uid, 1U);
    EXPECT_EQ(g_display_uid_next, 3U);
}

TEST_F(Registry, AKindThatNothingShowsIsReportedOnceForEachTimeItJoins) {
    start({{"alpha", &FULL}, {"later", &NOTHING}});
    const auto complaints = [](const char* source, const char* type) {
        ::testing::internal::CaptureStderr();
        announce(source, type);
        return ::testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(complaints("S1", "beta"), "no display for S1: its kind \"beta\" is unknown here\n");
    EXPECT_EQ(complaints("S1", "beta"), "");
    receive("S1", MSG_NOTIFY_CLIENT_TERMINATE);
    EXPECT_NE(complaints("S1", "later"), "");
    EXPECT_EQ(complaints("S2", "alpha"), "");
}

TEST_F(Registry, AnInstrumentThatLeavesTakesItsOwnDisplaysAlong) {
    start({{"PERSISTENT_S1", &QUIET}, {"alpha", &FULL}});
    announce("S1", "alpha");
    announce("S2", "alpha");
    ASSERT_NE(DISPLAY_privatedata_by_uid(2), nullptr);
    receive("", MSG_NOTIFY_CLIENT_TERMINATE);
    receive("PERSISTENT_S1", MSG_NOTIFY_CLIENT_TERMINATE);
    EXPECT_EQ(g_displays.count, 3);
    events();
    receive("S1", MSG_NOTIFY_CLIENT_TERMINATE);
    EXPECT_THAT(events(),
                ElementsAre("alpha:S1:Name:i cleanup", "alpha:S2:Name:i MSG_NOTIFY_CLIENT_TERMINATE"));
    announce("S1", "alpha");
    EXPECT_THAT(uids(), ElementsAre(1, 3, 4)) << "uids are never used again";
    EXPECT_EQ(DISPLAY_privatedata_by_uid(2), nullptr);
    EXPECT_NE(DISPLAY_privatedata_by_uid(4), nullptr);
    announce("S3", "PERSISTENT_S1");
    EXPECT_THAT(events(), Contains("PERSISTENT_S1:S3:Name:i init"))
        << "a persistent type may be announced too";
}

TEST_F(Registry, MatchCallbackMakesAndRemovesItsDisplay) {
    start({{"MATCHED", &MATCHED}, {"alpha", &FULL}});
    g_match_wanted = TRUE;
    receive("S1", MSG_LOG_INFO);
    EXPECT_THAT(events(), IsEmpty());
    receive("S1", MSG_LOG_AVG_FLUSH);
    receive("S1", MSG_LOG_AVG_FLUSH);
    EXPECT_THAT(events(), ElementsAre("matched MSG_LOG_AVG_FLUSH", "matched MSG_LOG_AVG_FLUSH"))
        << "made once, and offered the message that made it";
    const auto& dsp = *LL_data<DISPLAY_type>(g_displays.head);
    EXPECT_FALSE(dsp.wasmatched);
    EXPECT_STREQ(dsp.match_name, "");
    EXPECT_THAT(uids(), ElementsAre(1));
    DISPLAY_handle_disconnect("");
    DISPLAY_handle_disconnect("S1");
    EXPECT_THAT(uids(), ElementsAre(1)) << "only its own callback removes it";
    receive("S1", MSG_NOTIFY_CLIENT_TERMINATE);
    EXPECT_THAT(events(), ElementsAre("matched MSG_NOTIFY_CLIENT_TERMINATE", "matched cleanup"));
    EXPECT_THAT(uids(), IsEmpty());
    receive("S1", MSG_LOG_AVG_FLUSH);
    EXPECT_THAT(uids(), ElementsAre(2)) << "the next trigger makes a fresh one";
}

TEST_F(Registry, KeysGoToTheFirstThatUsesThemAndRedrawsToAll) {
    start({{"alpha", &FULL}, {"quiet", &QUIET}});
    for (const char* source : {"S1", "S2", "S3"})
        announce(source, "alpha");
    announce("S4", "quiet");
    events();
    g_key_taken_by = 2;
    EXPECT_TRUE(DISPLAY_distribute_keypress('k'));
    EXPECT_THAT(events(), ElementsAre("alpha:S1:Name:i key k", "alpha:S2:Name:i key k"));
    g_key_taken_by = 0;
    EXPECT_FALSE(DISPLAY_distribute_keypress('k'));
    EXPECT_EQ(events().size(), 3U);
    DISPLAY_update();
    EXPECT_THAT(events(),
                ElementsAre("alpha:S1:Name:i update", "alpha:S2:Name:i update", "alpha:S3:Name:i update"));
}

}  // namespace
