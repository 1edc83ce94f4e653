// Parsing of addresses and the search for the default socket.
#include "libvesk/link/address.h"

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "libvesk/support/util.h"

namespace {

constexpr const char* SYSTEM_DIRECTORY = "/run/vesk";
constexpr const char* SOCKET_NAME = "/server.sock";
constexpr std::size_t LONGEST_PATH = sizeof(sockaddr_un::sun_path) - 1;

BOOL fail(std::string* why, std::string text) {
    *why = std::move(text);
    return FALSE;
}

std::string quoted(std::string_view text) {
    return '"' + UTIL_printable(text) + '"';
}

BOOL good_host(std::string_view host) {
    return !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
        return c != ' ' && c != '[' && c != ']' && UTIL_is_printable(static_cast<unsigned char>(c));
    });
}

BOOL parse_port(std::string_view text, std::uint16_t* port) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *port);
    return error == std::errc() && end == text.data() + text.size();
}

std::string too_long() {
    return " is longer than " + std::to_string(LONGEST_PATH) + " bytes";
}

BOOL parse_path(std::string_view text, ADDRESS* address, std::string* why) {
    if (text.find('\0') != text.npos || text.size() > LONGEST_PATH)
        return fail(why, "the socket path " + quoted(text) + too_long());
    *address = {std::string(text), {}, ADDRESS_DEFAULT_PORT};
    return TRUE;
}

// Splits off what stands behind the host: ":PORT", or nothing. A bare V6 address has more than one colon.
void split_host(std::string_view text, std::string_view* host, std::string_view* rest) {
    std::size_t end = text.size();
    if (text.starts_with('[')) {
        end = std::min(text.find(']'), text.size());
        *host = text.substr(1, end - 1);
        *rest = text.substr(std::min(end + 1, text.size()));
        if (end == text.size()) *host = {};  // no closing bracket
        return;
    }
    if (std::count(text.begin(), text.end(), ':') == 1) end = text.find(':');
    *host = text.substr(0, end);
    *rest = text.substr(end);
}

const char* environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

// Where the socket is when the system provides no place for it.
std::string own_directory() {
    return "/tmp/vesk-" + std::to_string(getuid());
}

// A missing file is nobody's.
BOOL is_ours(const std::string& path) {
    struct stat st = {};
    return lstat(path.c_str(), &st) != 0 || st.st_uid == getuid() || st.st_uid == 0;
}

BOOL is_directory(const char* path) {
    struct stat st = {};
    return stat(path, &st) == 0 && S_ISDIR(st.st_mode);
}

}  // namespace

BOOL ADDRESS_parse(std::string_view text, ADDRESS* address, std::string* why) {
    if (text.find('/') != text.npos) return parse_path(text, address, why);
    std::string_view host;
    std::string_view rest;
    split_host(text, &host, &rest);
    if (!good_host(host)) return fail(why, quoted(text) + " names no host");

    std::uint16_t port = ADDRESS_DEFAULT_PORT;
    if (!rest.empty() && (rest.front() != ':' || !parse_port(rest.substr(1), &port)))
        return fail(why, "the port of " + quoted(text) + " is not a number from 0 to 65535");
    *address = {{}, std::string(host), port};
    return TRUE;
}

ADDRESS ADDRESS_default() {
    if (const char* path = environment("VESK_SOCKET")) return {path, {}, ADDRESS_DEFAULT_PORT};
    if (is_directory(SYSTEM_DIRECTORY))
        return {std::string(SYSTEM_DIRECTORY) + SOCKET_NAME, {}, ADDRESS_DEFAULT_PORT};
    if (const char* runtime = environment("XDG_RUNTIME_DIR"))
        return {std::string(runtime) + "/vesk" + SOCKET_NAME, {}, ADDRESS_DEFAULT_PORT};
    return {own_directory() + SOCKET_NAME, {}, ADDRESS_DEFAULT_PORT};
}

BOOL ADDRESS_may_connect(const std::string& path, std::string* why) {
    if (path.size() > LONGEST_PATH) return fail(why, "the path" + too_long());
    const std::string directory = own_directory();
    if (!path.starts_with(directory + '/')) return TRUE;
    for (const std::string& place : {directory, path})
        if (!is_ours(place)) return fail(why, place + " belongs to another user");
    return TRUE;
}

std::string ADDRESS_text(const ADDRESS& address) {
    if (address.is_local()) return address.path;
    const bool v6 = address.host.find(':') != address.host.npos;
    return (v6 ? '[' + address.host + ']' : address.host) + ':' + std::to_string(address.port);
}
