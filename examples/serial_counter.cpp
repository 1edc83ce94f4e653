// A driver: a particle counter that sends a line a second over a serial port becomes an instrument of the
// station. Its lines say concentration, saturator and condenser temperature and the butanol level:
//
//   1234.5,38.1,20.9,FULL
//
// docs/drivers.md goes through what happens here, and serial_counter.sh does the same in shell.
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "libvesk/link/inst.h"
#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/support/util.h"

namespace {

constexpr double SILENCE = 3.0;  // seconds without a reading: the counter does not answer
constexpr DWORD TO_ALL = FRAME_TO_ALL;
constexpr DWORD TO_ALL_AND_KEPT = FRAME_TO_ALL | FRAME_RESERVED | FRAME_KEEP;
constexpr WORD BUTANOL_LOW = 2;  // of NET_CPC_3010_Status

// ---- the counter's side

struct reading {
    double concentration, saturator, condenser;
    BOOL full;
};

std::optional<reading> parse(const std::string& line) {
    reading r{};
    char level[8];
    int length = 0;
    const int fields = std::sscanf(line.c_str(), "%lf,%lf,%lf,%7[A-Z]%n", &r.concentration, &r.saturator,
                                   &r.condenser, level, &length);
    if (fields != 4 || static_cast<std::size_t>(length) != line.size()) return std::nullopt;
    r.full = std::strcmp(level, "FULL") == 0;
    return r;
}

// A serial port, 9600 baud, read line by line and never waited for.
class serial_port {
  public:
    explicit serial_port(const char* path) : fd_(open(path, O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        termios line{};
        if (fd_ < 0 || tcgetattr(fd_, &line) != 0) return;
        cfmakeraw(&line);
        cfsetspeed(&line, B9600);
        line.c_cflag |= CLOCAL | CREAD;
        is_open_ = tcsetattr(fd_, TCSANOW, &line) == 0;
    }
    ~serial_port() {
        if (fd_ >= 0) close(fd_);
    }
    serial_port(const serial_port&) = delete;
    serial_port& operator=(const serial_port&) = delete;

    [[nodiscard]] BOOL is_open() const { return is_open_; }
    [[nodiscard]] int fd() const { return fd_; }

    // The next whole line without its end, if there is one.
    std::optional<std::string> line() {
        take();
        const auto end = text_.find('\n');
        if (end == std::string::npos) return std::nullopt;
        std::string result = text_.substr(0, end);
        text_.erase(0, end + 1);
        if (!result.empty() && result.back() == '\r') result.pop_back();
        return result;
    }

  private:
    static constexpr std::size_t LONGEST = 1000;

    void take() {
        char chunk[256];
        const ssize_t n = read(fd_, chunk, sizeof chunk);
        if (n > 0) text_.append(chunk, static_cast<std::size_t>(n));
        if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) is_open_ = FALSE;  // it was pulled out
        if (text_.size() > LONGEST) text_.clear();  // whatever that is, it has no lines
    }

    int fd_;
    BOOL is_open_ = FALSE;
    std::string text_;
};

// ---- the station's side

class driver {
  public:
    driver(const char* name, double average_seconds)
        : name_(name), block_seconds_(average_seconds), block_end_(UTIL_ftime() + average_seconds) {}

    BOOL connect() {
        VESKMSG_connect_params params;
        VESKMSG_init_params(&params);
        params.id_str = name_.c_str();
        if (INST_connect(&link_, &params) && INST_wait_connected(&link_)) return TRUE;
        UTIL_complain("%s", VESKMSG_error(&link_.msg_lnk).c_str());
        return FALSE;
    }

    void announce() {
        NET_SERVER_InstrumentInfo info{};
        UTIL_strcpynt(info.type, "cpc_3010");
        UTIL_strcpynt(info.display_name, "Counter");
        UTIL_strcpynt(info.tags[0].tag, "cpc");
        info.id_ch = 'J';
        VESKMSG_announce(&link_.msg_lnk, info);
        report_status();
    }

    // Until the port or the server is gone, or the program is told to end. TRUE when it was told.
    BOOL run(serial_port& port) {
        VESKMSG_link* const links[] = {&link_.msg_lnk};
        while (port.is_open() && INST_test_connected(&link_)) {
            if (UTIL_exit_poll()) return TRUE;
            VESKMSG_wait(links, 1.0, port.fd());
            const auto take = [](VESKMSG_proc_msg* pm, void* self) {
                static_cast<driver*>(self)->take_message(pm);
            };
            VESKMSG_process_messages(&link_.msg_lnk, take, this);
            while (const auto line = port.line())
                take_line(*line);
            if (UTIL_ftime() - last_reading_ > SILENCE) set_comms(FALSE);
        }
        return FALSE;
    }

    // The queued messages leave first; then everybody is told that the instrument is gone.
    void leave() {
        VESKMSG_flush(&link_.msg_lnk, 1.0);
        INST_disconnect(&link_);
    }

  private:
    template <class Record>
    void say(NETMSG_type msg, DWORD flags, Record record) {
        VESKMSG_queue(&link_.msg_lnk, msg, flags, nullptr, record);
    }

    void take_line(const std::string& line) {
        const std::optional<reading> r = parse(line);
        if (!r) return report_error("not a reading");
        last_reading_ = UTIL_ftime();
        butanol_low_ = !r->full;
        set_comms(TRUE);
        report_reading(*r);
        add_to_average(r->concentration);
    }

    void report_reading(const reading& r) {
        auto instant = NETDSD_default<NET_CPC_3010_Instant>();  // all missing
        instant.start_time = last_reading_;
        instant.concentration = r.concentration;
        instant.T_saturator = r.saturator;
        instant.T_condenser = r.condenser;
        say(MSG_CPC_3010_INSTANT, TO_ALL, instant);
    }

    void add_to_average(double value) {
        ++n_;
        sum_ += value;
        sum_of_squares_ += value * value;
        if (last_reading_ < block_end_) return;
        const double mean = sum_ / n_;
        const double variance = std::fmax(sum_of_squares_ / n_ - mean * mean, 0.0);
        say(MSG_CPC_3010_AVERAGE, TO_ALL_AND_KEPT,
            NET_CPC_3010_Avg{block_end_ - block_seconds_, mean, std::sqrt(variance)});
        block_end_ = last_reading_ + block_seconds_;
        n_ = sum_ = sum_of_squares_ = 0;
    }

    void set_comms(BOOL comms) {
        const WORD flags = butanol_low_ ? BUTANOL_LOW : 0;
        if (comms == comms_ && flags == flags_) return;
        comms_ = comms;
        flags_ = flags;
        report_status();
    }

    void report_status() {
        say(MSG_CPC_3010_STATUS, TO_ALL_AND_KEPT,
            NET_CPC_3010_Status{.have_comms = comms_, .dip_error = FALSE, .flags = flags_});
    }

    // A line in the station's log; every console shows it in its error strip.
    void report_error(const char* what) {
        NET_LOG_MonitorMessage line{};
        line.flags = NET_LOG_MONITOR_ERROR;
        line.msgtime = UTIL_ftime();
        UTIL_strcpynt(line.msg, (name_ + ": " + what).c_str());
        say(MSG_LOG_MONITOR, TO_ALL, line);
    }

    // Much arrives that is for others: what goes to all tells by its destination whom it concerns.
    void take_message(const VESKMSG_proc_msg* pm) {
        const std::string dest = pm->dest_name;
        if (pm->msg->msg != MSG_LOG_SET_STATE || (!dest.empty() && dest != name_)) return;
        const auto* wanted = VESKMSG_payload<NET_LOG_SetState>(pm);
        if (wanted != nullptr) say(MSG_LOG_INFO, TO_ALL_AND_KEPT, NET_LOG_Info{wanted->enable});
    }

    INST_link link_;
    std::string name_;
    FTIME last_reading_ = 0;
    BOOL comms_ = FALSE;
    BOOL butanol_low_ = FALSE;
    WORD flags_ = 0;

    double block_seconds_;
    FTIME block_end_;
    double n_ = 0, sum_ = 0, sum_of_squares_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3 || !LIBVESK_init("COUNTER")) {
        std::fprintf(stderr, "usage: serial_counter NAME PORT [SECONDS OF AN AVERAGE]\n");
        return 2;
    }
    UTIL_exit_signal_poll_setup_hup();
    serial_port port(argv[2]);
    if (!port.is_open()) {
        UTIL_complain("%s: %s", argv[2], std::strerror(errno));
        return 2;
    }
    driver counter(argv[1], argc > 3 ? std::atof(argv[3]) : 60.0);
    if (!counter.connect()) return 2;
    counter.announce();
    const BOOL asked = counter.run(port);
    counter.leave();
    LIBVESK_cleanup();
    return asked ? 0 : 1;
}
