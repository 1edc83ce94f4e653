// The shell of the console: the command line and the settings file. Start-up and the loop are tested with the
// real program.
#include "cursclient/cursclient.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "cursclient/conffile.h"
#include "libvesk/support/savefile.h"
#include "support/display_rig.h"

namespace {

using ::testing::HasSubstr;

void parse(std::vector<std::string> arguments) {
    g_conffile = nullptr;
    g_hostoverride = nullptr;
    static std::vector<std::string> kept;  // the globals point into the arguments, as into main's
    kept = std::move(arguments);
    std::vector<char*> argv{const_cast<char*>("vesk.cursclient")};
    for (std::string& a : kept)
        argv.push_back(a.data());
    proc_arguments(static_cast<int>(argv.size()), argv.data());
}

TEST(CommandLine, OptionsComeBeforeTheHost) {
    struct row {
        std::vector<std::string> arguments;
        const char* file;
        const char* host;
    };
    const row rows[] = {
        {{}, nullptr, nullptr},        {{"-c"}, nullptr, nullptr},  {{"-c", "f", "-c", "g", "h"}, "g", "h"},
        {{"-c", "-h"}, "-h", nullptr}, {{"h", "-h"}, nullptr, "h"}, {{"h", "-c", "f"}, nullptr, "h"},
        {{"-x"}, nullptr, "-x"},
    };
    for (const row& r : rows) {
        parse(r.arguments);
        EXPECT_STREQ(g_conffile, r.file) << ::testing::PrintToString(r.arguments);
        EXPECT_STREQ(g_hostoverride, r.host) << ::testing::PrintToString(r.arguments);
    }
}

class Settings : public DisplayRig {
  protected:
    Settings() {
        char name[] = "/tmp/vesk-settings-XXXXXX";
        dir_ = mkdtemp(name);
        file_ = dir_ + "/conf";
        g_conffile = file_.c_str();
        forget();
    }
    ~Settings() override {
        g_conffile = nullptr;
        forget();
        std::filesystem::remove_all(dir_);
    }
    static void forget() {
        CONF_free(g_conf);
        g_conf = nullptr;
    }
    std::string content() const {
        std::ifstream in(file_);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    long files() const {
        return std::distance(std::filesystem::directory_iterator(dir_),
                             std::filesystem::directory_iterator());
    }

    std::string dir_, file_;
};

TEST_F(Settings, AMissingFileIsNoErrorAndASaveCreatesItForItsOwnerAlone) {
    EXPECT_FALSE(load_conf_file());
    EXPECT_EQ(g_conf, nullptr);
    g_conf_enable_color = FALSE;
    focus("SCRESULTS");
    ASSERT_TRUE(save_conf_file());
    struct stat st {};
    ASSERT_EQ(stat(file_.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_TRUE(load_conf_file());
    EXPECT_STREQ(CONF_lookup(g_conf, "Settings;EnableColor"), "FALSE");
    EXPECT_STREQ(CONF_lookup(g_conf, "Windows;SCRESULTS;Visible"), "TRUE");
    EXPECT_STREQ(CONF_lookup(g_conf, "Windows;MESSAGING;Visible"), "FALSE");
}

// The size that a file may have stands in for a disk that is full.
TEST_F(Settings, AFullDiskCostsNothing) {
    const std::string before = "# " + std::string(200, 'x') + "\nSettings;Password = old\n";
    std::ofstream(file_) << before;
    ASSERT_TRUE(load_conf_file());
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{100, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_THAT(complaints_of([] { EXPECT_FALSE(save_conf_file()); }), HasSubstr("File too large"));
    const rlimit any{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &any), 0);
    EXPECT_EQ(content(), before);
    EXPECT_EQ(files(), 1) << "nothing is left beside it";
    EXPECT_TRUE(save_conf_file());
    EXPECT_EQ(files(), 1);
}

TEST_F(Settings, ASaveWouldLoseWhatWasNotRead) {
    const std::string before = "A = 1\n#" + std::string(CONF_MAX_FILE, 'x') + "\nB = 2\n";
    std::ofstream(file_) << before;
    complaints_of([] { EXPECT_TRUE(load_conf_file()); });
    EXPECT_THAT(complaints_of([] { EXPECT_FALSE(save_conf_file()); }), HasSubstr("not read whole"));
    EXPECT_EQ(content(), before);
    std::ofstream(file_) << "A = 1\n";
    EXPECT_TRUE(load_conf_file());
    EXPECT_TRUE(save_conf_file()) << "read anew";
}

TEST_F(Settings, WhatAKilledSaveLeftIsCleanedUpButNotWhatAnotherIsWriting) {
    const std::string left = file_ + ".saving";
    std::ofstream(left) << "half of a fi";
    EXPECT_FALSE(load_conf_file());
    EXPECT_EQ(files(), 0);
    std::ofstream(left) << std::string(100'000, 'x');
    EXPECT_TRUE(save_conf_file());
    EXPECT_EQ(files(), 1);
    EXPECT_LT(content().size(), 1000u);

    const SAVEFILE another(file_);
    EXPECT_THAT(complaints_of([] { EXPECT_FALSE(save_conf_file()); }), HasSubstr("unavailable"));
    load_conf_file();
    EXPECT_EQ(files(), 2);
}

TEST_F(Settings, OnlyARegularFileWillDo) {
    EXPECT_TRUE(CONFFILE_is_usable()) << "there is none yet";
    ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
    EXPECT_THAT(complaints_of([] { EXPECT_FALSE(CONFFILE_is_usable()); }), HasSubstr("not a regular file"));
    complaints_of([] { EXPECT_FALSE(save_conf_file()); });
    g_conffile = "/dev/null";
    complaints_of([] { EXPECT_FALSE(CONFFILE_is_usable()); });
}

TEST_F(Settings, ASaveKeepsModesAndLinks) {
    namespace fs = std::filesystem;
    const std::string target = dir_ + "/target";
    const auto save = [&] {
        forget();
        load_conf_file();
        EXPECT_TRUE(save_conf_file());
        EXPECT_THAT(content(), HasSubstr("Settings;Password = "));
        return fs::status(file_).permissions();
    };
    std::ofstream(target) << "# mine\n";
    fs::permissions(target, fs::perms{0640});
    fs::create_symlink(target, file_);
    EXPECT_EQ(save(), fs::perms{0640});
    fs::remove(target);
    EXPECT_EQ(save(), fs::perms{0600}) << "the link led to nothing";
    EXPECT_TRUE(fs::is_symlink(file_));
    fs::remove(file_);
    fs::create_hard_link(target, file_);
    save();
    EXPECT_TRUE(fs::equivalent(target, file_)) << "a second name";
}

TEST_F(Settings, WithoutANameTheFileIsTheUsers) {
    g_conffile = nullptr;
    ASSERT_EQ(setenv("HOME", dir_.c_str(), 1), 0);
    ASSERT_TRUE(save_conf_file());
    EXPECT_TRUE(std::filesystem::exists(dir_ + "/.veskcursclient.conf"));
    ASSERT_EQ(unsetenv("HOME"), 0);
    ASSERT_EQ(chdir(dir_.c_str()), 0);
    EXPECT_TRUE(load_conf_file()) << "without a home the current directory is meant";
    ASSERT_EQ(setenv("HOME", std::string(300, 'x').c_str(), 1), 0);
    EXPECT_FALSE(load_conf_file());
}

}  // namespace
