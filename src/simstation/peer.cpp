// One link of the simulated station.
#include "simstation/peer.h"

#include <algorithm>

namespace {

constexpr double PARTING_SECONDS = 0.2;  // how long a peer that leaves waits for its last words to go out

}  // namespace

SIM_peer::SIM_peer(std::string name, std::string host, std::function<void(const std::string&)> log)
    : name_(std::move(name)), host_(std::move(host)), log_(std::move(log)) {}

BOOL SIM_peer::connect() {
    VESKMSG_connect_params params;
    VESKMSG_init_params(&params);
    params.id_str = name_.c_str();
    params.host_override = host_.empty() ? nullptr : host_.c_str();
    return VESKMSG_connect(&link_, &params);
}

void SIM_peer::disconnect() {
    if (state() == VESKMSG_S_OPEN) {
        send_readings();
        static_cast<void>(VESKMSG_flush(&link_, PARTING_SECONDS));
    }
    readings_.clear();
    VESKMSG_disconnect(&link_);
}

std::string SIM_peer::error() const {
    return name_ + ": " + VESKMSG_error(&link_);
}

void SIM_peer::pump(const receiver& receive) {
    VESKMSG_process_messages(
        &link_, [](VESKMSG_proc_msg* pm, void* param) { (*static_cast<const receiver*>(param))(pm); },
        const_cast<receiver*>(&receive));
}

void SIM_peer::send(const SIM_message& message) {
    if (muted_) return remember(message);
    if (state() != VESKMSG_S_OPEN) return;  // the station sees it and ends
    if (message.instant) return hold(message);
    send_readings();  // nothing overtakes what was said before
    const BOOL has_payload = message.dsd != nullptr;
    VESKMSG_queue_message(&link_, message.msg, message.flags, message.dest, message.payload,
                          has_payload ? message.dsd->total_size : 0,
                          has_payload ? message.dsd->name : nullptr);
}

void SIM_peer::remember(const SIM_message& message) {
    if ((message.flags & FRAME_KEEP) == 0) return;
    const char* const bytes = static_cast<const char*>(message.payload);
    std::vector<char> payload(bytes, bytes + message.dsd->total_size);
    const auto before =
        std::find_if(kept_.begin(), kept_.end(), [&](const reading& r) { return r.msg == message.msg; });
    if (before != kept_.end()) {
        before->payload = std::move(payload);
    } else {
        kept_.push_back({message.msg, message.flags, message.dsd, std::move(payload)});
    }
}

void SIM_peer::unmute() {
    muted_ = FALSE;
    send_all(kept_);
}

void SIM_peer::hold(const SIM_message& message) {
    const char* const bytes = static_cast<const char*>(message.payload);
    std::erase_if(readings_, [&](const reading& r) { return r.msg == message.msg; });
    readings_.push_back({message.msg, message.flags, message.dsd, {bytes, bytes + message.dsd->total_size}});
}

void SIM_peer::send_readings() {
    if (state() == VESKMSG_S_OPEN) send_all(readings_);
}

void SIM_peer::send_all(std::vector<reading>& messages) {
    for (const reading& r : messages)
        VESKMSG_queue_message(&link_, r.msg, r.flags, "", r.payload.data(), r.payload.size(), r.dsd->name);
    messages.clear();
}
