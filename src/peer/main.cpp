// vesk.peer: the link as JSON lines on standard input and output, and recordings of it played back.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "libvesk/support/descriptors.h"
#include "libvesk/support/util.h"
#include "peer/options.h"
#include "peer/peer.h"
#include "peer/replay.h"

namespace {

// The number of a standard stream that is closed would go to the link's socket, which then were read as
// input.
void open_closed_streams() {
    int fd = 0;
    while (fd >= STDIN_FILENO && fd <= STDERR_FILENO)
        fd = open("/dev/null", O_RDWR);
    if (fd >= 0) close(fd);
}

int describe(const PEER_options& options) {
    int status = PEER_EXIT_OK;
    std::string text = options.list ? DESCRIBE_all(options.form) : "";
    for (const std::string& name : options.describe) {
        std::string one;
        const bool known = DESCRIBE_name(name, options.form, &one);
        if (!text.empty() && options.form == DESCRIBE_TEXT) text += '\n';
        if (known) text += one;
        if (!known) UTIL_complain("%s", one.c_str());
        if (!known) status = PEER_EXIT_WRONG_INPUT;
    }
    std::fputs(text.c_str(), stdout);
    return std::fflush(stdout) == 0 ? status : PEER_EXIT_LOST;
}

}  // namespace

int main(int argc, char** argv) {
    PEER_options options;
    if (const auto status = PEER_parse_options(argc, argv, &options)) return *status;
    open_closed_streams();
    if (options.list || !options.describe.empty()) return describe(options);
    if (!LIBVESK_init("PEER")) return PEER_EXIT_NO_LINK;
    UTIL_exit_signal_poll_setup_hup();
    DESCRIPTORS_raise_limit();
    const int status = options.replay.empty() ? PEER_run(options) : REPLAY_run(options);
    LIBVESK_cleanup();
    return status;
}
