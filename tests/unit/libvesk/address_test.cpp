// Addresses as people write them, and where the local server is looked for.
#include "libvesk/link/address.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

TEST(Address, ReadsWhatPeopleWrite) {
    const std::pair<const char*, const char*> rows[] = {
        {"station", "station:8375"}, {"10.0.0.7:1", "10.0.0.7:1"},
        {"[::1]:99", "[::1]:99"},    {"[fe80::1%eth0]", "[fe80::1%eth0]:8375"},
        {"::1", "[::1]:8375"},       {"/run/x.sock", "/run/x.sock"},
        {"a:b/c", "a:b/c"},
    };
    for (const auto& [text, expected] : rows) {
        ADDRESS address;
        std::string why;
        ASSERT_TRUE(ADDRESS_parse(text, &address, &why)) << text << ": " << why;
        EXPECT_EQ(ADDRESS_text(address), expected);
    }
}

TEST(Address, SaysWhatIsWrongAndLeavesTheAddressAlone) {
    const std::string long_path = "/" + std::string(107, 'x');
    const std::pair<std::string, const char*> rows[] = {
        {":99", "names no host"},      {"a b", "names no host"},       {"[::1", "names no host"},
        {"[]:9", "names no host"},     {"a\x1b", "names no host"},     {"station:", "the port of"},
        {"station:x", "the port of"},  {"station:99x", "the port of"}, {"station:65536", "the port of"},
        {"station:-1", "the port of"}, {"[::1]99", "the port of"},     {long_path, "longer than 107"},
    };
    for (const auto& [text, expected] : rows) {
        ADDRESS address{"/old", "old", 1};
        std::string why;
        EXPECT_FALSE(ADDRESS_parse(text, &address, &why)) << text;
        EXPECT_THAT(why, testing::HasSubstr(expected)) << text;
        EXPECT_EQ(why.find('\x1b'), why.npos);
        EXPECT_EQ(ADDRESS_text(address), "/old");
    }
}

TEST(Address, LooksForTheLocalServerInOrder) {
    setenv("VESK_SOCKET", "/here/x.sock", 1);
    setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
    EXPECT_EQ(ADDRESS_default().path, "/here/x.sock");
    setenv("VESK_SOCKET", "", 1);
    if (std::filesystem::is_directory("/run/vesk")) {
        EXPECT_EQ(ADDRESS_default().path, "/run/vesk/server.sock");
        GTEST_SKIP() << "the rest is hidden by /run/vesk";
    }
    EXPECT_EQ(ADDRESS_default().path, "/run/user/7/vesk/server.sock");
    unsetenv("VESK_SOCKET");
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(ADDRESS_default().path, "/tmp/vesk-" + std::to_string(getuid()) + "/server.sock");
}

// The exit status of a process of that user who would connect to his socket in /tmp.
int may_connect_as(uid_t user) {
    const pid_t pid = fork();
    if (pid == 0) {
        std::string why;
        const std::string path = "/tmp/vesk-" + std::to_string(user) + "/server.sock";
        _exit(setuid(user) == 0 && ADDRESS_may_connect(path, &why) ? 0 : 1);
    }
    int status = -1;
    waitpid(pid, &status, 0);
    return status;
}

TEST(Address, SocketInTmpOfAnotherUserIsNotTrusted) {
    if (getuid() != 0) GTEST_SKIP() << "only root can be several users";
    const uid_t user = 1'000'000'000U + static_cast<uid_t>(getpid());
    const std::filesystem::path directory = "/tmp/vesk-" + std::to_string(user);
    const std::filesystem::path socket = directory / "server.sock";
    std::filesystem::create_directory(directory);
    std::ofstream(socket) << "";
    const auto belong_to = [](const std::filesystem::path& path, uid_t owner) {
        ASSERT_EQ(chown(path.c_str(), owner, 0), 0);
    };
    belong_to(directory, user);
    belong_to(socket, user);
    EXPECT_EQ(may_connect_as(user), 0);
    belong_to(socket, user + 1);
    EXPECT_NE(may_connect_as(user), 0);
    belong_to(socket, 0);
    EXPECT_EQ(may_connect_as(user), 0);
    belong_to(directory, user + 1);
    EXPECT_NE(may_connect_as(user), 0);
    std::filesystem::remove_all(directory);
}

}  // namespace
