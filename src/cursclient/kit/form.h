// Entry dialogs as tables. A form has a title, rows, a function that fills the start values and one that
// sends what the operator entered:
//
//   using form = FORM<FOO_prv_data, NET_FOO_Setpoint>;
//   constexpr form::row ROWS[] = {
//       form::number<&NET_FOO_Setpoint::sp>("Setpoint: ", {.min = 0, .max = 99.9, .format = "%.1f"}),
//       form::check<&NET_FOO_Setpoint::enable>("Heat")};
//   constexpr form SETPOINT{.title = "Change setpoint",
//                           .rows = ROWS,
//                           .read = FORM_read<&FOO_prv_data::setpoint>,
//                           .send = FORM_send<MSG_FOO_SET>};
//
// and opens from a row of the display's menu:
//
//   {.hot_key = '2', .label = "2 Change setpoint", .action = FORM_open<SETPOINT>, .guard = COMMAND_PASSWORD}
//
// The second type holds the values that the operator edits: the record of the message, or a struct of the
// display's own when the form needs more than that. A row names its member, or the way to it:
// `form::number<&Values::limits, &Limits::min>`; a number in the way is an index into an array.
//
// Rows stand one below the other, under them the pair of buttons that ends the dialog. Cancel, Escape and a
// display that went send nothing.
#pragma once

#include <cstring>
#include <limits>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "cursclient/kit/command.h"
#include "libvesk/messages/netdsd.h"

// ---- what a row may say besides its member and its label; `x` is its column, and one greater than the row's
// above puts it beside that

inline constexpr double FORM_ANY = std::numeric_limits<double>::quiet_NaN();  // no limit

struct FORM_number {
    double min = FORM_ANY, max = FORM_ANY;
    const char* format = "%g";  // of one double; a text that does not fit is given in fewer digits
    int max_len = 10;
    bool as_typed = false;            // what was entered stays as it was typed, instead of in the format
    bool exact_until_edited = false;  // without an edit the start value is sent, not what the format shows
    int x = 1;
};
struct FORM_clock {
    bool may_be_empty = false;  // empty: VESK_NO_TIME
    int x = 1;
};
struct FORM_text {
    int max_len = 0;  // 0: what the member holds
    int x = 1;
};
struct FORM_check {
    const char* pressed_label = nullptr;  // takes the place of the label once the box was pressed
    int x = 1;
    int width = 0;  // 0: of the label
};
// A value to choose and the words for it.
struct FORM_choice {
    double value;
    const char* label;
};
// The same, with words made of the display's present state.
struct FORM_listed {
    double value;
    std::string label;
};
struct FORM_pick {
    std::string (*button_of)(double value) = nullptr;  // null: the row's label and the choice's
    int x = 1;
};

// ---- a row without its types

enum FORM_row_kind {
    FORM_NUMBER,
    FORM_CLOCK,
    FORM_TEXT,
    FORM_CHECK,
    FORM_CYCLE,
    FORM_PICK,
    FORM_NOTE,
    FORM_BUTTON
};

struct FORM_row {
    FORM_row_kind kind;
    const char* label;
    int x = 1;
    int width = 0;
    double (*load)(const void* values) = nullptr;  // numbers, checks and choices; NaN never for integers
    void (*store)(void* values, double value) = nullptr;
    char* (*text)(void* values) = nullptr;  // a text, and the bytes that it has
    std::size_t text_size = 0;
    FORM_number number = {};
    bool may_be_empty = false;
    const char* second_label = nullptr;  // FORM_check::pressed_label; the title of the list of FORM_PICK
    std::span<const FORM_choice> choices = {};
    std::string (*button_of)(double value) = nullptr;
};

// ---- the way to a member, by addresses alone: doubles of wire records are not aligned

template <class T>
[[nodiscard]] constexpr T* FORM_member(T* t) {
    return t;
}
template <class T, class Step, class... Rest>
[[nodiscard]] constexpr auto* FORM_member(T* t, Step step, Rest... rest) {
    if constexpr (std::is_integral_v<Step>)
        return FORM_member(*t + step, rest...);
    else
        return FORM_member(&(t->*step), rest...);
}
template <class V, auto... Path>
using FORM_member_type = std::remove_cvref_t<decltype(*FORM_member(static_cast<V*>(nullptr), Path...))>;

// The number as the member's type has it: integers are cut off and wrap.
template <class T>
[[nodiscard]] T FORM_converted(double value) {
    if constexpr (std::is_same_v<T, bool>) {
        return value != 0;
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(value);
    } else {
        static constexpr double BEYOND = 9.2e18;  // of what 64 bits hold
        const bool holds = value > -BEYOND && value < BEYOND;
        return static_cast<T>(holds ? static_cast<long long>(value) : 0);
    }
}

// ---- the form. R: the display's private record. V: the values; trivially copyable.

template <class R, class V>
struct FORM {
    static_assert(std::is_trivially_copyable_v<V>);
    struct row : FORM_row {
        std::vector<FORM_listed> (*choices_of)(const R* pd);  // FORM_PICK: null takes `choices`
        std::string (*note_of)(const R* pd);                  // FORM_NOTE: null takes `label`
        void (*send)(R* pd, const V& values);                 // FORM_BUTTON: null only closes
    };

    const char* title;
    std::span<const row> rows;
    // Sets the start values (which are zero); FALSE: the dialog does not open. Null leaves them zero.
    bool (*read)(const R* pd, V* values) = nullptr;
    // The pair that ends the dialog; the second button has the focus, unless the first row shall have it.
    void (*send)(R* pd, const V& values) = nullptr;  // null: no such pair, buttons are rows
    const char* ok = "Apply";
    int ok_width = 18;
    int cancel_width = 0;  // 0: the same
    int gap = 0;           // empty lines above the pair
    bool focuses_first_row = false;
    const char* no_memory = nullptr;  // the assertion to state when the dialog gets no memory
    // Normally a start value that is missing is left empty, and `send` and the buttons refuse, with the focus
    // on it, while a number is not within its limits. This is for instruments that report such values and
    // take them back.
    bool trusts_start_values = false;

    template <auto... Path>
    [[nodiscard]] static constexpr row number(const char* label, FORM_number number) {
        row r = value_row<Path...>(FORM_NUMBER, label);
        r.x = number.x;
        r.number = number;
        return r;
    }
    // A time of day, UTC, as "22:30" or "22:30:15": an FTIME, the next time that it is so late.
    template <auto... Path>
    [[nodiscard]] static constexpr row clock(const char* label, FORM_clock clock = {}) {
        static_assert(std::is_same_v<FORM_member_type<V, Path...>, FTIME>);
        row r = value_row<Path...>(FORM_CLOCK, label);
        r.x = clock.x;
        r.may_be_empty = clock.may_be_empty;
        return r;
    }
    template <auto... Path>
    [[nodiscard]] static constexpr row text(const char* label, FORM_text text = {}) {
        using member = FORM_member_type<V, Path...>;
        static_assert(std::is_same_v<std::remove_extent_t<member>, char>);
        row r{};
        r.kind = FORM_TEXT;
        r.label = label;
        r.x = text.x;
        r.text = [](void* v) -> char* { return *FORM_member(static_cast<V*>(v), Path...); };
        r.text_size = sizeof(member);
        r.number.max_len = text.max_len != 0 ? text.max_len : static_cast<int>(sizeof(member)) - 1;
        return r;
    }
    // "[*] label" or "[ ] label".
    template <auto... Path>
    [[nodiscard]] static constexpr row check(const char* label, FORM_check check = {}) {
        row r = value_row<Path...>(FORM_CHECK, label);
        r.x = check.x;
        r.width = check.width;
        r.second_label = check.pressed_label;
        return r;
    }
    // A button that shows the present choice and goes on to the next one. `choices` outlive the form.
    template <auto... Path>
    [[nodiscard]] static constexpr row cycle(const char* label, std::span<const FORM_choice> choices) {
        row r = value_row<Path...>(FORM_CYCLE, label);
        r.choices = choices;
        return r;
    }
    // A button that opens a list with that title; of fixed choices, or of those that the display has when it
    // opens.
    template <auto... Path>
    [[nodiscard]] static constexpr row pick(const char* title, const char* label,
                                            std::span<const FORM_choice> choices, FORM_pick pick = {}) {
        row r = value_row<Path...>(FORM_PICK, label);
        r.second_label = title;
        r.choices = choices;
        r.button_of = pick.button_of;
        r.x = pick.x;
        return r;
    }
    template <auto... Path>
    [[nodiscard]] static constexpr row pick(const char* title, const char* label,
                                            std::vector<FORM_listed> (*choices_of)(const R* pd),
                                            FORM_pick options = {}) {
        row r = pick<Path...>(title, label, std::span<const FORM_choice>(), options);
        r.choices_of = choices_of;
        return r;
    }
    // A fixed line of text, or one by the display's state.
    [[nodiscard]] static constexpr row note(const char* text, std::string (*note_of)(const R* pd) = nullptr) {
        row r{};
        r.kind = FORM_NOTE;
        r.label = text;
        r.note_of = note_of;
        return r;
    }
    // One more button that ends the dialog.
    [[nodiscard]] static constexpr row button(const char* label, int x, int width,
                                              void (*send)(R* pd, const V& values)) {
        row r{};
        r.kind = FORM_BUTTON;
        r.label = label;
        r.x = x;
        r.width = width;
        r.send = send;
        return r;
    }

  private:
    template <auto... Path>
    [[nodiscard]] static constexpr row value_row(FORM_row_kind kind, const char* label) {
        using member = FORM_member_type<V, Path...>;
        row r{};
        r.kind = kind;
        r.label = label;
        r.load = [](const void* v) {
            return static_cast<double>(NETDSD_load<member>(FORM_member(static_cast<const V*>(v), Path...)));
        };
        r.store = [](void* v, double value) {
            NETDSD_store<member>(FORM_member(static_cast<V*>(v), Path...), FORM_converted<member>(value));
        };
        return r;
    }
};

// ---- what forms share

// A form's `read` that copies a member of the display's record.
template <auto Member, class R, class V>
bool FORM_read(const R* pd, V* values) {
    *values = pd->*Member;
    return true;
}
// A form's `send` that sends the values as they are.
template <NETMSG_type MSG, class R, class V>
void FORM_send(R* pd, const V& values) {
    COMMAND_send(pd, MSG, values);
}

// ---- the one unit that makes them

// A form without its types. `pd` is the display's private record, `values` the operator's.
struct FORM_body {
    const char* title;
    std::size_t n_rows;
    const FORM_row& (*row)(std::size_t i);
    std::vector<FORM_listed> (*choices_of)(std::size_t i, const void* pd);
    std::string (*note_of)(std::size_t i, const void* pd);
    // Of a button's row, or, for n_rows, of the ending; without `sends` that only closes, or is not there.
    bool (*sends)(std::size_t i);
    void (*send)(std::size_t i, void* pd, const void* values);
    const char* ok;
    int ok_width, cancel_width, gap;
    bool focuses_first_row;
    const char* no_memory;
    bool trusts_start_values;
};
// Opens the dialog with a copy of the values. `body` is static.
void FORM_show(const FORM_body& body, DWORD uid, const void* values, std::size_t size);

template <const auto& form, class R, class V>
[[nodiscard]] const FORM_body& FORM_body_of() {
    static const FORM_body body{
        .title = form.title,
        .n_rows = form.rows.size(),
        .row = [](std::size_t i) -> const FORM_row& { return form.rows[i]; },
        .choices_of = [](std::size_t i, const void* pd) -> std::vector<FORM_listed> {
            const auto& row = form.rows[i];
            if (row.choices_of != nullptr && pd != nullptr) return row.choices_of(static_cast<const R*>(pd));
            std::vector<FORM_listed> all;
            for (const FORM_choice& choice : row.choices)
                all.push_back({choice.value, choice.label});
            return all;
        },
        .note_of = [](std::size_t i, const void* pd) -> std::string {
            const auto& row = form.rows[i];
            return row.note_of != nullptr && pd != nullptr ? row.note_of(static_cast<const R*>(pd))
                                                           : row.label;
        },
        .sends =
            [](std::size_t i) { return (i < form.rows.size() ? form.rows[i].send : form.send) != nullptr; },
        .send =
            [](std::size_t i, void* pd, const void* values) {
                const auto send = i < form.rows.size() ? form.rows[i].send : form.send;
                send(static_cast<R*>(pd), *static_cast<const V*>(values));
            },
        .ok = form.ok,
        .ok_width = form.ok_width,
        .cancel_width = form.cancel_width != 0 ? form.cancel_width : form.ok_width,
        .gap = form.gap,
        .focuses_first_row = form.focuses_first_row,
        .no_memory = form.no_memory,
        .trusts_start_values = form.trusts_start_values};
    return body;
}

template <const auto& form, class R, class V>
void FORM_open_typed(R* pd, DWORD uid, const FORM<R, V>* /*its types*/) {
    V values{};
    if (form.read != nullptr && !form.read(pd, &values)) return;
    FORM_show(FORM_body_of<form, R, V>(), uid, &values, sizeof values);
}
// The action that opens a form: of a menu's row, or for COMMAND_run.
template <const auto& form, class R>
void FORM_open(R* pd, DWORD uid) {
    FORM_open_typed<form>(pd, uid, &form);
}
