// The callbacks that most dialogs share: the button that only closes, and the entry that only takes a number.
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog.h"
#include "libveskcurs/cursdialog_widget.h"

namespace {

constexpr std::size_t LONGEST_NUMBER = 128;

std::size_t digits_at(const char* text) {
    return std::strspn(text, "0123456789");
}

// How many characters the conversion of one double takes that starts at this "%"; 0 when it is another one.
std::size_t double_conversion(const char* text) {
    const char* p = text + 1;
    p += std::strspn(p, "+- #0");
    const std::size_t width = digits_at(p);
    p += width;
    std::size_t precision = 0;
    if (*p == '.') {
        precision = digits_at(++p);
        p += precision;
    }
    if (*p == 'l') ++p;
    const bool is_double = *p != '\0' && std::strchr("fFeEgG", *p) != nullptr;
    // Three digits and more would only ever be a mistake, and could be a number beyond int.
    if (!is_double || width > 2 || precision > 2) return 0;
    return static_cast<std::size_t>(p + 1 - text);
}

// The format comes with the caller's data: it is used only when it converts exactly one double.
bool converts_one_double(const char* format) {
    int conversions = 0;
    for (const char* p = format; *p != '\0';) {
        if (*p != '%') {
            ++p;
        } else if (p[1] == '%') {
            p += 2;
        } else {
            const std::size_t taken = double_conversion(p);
            if (taken == 0) return false;
            p += taken;
            ++conversions;
        }
    }
    return conversions == 1;
}

// snprintf with a point for the point, whatever the process's locale has. Empty when it does not fit.
std::string formatted(const char* format, double value) {
    static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    char text[LONGEST_NUMBER];
    const locale_t before = uselocale(c_locale);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int n = std::snprintf(text, sizeof text, format, value);
#pragma GCC diagnostic pop
    uselocale(before);
    return n > 0 && static_cast<std::size_t>(n) < sizeof text ? std::string(text, n) : std::string();
}

// A NaN limit is none.
bool within(const CURSDIALOG_DEFAULT_entry_numeric_param& param, double value) {
    return !(value < param.min) && !(value > param.max);
}

// The number as it is shown again; the text as it was typed when the format is no good, when the entry has no
// room for what it gives, or when rounding would lead out of the limits.
std::string shown_again(const CURSDIALOG_DEFAULT_entry_numeric_param& param, const CURSDIALOG_widget* wd,
                        const char* typed, double value) {
    const std::string format(UTIL_field(param.fmt));
    if (!converts_one_double(format.c_str())) return typed;
    std::string text = formatted(format.c_str(), value);
    const std::size_t room = wd != nullptr ? wd->max_len : 0;
    double read_back = 0;
    if (text.empty() || text.size() > room || !UTIL_parse_number(text, &read_back)) return typed;
    return within(param, read_back) ? text : typed;
}

// The hint of an entry with these limits. Static: it outlives the callback, and the toolkit copies it.
const char* what_is_wanted(const CURSDIALOG_DEFAULT_entry_numeric_param* param) {
    static char reason[LONGEST_NUMBER];
    if (param == nullptr || !std::isfinite(param->min) || !std::isfinite(param->max)) return "a number";
    std::snprintf(reason, sizeof reason, "a number from %s to %s", formatted("%.10g", param->min).c_str(),
                  formatted("%.10g", param->max).c_str());
    return reason;
}

}  // namespace

void CURSDIALOG_DEFAULT_button_close(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/,
                                     CURSDIALOG_widget* /*wd*/, void* /*wd_user_data*/,
                                     CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
}

void CURSDIALOG_DEFAULT_entry_numeric(CURSDIALOG_type* dlg, void* dlg_user_data, CURSDIALOG_widget* wd,
                                      void* wd_user_data, char* str, CURSDIALOG_entry_action* act) {
    const auto* param = static_cast<const CURSDIALOG_DEFAULT_entry_numeric_param*>(wd_user_data);
    double value = 0;
    const bool is_number = UTIL_parse_number(str, &value) && std::isfinite(value);
    if (!is_number || (param != nullptr && !within(*param, value))) {
        act->revert_value = TRUE;
        act->reason = what_is_wanted(param);
        return;
    }
    if (param == nullptr) return;
    const std::string text = shown_again(*param, wd, str, value);
    UTIL_strncpynt(str, text.c_str(), text.size() + 1);
    if (param->pass_through != nullptr) param->pass_through(dlg, dlg_user_data, wd, wd_user_data, str, act);
}
