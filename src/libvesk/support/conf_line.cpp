// The syntax of one line of the configuration file. Everything that CONF_append_ writes, CONF_read_setting
// reads back as it was; a path is escaped character by character, a value is quoted as a whole.
#include "libvesk/support/conf_line.h"

#include <algorithm>

#include "libvesk/support/util.h"

namespace {

struct escape {
    char letter;
    char meaning;
};
constexpr escape ESCAPES[] = {{'n', '\n'}, {'r', '\r'}, {'t', '\t'}};

bool is_control(char c) {
    return static_cast<unsigned char>(c) < 32 || c == 127;
}

// A backslash before it, or as a code when it would not show.
void append_escaped(std::string& text, char c) {
    text += '\\';
    for (const escape& e : ESCAPES) {
        if (e.meaning != c) continue;
        text += e.letter;
        return;
    }
    if (!is_control(c)) {
        text += c;
        return;
    }
    constexpr char DIGITS[] = "0123456789ABCDEF";
    text += 'x';
    text += DIGITS[static_cast<unsigned char>(c) >> 4];
    text += DIGITS[c & 15];
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// Reads what follows a backslash off the front of `rest`; FALSE when that is no escape. Letters and digits
// are reserved for codes, every other character stands for itself.
bool take_escape(std::string_view& rest, std::string& into) {
    if (rest.empty()) return false;
    const char c = rest.front();
    rest.remove_prefix(1);
    for (const escape& e : ESCAPES) {
        if (e.letter != c) continue;
        into += e.meaning;
        return true;
    }
    if (c == 'x' && rest.size() >= 2 && hex_digit(rest[0]) >= 0 && hex_digit(rest[1]) >= 0) {
        into += static_cast<char>(hex_digit(rest[0]) * 16 + hex_digit(rest[1]));
        rest.remove_prefix(2);
        return into.back() != '\0';
    }
    const bool is_code = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    into += c;
    return !is_code;
}

// One piece of the path up to its separator or the "=", which stay in `rest`. Blanks around it are not part
// of it unless escaped. Null or what is wrong.
const char* take_name(std::string_view& rest, std::string& name) {
    std::size_t kept = 0;  // length up to the last character that is not a plain blank
    while (!rest.empty() && UTIL_is_blank(rest.front()))
        rest.remove_prefix(1);
    while (!rest.empty() && rest.front() != CONF_SEPARATOR && rest.front() != '=') {
        const char c = rest.front();
        rest.remove_prefix(1);
        if (c != '\\')
            name += c;
        else if (!take_escape(rest, name))
            return "the backslash in its path begins no known escape";
        if (c == '\\' || !UTIL_is_blank(c)) kept = name.size();
    }
    name.resize(kept);
    if (name.find(CONF_SEPARATOR) != std::string::npos) return "a name in its path contains \";\"";
    return rest.empty() ? "it has no \"=\"" : nullptr;
}

const char* take_path(std::string_view& rest, CONF_path& path) {
    for (;;) {
        std::string name;
        const char* wrong = take_name(rest, name);
        if (wrong != nullptr) return wrong;
        if (!name.empty()) path.push_back(std::move(name));
        const bool more = rest.front() == CONF_SEPARATOR;
        rest.remove_prefix(1);
        if (!more) break;
    }
    return path.empty() ? "it has no path" : nullptr;
}

const char* read_value(std::string_view text, std::string& value) {
    text = UTIL_trimmed(text);
    if (!text.starts_with('"')) {
        value = text;
        return nullptr;
    }
    text.remove_prefix(1);
    while (!text.empty() && text.front() != '"') {
        const char c = text.front();
        text.remove_prefix(1);
        if (c != '\\')
            value += c;
        else if (!take_escape(text, value))
            return "the backslash in its value begins no known escape";
    }
    if (text.empty()) return "the quotes of its value are not closed";
    return text.size() > 1 ? "something follows its quoted value" : nullptr;
}

}  // namespace

void CONF_append_name(std::string& text, std::string_view name) {
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        const bool at_end = i == 0 || i + 1 == name.size();
        const bool special =
            c == '=' || c == '#' || c == '\\' || is_control(c) || (at_end && UTIL_is_blank(c));
        if (special)
            append_escaped(text, c);
        else
            text += c;
    }
}

void CONF_append_value(std::string& text, std::string_view value) {
    const auto awkward = [](char c) { return c == '"' || c == '#' || is_control(c); };
    const bool plain = !value.empty() && !UTIL_is_blank(value.front()) && !UTIL_is_blank(value.back()) &&
                       std::none_of(value.begin(), value.end(), awkward);
    if (plain) {
        text += value;
        return;
    }
    text += '"';
    for (char c : value) {
        if (c == '"' || c == '\\' || is_control(c))
            append_escaped(text, c);
        else
            text += c;
    }
    text += '"';
}

const char* CONF_read_setting(std::string_view line, CONF_path& path, std::string& value) {
    if (line.find('\0') != std::string_view::npos) return "it contains a NUL";
    const char* wrong = take_path(line, path);
    return wrong != nullptr ? wrong : read_value(line, value);
}
