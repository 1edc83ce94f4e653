// Starting the programs of a station in a folder of their own.
#include "support/station.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <csignal>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

std::string read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write_file(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string program(std::string_view name) {
    return std::string(VESK_PROGRAMS "/") + std::string(name);
}

int connect_unix(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return -1;
    std::memcpy(address.sun_path, path.c_str(), path.size());
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
    close(fd);
    return -1;
}

Station::Station(std::vector<std::string> server_arguments) {
    start_server(std::move(server_arguments));
}

void Station::replace_server() {
    server_->signal(SIGKILL);
    server_->wait_exit();
    start_server({});
}

void Station::start_server(std::vector<std::string> server_arguments) {
    server_arguments.emplace_back("--verbose");
    server_ = start("vesk.server", std::move(server_arguments));
    const auto listens = [this] {
        const int fd = connect_unix(socket());
        if (fd >= 0) close(fd);
        return fd >= 0;
    };
    if (!server_->wait_for(listens))
        throw std::runtime_error("the server does not listen on " + socket() + ": " + server_->err());
}

Command Station::command(std::string_view name, std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), program(name));
    return {std::move(arguments), {{"VESK_SOCKET", socket()}, {"HOME", folder_ / ""}}};
}

std::unique_ptr<Process> Station::start(std::string_view name, std::vector<std::string> arguments) {
    return std::make_unique<Process>(command(name, std::move(arguments)));
}

std::unique_ptr<Process> Station::peer(std::vector<std::string> arguments) {
    auto result = start("vesk.peer", std::move(arguments));
    const std::string who = "pid " + std::to_string(result->pid()) + ", ";
    (void)server_->wait_for([&] {
        const std::string& log = server_->err();
        const std::size_t at = log.find(who);
        return (at != std::string::npos && log.find(": connected\n", at) != std::string::npos) ||
               !result->running();
    });
    return result;
}

std::unique_ptr<Process> Station::instrument(std::string_view name, std::string_view type,
                                             std::string_view display_name, char id_ch) {
    auto result = peer({"--as", std::string(name)});
    result->write_line(R"({"msg":"MSG_SERVER_INSTRUMENTINFO","payload":{"type":")" + std::string(type) +
                       R"(","display_name":")" + std::string(display_name) + R"(","id_ch":")" + id_ch +
                       R"("}})");
    return result;
}

std::unique_ptr<Process> Station::simstation(std::vector<std::string> arguments) {
    return start("vesk.simstation", std::move(arguments));
}

std::unique_ptr<Terminal> Station::console(const ConsoleOptions& options) {
    Command console = command("vesk.cursclient", options.arguments);
    console.env["TERM"] = options.term;
    console.env["LANG"] = options.locale;
    return std::make_unique<Terminal>(console, options.size);
}
