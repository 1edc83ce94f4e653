// Start, run, end. Everything happens on one thread, in the handlers of one io_context.
#include "server/server.h"

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <csignal>
#include <ctime>
#include <list>

#include "libvesk/support/descriptors.h"
#include "libvesk/support/util.h"
#include "server/listener.h"

namespace {

constexpr std::size_t OWN_DESCRIPTORS = 32;  // everything that is not a connection

void write_log(const std::string& text) {
    const auto now = static_cast<std::time_t>(UTIL_ftime());
    std::tm utc{};
    gmtime_r(&now, &utc);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%SZ", &utc);
    UTIL_say(std::string(stamp) + " vesk.server: " + UTIL_printable(text));
}

std::size_t most_connections() {
    const std::size_t usable = DESCRIPTORS_raise_limit();
    return usable > OWN_DESCRIPTORS ? usable - OWN_DESCRIPTORS : 1;
}

class server {
  public:
    explicit server(SERVER_options options) : options_(std::move(options)), hub_(hub_params()) {}

    int run() {
        if (!listen()) return 1;
        tick();
        for (const int signal : {SIGTERM, SIGINT, SIGHUP})
            if (!UTIL_is_ignored(signal)) signals_.add(signal);
        signals_.async_wait([this](const asio::error_code&, int number) {
            write_log(std::string("ended by ") + strsignal(number));
            context_.stop();
        });
        context_.run();
        for (LISTENER& l : listeners_)
            l.close();
        hub_.close();
        return 0;
    }

  private:
    HUB_params hub_params() {
        HUB_params params = options_.hub;
        params.most_connections = most_connections();
        params.log = write_log;
        if (options_.verbose) params.chat = write_log;
        return params;
    }

    BOOL listen() {
        std::vector<ADDRESS> addresses{options_.socket};
        addresses.insert(addresses.end(), options_.listen.begin(), options_.listen.end());
        for (const ADDRESS& address : addresses) {
            const auto adopt = [this](STREAM::socket_type socket, CONNECTION_origin origin) {
                hub_.adopt(std::move(socket), std::move(origin));
            };
            const auto log = [this](const std::string& line) { hub_.log().say("listener", "", line); };
            LISTENER& listener = listeners_.emplace_back(context_, adopt, log);
            std::string why;
            if (!listener.listen(address, &why)) {
                write_log(why);
                return FALSE;
            }
            write_log("listening on " + listener.text());
        }
        return TRUE;
    }

    void tick() {
        hub_.tick();
        for (LISTENER& l : listeners_)
            l.tick();
        timer_.expires_after(std::chrono::duration_cast<std::chrono::nanoseconds>(
            std::chrono::duration<double>(HUB::TICK_SECONDS)));
        timer_.async_wait([this](const asio::error_code& error) {
            if (!error) tick();
        });
    }

    SERVER_options options_;
    asio::io_context context_{1};
    asio::signal_set signals_{context_};
    asio::steady_timer timer_{context_};
    HUB hub_;
    std::list<LISTENER> listeners_;
};

}  // namespace

int SERVER_run(SERVER_options options) {
    try {
        return server(std::move(options)).run();
    } catch (const std::system_error& e) {
        write_log("cannot run: " + e.code().message());
        return 1;
    }
}
