// Addresses as people write them, and where the local server is looked for.
#include "libvesk/link/address.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

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

}  // namespace
