// Speaking: records leave with their padding zeroed, so that equal values are equal bytes.
#include "simstation/voice.h"

#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "libvesk/support/util.h"

namespace {

// The record's values without whatever stands in its padding.
std::vector<char> clean_bytes(const NETDSD_entry* dsd, const void* record) {
    const char* const from = static_cast<const char*>(record);
    std::vector<char> bytes(from, from + dsd->total_size);
    NETDSD_clear_padding(dsd, bytes.data());
    return bytes;
}

__attribute__((format(printf, 1, 0))) std::string formatted(const char* format, std::va_list args) {
    char text[1024];
    std::vsnprintf(text, sizeof text, format, args);
    return text;
}

}  // namespace

std::string SIM_utc_text(FTIME time) {
    const auto t = static_cast<std::time_t>(time);
    std::tm utc{};
    gmtime_r(&t, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &utc);
    return text;
}

SIM_voice::SIM_voice(SIM_world& world, SIM_sink& sink, std::string name)
    : world_(world), sink_(sink), name_(std::move(name)), noise_(world.settings.seed, name_) {}

void SIM_voice::emit(NETMSG_type msg, DWORD flags, const char* dest, const NETDSD_entry* dsd,
                     const void* record, BOOL instant) {
    if (dsd == nullptr) {
        sink_.send({msg, flags, dest, nullptr, nullptr, instant});
        return;
    }
    const std::vector<char> bytes = clean_bytes(dsd, record);
    sink_.send({msg, flags, dest, dsd, bytes.data(), instant});
}

void SIM_voice::emit_changed(NETMSG_type msg, const NETDSD_entry* dsd, const void* record) {
    std::vector<char> bytes = clean_bytes(dsd, record);
    std::vector<char>& last = sent_[msg];
    if (bytes == last) return;
    last = std::move(bytes);
    sink_.send({msg, FRAME_TO_ALL | FRAME_KEEP, "", dsd, last.data(), FALSE});
}

void SIM_voice::send_error_line(const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    const std::string text = formatted(format, args);
    va_end(args);
    auto record = NETDSD_default<NET_LOG_MonitorMessage>();
    record.flags = NET_LOG_MONITOR_ERROR;
    record.msgtime = time();
    UTIL_strcpynt(record.msg, text.c_str());
    send(MSG_LOG_MONITOR, record);
    log("error: %s", text.c_str());
}

BOOL SIM_voice::refuse(const char* what, const char* why, ...) {
    std::va_list args;
    va_start(args, why);
    const std::string text = name_ + ": " + what + " refused: " + formatted(why, args);
    va_end(args);
    if (refused_at_ != time()) refused_.clear();
    refused_at_ = time();
    if (refused_.insert(text).second) send_error_line("%s", text.c_str());
    ++refusals_;
    return FALSE;
}

void SIM_voice::log(const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    const std::string text = formatted(format, args);
    va_end(args);
    sink_.log(name_ + ": " + text);
}
