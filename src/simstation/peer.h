// A simulated speaker's link to the server: the sink that puts its messages on the wire, and the pump that
// brings in what others say.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "simstation/voice.h"

class SIM_peer : public SIM_sink {
  public:
    // `log` gets every line of output.
    SIM_peer(std::string name, std::string host, std::function<void(const std::string&)> log);

    // Starts connecting; state() tells how it goes. FALSE (see error()) when it cannot even start.
    [[nodiscard]] BOOL connect();
    void disconnect();  // sends what is queued first
    [[nodiscard]] VESKMSG_LINK_STATUS state() const { return link_.stat; }
    [[nodiscard]] std::string error() const;  // "N61: the server refused: name taken"
    [[nodiscard]] VESKMSG_link* link() { return &link_; }

    using receiver = std::function<void(const VESKMSG_proc_msg*)>;
    // Moves what can be moved both ways, and hands every message received to `receive`.
    void pump(const receiver& receive);
    // Readings wait here until nothing newer can come in this pass; then they leave.
    void send_readings();

    // While it is muted nothing leaves and nothing is logged. What late joiners must know waits: the latest
    // of each type, as the server keeps it, leaves when it is muted no more.
    void mute() { muted_ = TRUE; }
    void unmute();

    void send(const SIM_message& message) override;
    void log(const std::string& line) override {
        if (!muted_) log_(line);
    }

  private:
    struct reading {
        NETMSG_type msg;
        DWORD flags;
        const NETDSD_entry* dsd;
        std::vector<char> payload;
    };
    void hold(const SIM_message& message);
    void remember(const SIM_message& message);
    void send_all(std::vector<reading>& messages);

    VESKMSG_link link_;
    std::string name_;
    std::string host_;
    std::function<void(const std::string&)> log_;
    BOOL muted_ = FALSE;
    std::vector<reading> kept_;      // while it is muted, in the order in which they came first
    std::vector<reading> readings_;  // the latest of each type, in the order in which they will leave
};
