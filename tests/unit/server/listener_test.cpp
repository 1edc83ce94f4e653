// Where the server listens: the life of its socket's file, and TCP.
#include "server/listener.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <asio/io_context.hpp>
#include <fstream>

#include "hub_rig.h"
#include "libvesk/link/inst.h"

namespace {

using testing::HasSubstr;

mode_t mode_of(const std::string& path) {
    struct stat st = {};
    return lstat(path.c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
}

// A socket that a killed server leaves behind.
void leave_dead_socket(const std::string& path) {
    const wire::Listener gone_at_once(path);
}

class ListenerPath : public testing::Test {
  protected:
    // "" when it could be bound.
    std::string bind(LISTENER_path* at, const std::string& path) {
        std::string why;
        fd_ = at->bind(path, &why);
        return fd_ >= 0 ? "" : why;
    }
    TemporaryFolder folder_;
    std::string path_ = folder_ / "run/server.sock";
    int fd_ = -1;
};

TEST_F(ListenerPath, MakesDirectoryAndSocketForOwnerAndGroupAndRemovesWhatItMade) {
    const mode_t before = umask(0);
    {
        LISTENER_path at;
        ASSERT_EQ(bind(&at, path_), "");
        EXPECT_EQ(mode_of(folder_ / "run"), 0750U);
        EXPECT_EQ(mode_of(path_), 0660U);
        EXPECT_EQ(at.warning(), "");
    }
    umask(before);
    EXPECT_TRUE(std::filesystem::is_empty(folder_ / "run"));
}

TEST_F(ListenerPath, LivingServersSocketIsNeverTaken) {
    LISTENER_path first;
    ASSERT_EQ(bind(&first, path_), "");
    LISTENER_path second;
    EXPECT_THAT(bind(&second, path_), HasSubstr("another server is running"));
    // Not even when its lock is gone.
    std::filesystem::remove(path_ + ".lock");
    LISTENER_path third;
    EXPECT_THAT(bind(&third, path_), HasSubstr("another server is running"));
    third.release();
    EXPECT_NO_THROW(wire::End{path_});
}

TEST_F(ListenerPath, DeadServersSocketIsTakenOver) {
    std::filesystem::create_directory(folder_ / "run");
    leave_dead_socket(path_);
    std::ofstream(path_ + ".lock") << "";  // a dead process holds no lock
    LISTENER_path at;
    ASSERT_EQ(bind(&at, path_), "");
    EXPECT_NO_THROW(wire::End{path_});
}

TEST_F(ListenerPath, SocketThatIsNoLongerOursStaysAtTheEnd) {
    LISTENER_path at;
    ASSERT_EQ(bind(&at, path_), "");
    std::filesystem::rename(path_, path_ + ".old");
    leave_dead_socket(path_);
    at.release();
    EXPECT_TRUE(std::filesystem::is_socket(path_));
}

TEST_F(ListenerPath, SaysWhyAPlaceIsNoGood) {
    std::ofstream(folder_ / "file") << "";
    std::filesystem::create_directory(folder_ / "open");
    chmod((folder_ / "open").c_str(), 0777);
    const std::pair<std::string, const char*> rows[] = {
        {folder_ / std::string(200, 'x'), "too long"},
        {folder_ / "missing/run/server.sock", "No such file or directory"},
        {folder_ / "file/server.sock", "Not a directory"},
        {folder_ / "file", "a file of another kind"},
        {folder_ / "open/server.sock", "can be changed by everybody"},
    };
    for (const auto& [path, why] : rows) {
        LISTENER_path at;
        const std::string got = bind(&at, path);
        EXPECT_FALSE(got.empty()) << path;
        EXPECT_THAT(got, testing::AnyOf(HasSubstr(why), HasSubstr("is not a directory"))) << path;
    }
    EXPECT_TRUE(std::filesystem::is_regular_file(folder_ / "file")) << "nobody else's file is removed";
}

using ListenerRig = HubRig;

TEST_F(ListenerRig, LinksConnectOverTcp) {
    start();
    auto tcp = listen({"", "127.0.0.1", 0});
    const std::string host = tcp->text();
    EXPECT_THAT(host, testing::MatchesRegex("127\\.0\\.0\\.1:[1-9][0-9]*"));
    INST_link link;
    const VESKMSG_connect_params params{"CLIENT", host.c_str(), FALSE};
    ASSERT_TRUE(INST_connect(&link, &params)) << VESKMSG_error(&link.msg_lnk);
    EXPECT_TRUE(until([&] {
        VESKMSG_process_messages(&link.msg_lnk, nullptr, nullptr);
        return link.msg_lnk.stat == VESKMSG_S_OPEN;
    }));
    LISTENER second(context_, {}, {});
    ADDRESS taken;
    std::string why;
    ASSERT_TRUE(ADDRESS_parse(host, &taken, &why));
    EXPECT_FALSE(second.listen(taken, &why));
    EXPECT_THAT(why, HasSubstr("Address already in use"));
    tcp.reset();
    pump();
    EXPECT_THAT(listener_log_, testing::IsEmpty()) << "its end is no failure";
}

TEST_F(ListenerRig, RunningOutOfDescriptorsNeitherSpinsNorEndsIt) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers need descriptors of their own to look at memory";
#endif
    wire::End& waiting = raw();
    waiting.send(wire::hello(FRAME_PEER_CLIENT, "CLIENT"));
    waiting.write();
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &none);
    for (int i = 0; i < 5; ++i) {
        pump();
        listener_->tick();
    }
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(listener_log_.size(), 1U);
    EXPECT_EQ(hub_->count(), 0U);
    EXPECT_TRUE(until([&] {
        listener_->tick();
        return !waiting.frames().empty();
    }));
}

}  // namespace
