// A station for tests: a folder of its own, a real server on a socket there, and whatever instruments,
// consoles and monitors a test starts on it. Everything ends and goes with it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/folder.h"
#include "support/process.h"
#include "support/terminal.h"

[[nodiscard]] std::string read_file(const std::string& path);
void write_file(const std::string& path, std::string_view content);

// The path of one of the programs just built ("vesk.server").
[[nodiscard]] std::string program(std::string_view name);

// How a console is started; the rest is `vesk.cursclient` with HOME in the station's folder.
struct ConsoleOptions {
    std::vector<std::string> arguments;
    TerminalSize size;
    std::string term = "xterm-256color";
    std::string locale = "C.UTF-8";
};

class Station {
  public:
    // Starts the server with these arguments and waits until it takes connections.
    explicit Station(std::vector<std::string> server_arguments = {});

    [[nodiscard]] Process& server() { return *server_; }
    // Kills the server and starts another one on the same socket.
    void replace_server();
    [[nodiscard]] std::string socket() const { return folder_ / "run/server.sock"; }
    [[nodiscard]] const TemporaryFolder& folder() const { return folder_; }
    // Where its consoles keep their settings.
    [[nodiscard]] std::string settings_file() const { return folder_ / ".veskcursclient.conf"; }

    [[nodiscard]] std::unique_ptr<Process> start(std::string_view name, std::vector<std::string> arguments);
    // Waits until the server has taken it in (or refused it): nothing that is said from then on passes it by.
    [[nodiscard]] std::unique_ptr<Process> peer(std::vector<std::string> arguments = {});
    // A peer as the instrument `name`, announced as `type`.
    [[nodiscard]] std::unique_ptr<Process> instrument(std::string_view name, std::string_view type,
                                                      std::string_view display_name, char id_ch);
    [[nodiscard]] std::unique_ptr<Process> simstation(std::vector<std::string> arguments = {});
    [[nodiscard]] std::unique_ptr<Terminal> console(const ConsoleOptions& options = {});

  private:
    void start_server(std::vector<std::string> arguments);
    [[nodiscard]] Command command(std::string_view name, std::vector<std::string> arguments) const;

    TemporaryFolder folder_;
    std::unique_ptr<Process> server_;
};

// A connected unix stream socket, or -1: for bytes that no program of ours would send.
[[nodiscard]] int connect_unix(const std::string& path);
