// The shell of the console: the command line and the settings file. Start-up and the loop are tested with the
// real program.
#include "cursclient/cursclient.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "cursclient/passwd.h"
#include "display_rig.h"
#include "libvesk/util.h"

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

TEST(CommandLineDeathTest, HelpPrintsTheUsageAndExitsWithOne) {
    EXPECT_EXIT(parse({"-c", "f", "--help"}), ::testing::ExitedWithCode(1),
                "^Usage: vesk.cursclient \\[-h\\] \\[-c FILENAME\\] \\[HOSTNAME\\]\n");
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
    ASSERT_TRUE(save_conf_file());
    struct stat st {};
    ASSERT_EQ(stat(file_.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_TRUE(load_conf_file());
    EXPECT_STREQ(CONF_lookup(g_conf, "Settings;EnableColor"), "TRUE");
    EXPECT_STREQ(CONF_lookup(g_conf, "Windows;MESSAGING;Visible"), "FALSE");
}

TEST_F(Settings, ASaveKeepsWhatTheProgramDoesNotWrite) {
    std::ofstream(file_) << "# the stack's pitot\nAggregate;Stack;Pitot = Pd_P09\nSettings;Password = old\n";
    ASSERT_TRUE(load_conf_file());
    UTIL_strcpynt(g_passwd, "new");
    ASSERT_TRUE(save_conf_file());
    EXPECT_THAT(content(), HasSubstr("# the stack's pitot\nAggregate;Stack;Pitot = Pd_P09\n"));
    EXPECT_THAT(content(), HasSubstr("Settings;Password = new\n"));
}

TEST_F(Settings, AFailedSaveNamesTheFileAndTheReason) {
    const std::string nowhere = dir_ + "/no/such/dir";
    g_conffile = nowhere.c_str();
    const auto fail = [] { EXPECT_FALSE(save_conf_file()); };
    EXPECT_THAT(complaints_of(fail),
                HasSubstr("cannot save the configuration to " + nowhere + ": No such file or directory\n"));
    g_conffile = "/dev/full";
    EXPECT_THAT(complaints_of(fail), HasSubstr("/dev/full: No space left on device\n"));
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

TEST_F(Settings, ASaveKeepsModesAndLinks) {
    struct row {
        const char* name;
        std::function<void(const std::string& target, const std::string& file)> make;
        std::function<bool(const std::string& target, const std::string& file)> kept;
    };
    namespace fs = std::filesystem;
    const auto mode = [](const std::string& f) { return static_cast<int>(fs::status(f).permissions()); };
    const row rows[] = {
        {"mode", [](auto& target, auto&) { fs::permissions(target, fs::perms{0640}); },
         [&](auto& target, auto&) { return mode(target) == 0640; }},
        {"symbolic link", [](auto& target, auto& file) { fs::create_symlink(target, file); },
         [](auto&, auto& file) { return fs::is_symlink(file); }},
        {"link to nothing",
         [](auto& target, auto& file) { fs::create_symlink(target, file), fs::remove(target); },
         [&](auto& target, auto& file) { return fs::is_symlink(file) && mode(target) == 0600; }},
        {"second name", [](auto& target, auto& file) { fs::create_hard_link(target, file); },
         [](auto& target, auto& file) { return fs::equivalent(target, file); }},
    };
    for (const row& r : rows) {
        SCOPED_TRACE(r.name);
        forget();
        const std::string target = dir_ + "/target";
        std::ofstream(target) << "# mine\n";
        fs::remove(file_);
        r.make(target, file_);
        if (!fs::exists(fs::symlink_status(file_))) fs::rename(target, file_);
        const std::string real = fs::exists(target) || fs::is_symlink(file_) ? target : file_;
        load_conf_file();
        ASSERT_TRUE(save_conf_file());
        EXPECT_TRUE(r.kept(real, file_));
        EXPECT_THAT(content(), HasSubstr("Settings;Password = "));
        fs::remove(target);
    }
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
