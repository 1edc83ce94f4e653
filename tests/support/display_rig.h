// The console with its displays, for tests of displays: instruments announce themselves and send records,
// windows are read back as text, and what displays send to instruments is caught.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "cursclient/passwd.h"
#include "cursclient/wins.h"
#include "libvesk/link/veskmsg.h"
#include "libvesk/messages/netmsg.h"
#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog.h"
#include "support/console.h"

class DisplayRig : public ConsoleTest {
  protected:
    static constexpr int TAB = 9, ENTER = 13, ESCAPE = 27;

    explicit DisplayRig(int lines = 40, int cols = 100);
    ~DisplayRig() override;

    static constexpr FTIME START = 1700000000.0;  // 22:13:20 UTC
    static void set_time(FTIME now);

    // The kinds of displays that an instrument brings up, in the order of their table.
    static std::vector<std::string> kinds();

    // An instrument announces itself; the uid of its (first) display, 0 when there is none.
    static DWORD announce(const char* source, const char* type, const char* display_name = "Instrument",
                          char id_ch = 'x');
    static void leave(const char* source);
    static void receive(const char* source, NETMSG_type msg, const NETDSD_entry* dsd = nullptr,
                        const void* payload = nullptr);
    template <class R>
    static void receive(const char* source, NETMSG_type msg, R record) {
        receive(source, msg, NETDSD_of<R>(), &record);
    }

    // The same from the record's values as JSON; those left out are missing.
    static void report(const char* source, NETMSG_type msg, const std::string& payload);

    static WINS_window* window(const char* ident);
    // Shows and focuses it.
    static WINS_window* focus(const char* ident);
    // Opens the menu of a window and presses buttons.
    static void choose(const char* ident, std::string_view buttons);
    static void redraw();
    // The window after a redraw that has drawn it, whether it was in view or not.
    static WINS_window* redrawn(const char* ident);
    // The inside of a window after a redraw: one line per row, trailing blanks cut, empty rows at the end
    // left out; begins with a newline, so that it compares with a raw text.
    static std::string inside(const char* ident);
    static std::string row(const char* ident, int y);
    // Colour pair of a cell after a redraw, negative when it is bold.
    static int color(const char* ident, int y, int x);
    // The whole screen, dialogs included.
    static std::string screen_text();

    // The messages that the console sent since the last call; ServerEnd::received says how it is written.
    static std::vector<std::string> take_sent();
};
