// One pass after another: wait, deliver what came, write it, read what is to be sent. The two sides brake
// each other: nothing is received while the output is not read, and no input is read while the link is full.
#include "peer/peer.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "libvesk/link/veskmsg.h"
#include "libvesk/support/util.h"
#include "peer/announcements.h"
#include "peer/input.h"
#include "peer/silence.h"

namespace {

constexpr double LAST_FLUSH_SECONDS = 10;
// An exit signal that arrives just before a wait is noticed after this long.
constexpr double PASS_SECONDS = 0.5;

struct peer {
    const PEER_options& options;
    int in_fd;
    int out_fd;
    VESKMSG_link link{};
    LINES_reader lines{INPUT_LINE_LIMIT};
    ANNOUNCEMENTS announcements{};
    std::string out{};  // lines not yet written
    BOOL in_open = TRUE;
    std::size_t printed = 0;
    std::size_t given = 0;  // lines that asked for something, right or wrong
    std::size_t refused = 0;
    BOOL unreadable = FALSE;           // the input
    std::size_t unsent = 0;            // messages that may not have left yet
    FTIME now = 0;                     // of this pass
    std::optional<SILENCE> silence{};  // from the welcome on
    BOOL done = FALSE;
    PEER_exit status = PEER_EXIT_OK;
};

void finish(peer* p, PEER_exit status) {
    p->done = TRUE;
    p->status = status;
}

void print_message(VESKMSG_proc_msg* pm, void* param) {
    peer* p = static_cast<peer*>(param);
    const std::string warning = p->announcements.hear(pm, p->options.as);
    if (!warning.empty()) UTIL_complain("%s", warning.c_str());
    if (p->done || p->options.quiet || !PEER_is_wanted(p->options.only, pm->msg->name, pm->src_name)) return;
    JSONLINE_write(&p->out, pm, p->now);
    if (++p->printed == p->options.count) finish(p, PEER_EXIT_OK);
}

// A one-shot command ("send this and end") has none of the options that ask to see something.
BOOL is_watching(const PEER_options& options) {
    return options.monitor || !options.only.empty() || options.count > 0 || options.timeout > 0;
}

bool queue(peer* p, const JSONLINE_message& m) {
    const void* payload = m.dsd != nullptr ? m.payload.data() : nullptr;
    const char* record = m.dsd != nullptr ? m.dsd->name : nullptr;
    return VESKMSG_queue_message(&p->link, m.msg->msg, m.flags, m.dest.c_str(), payload, m.payload.size(),
                                 record);
}

// Queues a message that the source sends besides those of its driver.
void say(peer* p, const std::optional<JSONLINE_message>& m) {
    if (m && queue(p, *m)) ++p->unsent;
}

// The driver lives: it sent a message, or (null) a blank line.
void note_life(peer* p, const JSONLINE_message* m) {
    const bool was_silent = p->silence->is_silent();
    say(p, m != nullptr ? p->silence->heard(*m, p->now) : p->silence->heard(p->now));
    if (was_silent && !p->silence->is_silent()) UTIL_complain("lines come again");
}

void look_for_silence(peer* p) {
    const std::optional<JSONLINE_message> lost = p->silence->look(p->now);
    if (lost) UTIL_complain("no line for %g s: reporting lost communications", p->options.silence);
    say(p, lost);
}

void send_line(peer* p, const LINES_line& line) {
    if (p->link.stat != VESKMSG_S_OPEN) return;
    if (INPUT_is_blank(line)) return note_life(p, nullptr);
    ++p->given;
    JSONLINE_message m;
    std::string error;
    if (!INPUT_read(line, &m, &error) || !INPUT_may_send(m, &error)) {
        ++p->refused;
        return INPUT_complain(line, error);
    }
    const std::string warning = INPUT_warning(m);
    if (!warning.empty()) INPUT_complain(line, warning);
    note_life(p, &m);
    ++(queue(p, m) ? p->unsent : p->refused);  // the link has said why it was not
}

void end_of_input(peer* p) {
    p->in_open = FALSE;
    p->lines.finish([p](const LINES_line& line) { send_line(p, line); });
    const BOOL was_for_sending = p->given > 0 && !is_watching(p->options);
    if (!p->done && (!p->options.as.empty() || was_for_sending)) finish(p, PEER_EXIT_OK);
}

// The lines of the command line, in place of standard input.
void send_given_lines(peer* p) {
    std::size_t number = 0;
    for (const std::string& line : p->options.send)
        send_line(p, {++number, line, FALSE});
    if (!is_watching(p->options)) finish(p, PEER_EXIT_OK);
}

void read_input(peer* p) {
    std::string bytes;
    const INPUT_state state = INPUT_take(p->in_fd, "standard input", &bytes);
    p->lines.feed(bytes, [p](const LINES_line& line) { send_line(p, line); });
    p->unreadable = state == INPUT_UNREADABLE;
    if (state != INPUT_OPEN) end_of_input(p);
}

BOOL flush(peer* p, double seconds) {
    if (!VESKMSG_flush(&p->link, seconds)) return FALSE;
    p->unsent = 0;
    return TRUE;
}

// Writes the lines of this pass. Whoever reads may have had enough, as head(1) does: that is no fault.
void write_output(peer* p) {
    std::string_view left = p->out;
    while (!left.empty()) {
        const ssize_t n = write(p->out_fd, left.data(), left.size());
        if (n >= 0) {
            left.remove_prefix(static_cast<std::size_t>(n));
        } else if (errno == EAGAIN) {
            pollfd writable{p->out_fd, POLLOUT, 0};
            poll(&writable, 1, -1);
        } else if (errno != EINTR || UTIL_exit_poll()) {
            const int error = errno;
            if (error != EPIPE && error != EINTR) {
                UTIL_complain("cannot write standard output: %s", std::strerror(error));
            }
            finish(p, error == EPIPE || error == EINTR ? PEER_EXIT_OK : PEER_EXIT_LOST);
            break;
        }
    }
    p->out.clear();
}

struct readiness {
    BOOL in_ready;
    BOOL out_gone;
};

// Asked apart from the wait because a file or /dev/null is always ready and cannot be waited for.
readiness look_at(const peer& p) {
    pollfd fds[] = {{p.in_open ? p.in_fd : -1, POLLIN, 0}, {p.out_fd, 0, 0}};
    if (poll(fds, 2, 0) < 0) return {FALSE, FALSE};
    return {fds[0].revents != 0, (fds[1].revents & POLLERR) != 0};
}

double seconds_left(const peer& p, FTIME deadline) {
    return std::clamp(std::min(deadline, p.silence->deadline()) - p.now, 0.0, PASS_SECONDS);
}

void pass(peer* p, FTIME deadline) {
    VESKMSG_link* const links[] = {&p->link};
    const readiness before = look_at(*p);
    // Input is read only when what it asked for before has left: that bounds what waits in the link.
    const BOOL may_read = before.in_ready && flush(p, seconds_left(*p, deadline));
    VESKMSG_wait(links, before.in_ready ? 0 : seconds_left(*p, deadline),
                 p->in_open && !before.in_ready ? p->in_fd : -1);
    p->now = UTIL_ftime();
    VESKMSG_process_messages(&p->link, print_message, p);
    write_output(p);
    if (p->done) return;
    if (UTIL_exit_poll() || before.out_gone) return finish(p, PEER_EXIT_OK);
    if (p->link.stat != VESKMSG_S_OPEN) {
        UTIL_complain("%s", VESKMSG_error(&p->link).c_str());
        return finish(p, PEER_EXIT_LOST);
    }
    if (may_read) read_input(p);
    if (!p->done) look_for_silence(p);
    if (!p->done && p->now >= deadline) finish(p, PEER_EXIT_TIMEOUT);
}

BOOL connect(peer* p) {
    VESKMSG_connect_params params;
    VESKMSG_init_params(&params);
    params.id_str = p->options.as.empty() ? "CLIENT" : p->options.as.c_str();
    params.host_override = p->options.host.empty() ? nullptr : p->options.host.c_str();
    params.monitor = p->options.monitor;
    if (!VESKMSG_connect(&p->link, &params)) return FALSE;
    VESKMSG_link* const links[] = {&p->link};
    while (p->link.stat == VESKMSG_S_AWAITING_HANDSHAKE && !UTIL_exit_poll()) {
        VESKMSG_wait(links, PASS_SECONDS);
        p->now = UTIL_ftime();
        VESKMSG_process_messages(&p->link, print_message, p);
    }
    p->now = UTIL_ftime();
    return p->link.stat == VESKMSG_S_OPEN;
}

// Lines that were not sent are lost; the program says so.
void send_the_rest(peer* p) {
    if (p->unsent == 0 || flush(p, UTIL_exit_poll() ? PASS_SECONDS : LAST_FLUSH_SECONDS)) return;
    UTIL_complain("%zu of %zu messages may not have been sent: %s", p->unsent, p->given - p->refused,
                  VESKMSG_error(&p->link).c_str());
    p->status = PEER_EXIT_LOST;
}

PEER_exit why_not_connected(const peer& p) {
    if (UTIL_exit_poll()) return PEER_EXIT_OK;
    UTIL_complain("%s", VESKMSG_error(&p.link).c_str());
    return PEER_EXIT_NO_LINK;
}

}  // namespace

int PEER_run(const PEER_options& options, int in_fd, int out_fd) {
    peer p{options, in_fd, out_fd};
    if (!connect(&p)) return why_not_connected(p);
    p.silence.emplace(options.silence, p.now);
    write_output(&p);
    p.in_open = options.send.empty();
    if (!p.in_open) send_given_lines(&p);
    const FTIME deadline = options.timeout > 0 ? p.now + options.timeout : HUGE_VAL;
    while (!p.done)
        pass(&p, deadline);
    send_the_rest(&p);
    VESKMSG_disconnect(&p.link);
    const BOOL wrong_input = p.refused > 0 || p.unreadable;
    return p.status != PEER_EXIT_LOST && wrong_input ? PEER_EXIT_WRONG_INPUT : p.status;
}
