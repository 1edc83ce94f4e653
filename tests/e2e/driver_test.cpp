// The example drivers of docs/drivers.md on a pseudo-terminal: the test is the counter at the other end of
// the line, and an operator at a console.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "journey.h"

namespace {

// The counter's end of a serial line.
class Line {
  public:
    Line() : fd_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        if (fd_ < 0 || grantpt(fd_) != 0 || unlockpt(fd_) != 0) ADD_FAILURE() << "no pseudo-terminal";
    }
    ~Line() { unplug(); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    [[nodiscard]] std::string path() const { return ptsname(fd_); }
    void write(std::string_view text) const {
        EXPECT_EQ(::write(fd_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void unplug() {
        if (fd_ >= 0) close(fd_);
        fd_ = -1;
    }

  private:
    int fd_;
};

struct driver_case {
    const char* name;
    std::vector<std::string> program;
    bool averages;
    int unplugged;  // its exit code then
};

void PrintTo(const driver_case& c, std::ostream* os) {
    *os << c.name;
}

class ExampleDriver : public testing::TestWithParam<driver_case> {
  protected:
    void start() {
        std::vector<std::string> argv = GetParam().program;
        argv.insert(argv.end(), {"N51", line_.path(), "2"});
        driver_ = std::make_unique<Process>(Command{
            argv,
            {{"VESK_SOCKET", station_.socket()}, {"PATH", program("") + ":/usr/local/bin:/usr/bin:/bin"}}});
    }

    Station station_;
    Line line_;
    std::unique_ptr<Process> driver_;
};

TEST_P(ExampleDriver, MakesACounterOnASerialLineAnInstrument) {
    auto monitor = station_.peer({"--monitor"});
    auto console = station_.console();
    start();
    ASSERT_TRUE(is_up(*console, "J")) << driver_->err();
    console->alt('j');
    ASSERT_TRUE(console->shows("NO COMMS"));

    line_.write("1234.5,38.1,20.9,FULL\r\n");
    EXPECT_TRUE(
        shows_all(*console, {"Last reading:  1234.5", "T Saturator:     38.1", "Delta T:         17.2"}));
    EXPECT_TRUE(console->hides("NO COMMS"));
    line_.write("1200.0,38.1,20.9,NOTFULL\r\n");
    EXPECT_TRUE(shows_all(*console, {"Last reading:  1200.0", "LOW BUTANOL"}));

    line_.write("1\x1b[2Jx,\"\\\r\n");
    EXPECT_TRUE(console->shows("N51: not a reading"));
    line_.write("13");
    line_.write("00.0,38.1,20.9,FULL\r\n");
    EXPECT_TRUE(console->shows("Last reading:  1300.0")) << "it goes on, and puts a line together";

    if (GetParam().averages) {
        const auto averaged = [&] {
            line_.write("1000.0,38.1,20.9,FULL\r\n");
            return console->find("Last Average:  1000.0").has_value();
        };
        EXPECT_TRUE(console->wait_for(averaged, "an average of what is sent"));
    }

    monitor->write_line(R"({"msg":"MSG_LOG_SET_STATE","flags":1,"dest":"N99","payload":{"enable":true}})");
    monitor->write_line(R"({"msg":"MSG_LOG_SET_STATE","flags":1,"dest":"N51","payload":{"enable":false}})");
    const auto answer = monitor->wait_line({R"("src":"N51")", "MSG_LOG_INFO"});
    ASSERT_TRUE(answer);
    EXPECT_NE(answer->find(R"("logging":false)"), std::string::npos) << *answer;

    EXPECT_TRUE(console->shows("NO COMMS")) << "nothing more comes";
    line_.unplug();
    EXPECT_EQ(driver_->wait_exit(), GetParam().unplugged) << driver_->err();
    EXPECT_TRUE(console->hides("Last reading:"));
}

TEST_P(ExampleDriver, GoesWhenToldAndWithTheServer) {
    auto console = station_.console();
    start();
    ASSERT_TRUE(is_up(*console, "J")) << driver_->err();
    driver_->signal(SIGTERM);
    ASSERT_TRUE(driver_->wait_exit());
    EXPECT_TRUE(is_up(*console, " "));
    start();
    ASSERT_TRUE(is_up(*console, "J")) << driver_->err();
    station_.server().signal(SIGKILL);
    line_.write("1234.5,38.1,20.9,FULL\r\n1234.5,38.1,20.9,FULL\r\n");
    const auto code = driver_->wait_exit();
    ASSERT_TRUE(code);
    EXPECT_NE(*code, 0);
}

INSTANTIATE_TEST_SUITE_P(Of, ExampleDriver,
                         testing::Values(driver_case{"Program", {program("serial_counter")}, true, 1},
                                         driver_case{
                                             "Script", {VESK_EXAMPLES "/serial_counter.sh"}, false, 1}),
                         [](const auto& param_info) { return std::string(param_info.param.name); });

}  // namespace
