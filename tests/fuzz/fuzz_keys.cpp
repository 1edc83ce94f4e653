// Bytes of a terminal through the key reader into an open dialog: whatever is typed, the reader takes all of
// it, keeps nothing back for later and neither it nor the dialogs break.
#include <panel.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "libveskcurs/cursdialog.h"
#include "libveskcurs/curskeys.h"
#include "support/screen.h"

namespace {

constexpr std::size_t LONGEST_INPUT = 4096;  // what a pipe holds in any case

int g_keys_seen = 0;
int g_last_key = ERR;

void give_up(const char* why) {
    std::fprintf(stderr, "fuzz_keys: %s\n", why);
    std::abort();
}

void open_dialog();

void open_another(CURSDIALOG_type*, void*, CURSDIALOG_widget* wd, void*, CURSDIALOG_button_action* act) {
    CURSDIALOG_setlabel(wd, CURSDIALOG_getvalue(wd, nullptr, 0)[0] == '1' ? "2 Other" : "1 Another");
    act->close_dialog = TRUE;
    open_dialog();
}

void open_dialog() {
    const CURSDIALOG_DEFAULT_entry_numeric_param limits{1, 9999, "%.1f", nullptr};
    CURSDIALOG_type* dlg = CURSDIALOG_create(COLOR_PAIR(2), COLOR_PAIR(3) | static_cast<int>(A_BOLD), "Fuzz",
                                             0, nullptr, 0, nullptr, nullptr);
    CURSDIALOG_add_button(dlg, 1, 1, 12, CURSDIALOG_STYLE_MENU, '1', "1 Another", open_another, nullptr, 0);
    CURSDIALOG_add_button(dlg, 14, 1, 12, CURSDIALOG_STYLE_MENU, 0xE9, "2 Close",
                          CURSDIALOG_DEFAULT_button_close, nullptr, 0);
    CURSDIALOG_add_label(dlg, 1, 2, 0, 0, "a text");
    CURSDIALOG_add_entry(dlg, 1, 40, 0, CURSDIALOG_STYLE_LIST, 'n', "Number: ", "1", 8,
                         CURSDIALOG_DEFAULT_entry_numeric, &limits, sizeof limits);
    CURSDIALOG_force_entry_input(dlg, CURSDIALOG_add_entry(dlg, 100, 3, 4, CURSDIALOG_STYLE_HIDDEN, 0, "", "",
                                                           63, nullptr, nullptr, 0));
}

void take_key(int key) {
    ++g_keys_seen;
    g_last_key = key;
    if (!CURSDIALOG_active()) open_dialog();
    if (!CURSDIALOG_keypress(key) && key != KEY_RESIZE) give_up("an open dialog left a key");
}

// Reads until nothing is left; every call but the last takes at least one key.
void drain(std::size_t bytes) {
    for (std::size_t calls = 0; CURSKEYS_handle_keys(nullptr, take_key); ++calls) {
        if (calls > bytes) give_up("reading does not end");
        CURSDIALOG_update();
        update_panels();
        doupdate();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static TestScreen screen(10, 30);
    if (size > LONGEST_INPUT) return 0;
    screen.type(std::string_view(reinterpret_cast<const char*>(data), size));
    drain(size);

    g_keys_seen = 0;
    screen.type("Z");
    drain(1);
    if (g_keys_seen != 1 || g_last_key != 'Z') give_up("something was kept back from the input before");
    CURSDIALOG_cleanup();
    return 0;
}
