// One pass after another: wait, deliver what came, write it, read what is to be sent. The two sides brake
// each other: nothing is received while the output is not read, and no input is read while the link is full.
#include "peer/peer.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <span>

#include "libvesk/msgcheck.h"
#include "libvesk/util.h"
#include "libvesk/veskmsg.h"
#include "peer/json_line.h"
#include "peer/lines.h"

namespace {

constexpr double LAST_FLUSH_SECONDS = 10;
// An exit signal that arrives just before a wait is noticed after this long.
constexpr double PASS_SECONDS = 0.5;
constexpr std::size_t LINE_LIMIT = std::size_t{1} << 20;
// Small, since a short line may become a record of 8 KiB in the link's queue.
constexpr std::size_t READ_BYTES = std::size_t{16} << 10;

struct peer {
    const PEER_options& options;
    int in_fd;
    int out_fd;
    VESKMSG_link link{};
    LINES_reader lines{LINE_LIMIT};
    std::string out{};  // lines not yet written
    BOOL in_open = TRUE;
    std::size_t printed = 0;
    std::size_t given = 0;  // lines that asked for something, right or wrong
    std::size_t refused = 0;
    FTIME now = 0;  // of this pass
    BOOL done = FALSE;
    PEER_exit status = PEER_EXIT_OK;
};

void finish(peer* p, PEER_exit status) {
    p->done = TRUE;
    p->status = status;
}

BOOL is_wanted(const PEER_options& options, const VESKMSG_proc_msg* pm) {
    return options.only.empty() ||
           std::any_of(options.only.begin(), options.only.end(), [pm](const std::string& pattern) {
               return UTIL_wildcard_match(pm->msg->name, pattern.c_str()) ||
                      UTIL_wildcard_match(pm->src_name, pattern.c_str());
           });
}

void print_message(VESKMSG_proc_msg* pm, void* param) {
    peer* p = static_cast<peer*>(param);
    if (p->done || !is_wanted(p->options, pm)) return;
    JSONLINE_write(&p->out, pm, p->now);
    if (++p->printed == p->options.count) finish(p, PEER_EXIT_OK);
}

// What makes sense to script as "send this and end" has none of the options that ask to see something.
BOOL is_watching(const PEER_options& options) {
    return options.monitor || !options.only.empty() || options.count > 0 || options.timeout > 0;
}

BOOL is_blank(std::string_view line) {
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

BOOL read_line(const LINES_line& line, JSONLINE_message* message, std::string* error) {
    if (line.too_long) {
        *error = "longer than " + std::to_string(LINE_LIMIT) + " bytes";
        return FALSE;
    }
    if (!JSONLINE_read(line.text, message, error)) return FALSE;
    // The link asks the same, but its complaint does not know the line.
    MSGCHECK_found found;
    const char* record = message->dsd != nullptr ? message->dsd->name : "";
    const MSGCHECK_fault fault = MSGCHECK_from_peer({message->msg->msg,
                                                     message->flags,
                                                     {},
                                                     message->dest,
                                                     record,
                                                     std::as_bytes(std::span(message->payload))},
                                                    &found);
    if (fault != MSGCHECK_OK) *error = std::string(message->msg->name) + ": " + MSGCHECK_text(fault);
    return fault == MSGCHECK_OK;
}

void send_line(peer* p, const LINES_line& line) {
    if (p->link.stat != VESKMSG_S_OPEN || (is_blank(line.text) && !line.too_long)) return;
    ++p->given;
    JSONLINE_message m;
    std::string error;
    if (!read_line(line, &m, &error)) {
        ++p->refused;
        return UTIL_complain("line %zu: %s", line.number, error.c_str());
    }
    const void* payload = m.dsd != nullptr ? m.payload.data() : nullptr;
    const char* record = m.dsd != nullptr ? m.dsd->name : nullptr;
    const BOOL queued = VESKMSG_queue_message(&p->link, m.msg->msg, m.flags, m.dest.c_str(), payload,
                                              m.payload.size(), record);
    if (!queued) ++p->refused;  // the link has said why
}

void end_of_input(peer* p) {
    p->in_open = FALSE;
    p->lines.finish([p](const LINES_line& line) { send_line(p, line); });
    const BOOL was_for_sending = p->given > 0 && !is_watching(p->options);
    if (!p->done && (!p->options.as.empty() || was_for_sending)) finish(p, PEER_EXIT_OK);
}

void read_input(peer* p) {
    char bytes[READ_BYTES];
    const ssize_t n = read(p->in_fd, bytes, sizeof bytes);
    if (n < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (n < 0) UTIL_complain("cannot read standard input: %s", std::strerror(errno));
    if (n <= 0) return end_of_input(p);
    p->lines.feed({bytes, static_cast<std::size_t>(n)}, [p](const LINES_line& line) { send_line(p, line); });
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
    return std::clamp(deadline - p.now, 0.0, PASS_SECONDS);
}

void pass(peer* p, FTIME deadline) {
    VESKMSG_link* const links[] = {&p->link};
    const readiness before = look_at(*p);
    // Input is read only when what it asked for before has left: that bounds what waits in the link.
    const BOOL may_read = before.in_ready && VESKMSG_flush(&p->link, seconds_left(*p, deadline));
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

void send_the_rest(peer* p) {
    if (p->status == PEER_EXIT_LOST || p->given == 0) return;
    if (VESKMSG_flush(&p->link, UTIL_exit_poll() ? PASS_SECONDS : LAST_FLUSH_SECONDS)) return;
    UTIL_complain("not everything could be sent: %s", VESKMSG_error(&p->link).c_str());
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
    write_output(&p);
    const FTIME deadline = options.timeout > 0 ? p.now + options.timeout : HUGE_VAL;
    while (!p.done)
        pass(&p, deadline);
    send_the_rest(&p);
    VESKMSG_disconnect(&p.link);
    return p.status != PEER_EXIT_LOST && p.refused > 0 ? PEER_EXIT_REFUSED_LINES : p.status;
}
