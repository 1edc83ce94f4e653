// Makes the dialog of a form, keeps the operator's values while it is open and sends them.
#include "cursclient/kit/form.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string_view>

#include "cursclient/kit/instdisp.h"
#include "libvesk/support/util.h"

namespace {

// State that lives as long as the dialog.
struct form_state {
    const FORM_body* body;
    DWORD uid;
    std::unique_ptr<std::byte[]> values;      // aligned as new aligns: enough for any record
    std::vector<CURSDIALOG_widget*> widgets;  // of the rows
    CURSDIALOG_type* list;                    // the open list of choices, or null
};

// User data of a row's widget: the toolkit's numeric check reads the limits, the callbacks the row.
struct row_param {
    CURSDIALOG_DEFAULT_entry_numeric_param limits;
    std::size_t row;
};

// User data of a button in a list of choices.
struct choice_param {
    std::size_t row;
    double value;
};

std::size_t row_of(const void* wd_user_data) {
    return static_cast<const row_param*>(wd_user_data)->row;
}

double value_of(const form_state& f, const FORM_row& row) {
    return row.load(f.values.get());
}

// ---- numbers

// printf of one double by a format that a table states.
std::string printed(const char* format, double value) {
    char text[128];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int n = std::snprintf(text, sizeof text, format, value);
#pragma GCC diagnostic pop
    return n > 0 && static_cast<std::size_t>(n) < sizeof text ? text : std::string(sizeof text, '*');
}

// The value in its format; with fewer digits where that would not fit the entry, which would cut off its end
// and so make another number of it.
std::string number_text(const FORM_number& number, double value) {
    const auto room = static_cast<std::size_t>(number.max_len);
    std::string text = printed(number.format, value);
    for (int decimals = 6; text.size() > room && decimals >= 0; --decimals)
        text = printed(("%." + std::to_string(decimals) + "e").c_str(), value);
    return text;
}

bool is_within(const FORM_number& number, double value) {
    return !(value < number.min) && !(value > number.max);
}

void number_accepted(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void* wd_user_data, char* str,
                     CURSDIALOG_entry_action*) {
    const auto* f = COMMAND_param<form_state>(dlg_user_data);
    f->body->row(row_of(wd_user_data)).store(f->values.get(), UTIL_atofv(str));
}

CURSDIALOG_widget* add_number(CURSDIALOG_type* dlg, const form_state& f, const FORM_row& row, int y,
                              row_param param) {
    const FORM_number& number = row.number;
    param.limits = {number.min, number.max, "", number_accepted};
    if (!number.as_typed) UTIL_strcpynt(param.limits.fmt, number.format);
    const double start = value_of(f, row);
    const bool is_empty = VESK_is_missing(start) && !f.body->trusts_start_values;
    const std::string text = is_empty ? "" : number_text(number, start);
    if (!number.exact_until_edited && !is_empty) row.store(f.values.get(), UTIL_atofv(text.c_str()));
    return CURSDIALOG_add_entry(dlg, row.x, y, 0, CURSDIALOG_STYLE_LIST, 0, row.label, text.c_str(),
                                number.max_len, CURSDIALOG_DEFAULT_entry_numeric, &param, sizeof param);
}

// ---- times of day

constexpr int SECONDS_PER_DAY = 86400;
constexpr int CLOCK_LENGTH = 8;

// "22:30" or "22:30:15" as seconds of the day, -1 for anything else.
int seconds_of_day(std::string_view text) {
    static constexpr int LIMITS[] = {24, 60, 60};
    int parts[] = {0, 0, 0};
    std::size_t n = 0;
    for (const char* at = text.data(); n < std::size(parts); ++at) {
        const auto [end, error] = std::from_chars(at, text.data() + text.size(), parts[n]);
        if (error != std::errc{} || parts[n] < 0 || parts[n] >= LIMITS[n]) return -1;
        ++n;
        at = end;
        if (at == text.data() + text.size()) break;
        if (*at != ':' || n == std::size(parts)) return -1;
    }
    return n < 2 ? -1 : (parts[0] * 60 + parts[1]) * 60 + parts[2];
}

FTIME next_time_of_day(int seconds) {
    const FTIME now = UTIL_ftime();
    const FTIME today = std::floor(now / SECONDS_PER_DAY) * SECONDS_PER_DAY + seconds;
    return today > now ? today : today + SECONDS_PER_DAY;
}

void clock_entered(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void* wd_user_data, char* str,
                   CURSDIALOG_entry_action* act) {
    const auto* f = COMMAND_param<form_state>(dlg_user_data);
    const FORM_row& row = f->body->row(row_of(wd_user_data));
    const int seconds = seconds_of_day(str);
    if (seconds >= 0) return row.store(f->values.get(), next_time_of_day(seconds));
    if (*str == '\0' && row.may_be_empty) return row.store(f->values.get(), VESK_NO_TIME);
    act->revert_value = TRUE;
    act->reason = "a time of day, as 22:30";
}

bool is_time(FTIME t) {
    return t != VESK_NO_TIME && !VESK_is_missing(t) && std::isfinite(t);
}

CURSDIALOG_widget* add_clock(CURSDIALOG_type* dlg, const form_state& f, const FORM_row& row, int y,
                             const row_param& param) {
    const FTIME start = value_of(f, row);
    return CURSDIALOG_add_entry(dlg, row.x, y, 0, CURSDIALOG_STYLE_LIST, 0, row.label,
                                is_time(start) ? INSTDISP_time(start).c_str() : "", CLOCK_LENGTH,
                                clock_entered, &param, sizeof param);
}

// ---- choices

std::vector<FORM_listed> choices_of(const form_state& f, std::size_t i) {
    return f.body->choices_of(i, COMMAND_display<INSTDISP_head>(f.uid));
}

std::string choice_label(const form_state& f, std::size_t i) {
    const FORM_row& row = f.body->row(i);
    const double value = value_of(f, row);
    if (row.kind == FORM_CHECK) return COMMAND_check_label(value != 0, row.label);
    if (row.button_of != nullptr) return row.button_of(value);
    for (const FORM_listed& choice : choices_of(f, i))
        if (choice.value == value) return row.label + choice.label;
    return row.label;
}

void check_pressed(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget* wd, void* wd_user_data,
                   CURSDIALOG_button_action*) {
    const auto* f = COMMAND_param<form_state>(dlg_user_data);
    const FORM_row& row = f->body->row(row_of(wd_user_data));
    const bool on = value_of(*f, row) == 0;
    row.store(f->values.get(), on ? 1 : 0);
    const char* label = row.second_label != nullptr ? row.second_label : row.label;
    CURSDIALOG_setlabel(wd, COMMAND_check_label(on, label).c_str());
}

// An unknown value goes on to the first choice.
void cycle_pressed(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget* wd, void* wd_user_data,
                   CURSDIALOG_button_action*) {
    const auto* f = COMMAND_param<form_state>(dlg_user_data);
    const std::size_t i = row_of(wd_user_data);
    const FORM_row& row = f->body->row(i);
    const auto now = std::ranges::find(row.choices, value_of(*f, row), &FORM_choice::value);
    const bool goes_on = now != row.choices.end() && now + 1 != row.choices.end();
    row.store(f->values.get(), goes_on ? (now + 1)->value : row.choices.front().value);
    CURSDIALOG_setlabel(wd, choice_label(*f, i).c_str());
}

void choice_made(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void* wd_user_data,
                 CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    const auto* f = COMMAND_param<form_state>(dlg_user_data);
    const auto& choice = *static_cast<const choice_param*>(wd_user_data);
    f->body->row(choice.row).store(f->values.get(), choice.value);
    CURSDIALOG_setlabel(f->widgets[choice.row], choice_label(*f, choice.row).c_str());
}

void list_closed(CURSDIALOG_type*, void* dlg_user_data) {
    COMMAND_param<form_state>(dlg_user_data)->list = nullptr;
}

// Without a choice there is no list: the choices of a display that went are none.
void pick_pressed(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void* wd_user_data,
                  CURSDIALOG_button_action*) {
    auto* f = COMMAND_param<form_state>(dlg_user_data);
    const std::size_t i = row_of(wd_user_data);
    const FORM_row& row = f->body->row(i);
    const std::vector<FORM_listed> choices = choices_of(*f, i);
    if (choices.empty() || f->list != nullptr) return;
    f->list = DIALOG_create(row.second_label, 0, &f, sizeof f, list_closed);
    int y = 1;
    for (const FORM_listed& choice : choices) {
        const choice_param param{i, choice.value};
        CURSDIALOG_widget* button =
            CURSDIALOG_add_button(f->list, 1, y++, 0, CURSDIALOG_STYLE_LIST, 0, choice.label.c_str(),
                                  choice_made, &param, sizeof param);
        if (choice.value == value_of(*f, row)) CURSDIALOG_force_widget_focus(f->list, button);
    }
}

// ---- the end

void take_texts(const form_state& f) {
    for (std::size_t i = 0; i < f.body->n_rows; ++i)
        if (const FORM_row& row = f.body->row(i); row.kind == FORM_TEXT)
            CURSDIALOG_getvalue(f.widgets[i], row.text(f.values.get()), row.text_size);
}

// FALSE for what the operator must enter first.
bool is_usable(const FORM_row& row, double value) {
    if (row.kind == FORM_CLOCK) return is_time(value) || row.may_be_empty;
    if (row.kind != FORM_NUMBER) return true;
    return !VESK_is_missing(value) && std::isfinite(value) && is_within(row.number, value);
}

// The first entry that cannot be sent, or null.
CURSDIALOG_widget* unusable_entry(const form_state& f) {
    for (std::size_t i = 0; i < f.body->n_rows; ++i) {
        const FORM_row& row = f.body->row(i);
        if (row.load != nullptr && !is_usable(row, value_of(f, row))) return f.widgets[i];
    }
    return nullptr;
}

void send_pressed(CURSDIALOG_type* dlg, void* dlg_user_data, CURSDIALOG_widget*, void* wd_user_data,
                  CURSDIALOG_button_action* act) {
    const auto* f = COMMAND_param<form_state>(dlg_user_data);
    CURSDIALOG_widget* unusable = f->body->trusts_start_values ? nullptr : unusable_entry(*f);
    if (unusable != nullptr) return CURSDIALOG_force_widget_focus(dlg, unusable);
    act->close_dialog = TRUE;
    auto* pd = COMMAND_display<INSTDISP_head>(f->uid);
    if (pd == nullptr) return;
    take_texts(*f);
    f->body->send(row_of(wd_user_data), pd, f->values.get());
}

void form_closed(CURSDIALOG_type*, void* dlg_user_data) {
    CURSDIALOG_close(COMMAND_param<form_state>(dlg_user_data)->list);
}

// ---- the rows

CURSDIALOG_widget* add_row(CURSDIALOG_type* dlg, const form_state& f, std::size_t i, int y) {
    const FORM_row& row = f.body->row(i);
    const row_param param{{}, i};
    const auto button = [&](const std::string& label, CURSDIALOG_button_cb pressed, int style) {
        return CURSDIALOG_add_button(dlg, row.x, y, row.width, style, 0, label.c_str(), pressed, &param,
                                     sizeof param);
    };
    switch (row.kind) {
        case FORM_NUMBER:
            return add_number(dlg, f, row, y, param);
        case FORM_CLOCK:
            return add_clock(dlg, f, row, y, param);
        case FORM_TEXT:
            return CURSDIALOG_add_entry(dlg, row.x, y, 0, CURSDIALOG_STYLE_LIST, 0, row.label,
                                        row.text(f.values.get()), row.number.max_len, nullptr, nullptr, 0);
        case FORM_CHECK:
            return button(choice_label(f, i), check_pressed, CURSDIALOG_STYLE_LIST);
        case FORM_CYCLE:
            return button(choice_label(f, i), cycle_pressed, CURSDIALOG_STYLE_LIST);
        case FORM_PICK:
            return button(choice_label(f, i), pick_pressed, CURSDIALOG_STYLE_LIST);
        case FORM_BUTTON:
            return button(row.label, f.body->sends(i) ? send_pressed : CURSDIALOG_DEFAULT_button_close,
                          CURSDIALOG_STYLE_ROW);
        case FORM_NOTE:
            return CURSDIALOG_add_label(dlg, row.x, y, 0, 0,
                                        f.body->note_of(i, COMMAND_display<INSTDISP_head>(f.uid)).c_str());
    }
    return nullptr;
}

CURSDIALOG_widget* add_ending(CURSDIALOG_type* dlg, const FORM_body& body, int y) {
    const row_param param{{}, body.n_rows};
    CURSDIALOG_add_button(dlg, 1, y, body.ok_width, CURSDIALOG_STYLE_ROW, 0, body.ok, send_pressed, &param,
                          sizeof param);
    return CURSDIALOG_add_button(dlg, 1 + body.ok_width, y, body.cancel_width, CURSDIALOG_STYLE_ROW, 0,
                                 "Cancel", CURSDIALOG_DEFAULT_button_close, nullptr, 0);
}

}  // namespace

void FORM_show(const FORM_body& body, DWORD uid, const void* values, std::size_t size) {
    const auto [dlg, f] = COMMAND_create_form<form_state>(body.title, form_closed);
    if (dlg == nullptr) {
        if (body.no_memory != nullptr) COMMAND_no_memory(uid, body.no_memory);
        return;
    }
    f->body = &body;
    f->uid = uid;
    f->values = std::make_unique<std::byte[]>(size);
    std::memcpy(f->values.get(), values, size);
    int y = 0;
    for (std::size_t i = 0; i < body.n_rows; ++i) {
        if (i == 0 || body.row(i).x <= body.row(i - 1).x) ++y;
        f->widgets.push_back(add_row(dlg, *f, i, y));
    }
    CURSDIALOG_widget* last =
        body.sends(body.n_rows) ? add_ending(dlg, body, y + 1 + body.gap) : f->widgets.back();
    CURSDIALOG_force_widget_focus(dlg, body.focuses_first_row ? f->widgets.front() : last);
}
