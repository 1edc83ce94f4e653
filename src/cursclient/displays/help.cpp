// The help window: a scrolling page of the keys that work everywhere.
#include <algorithm>
#include <string_view>

#include "cursclient/kit/persistent.h"
#include "cursclient/wintext.h"
#include "libveskcurs/curskeys.h"

namespace {

constexpr int VIEW_LINES = 10;  // text lines shown at a time
constexpr int LAST_COLUMN = 58;
constexpr int SCROLL_STEP = 3;
constexpr int SCROLL_MARGIN = 14;  // the last line scrolls up to here, into the view
constexpr int CTRL_H = 8;

// "^" toggles bold, "!" centres the rest of its line. The bold that the first line leaves on makes the second
// title plain. One line stands twice; both stay.
constexpr char g_help_message[] =
    "^!Use PGUP/PGDN to scroll\n"
    "^!General keystrokes\n"
    "\n"
    "^CTRL-W^        Close the focused window\n"
    "^CTRL-M^,       Show the root menu\n"
    "^ESC^, or\n"
    "^ENTER^\n"
    "^ALT-X^         Select root menu entry X,\n"
    "                outside of root menu\n"
    "^CTRL-D^        Display the disk operations menu\n"
    "^F12^           Display the online log entry window\n"
    "^CTRL-E^        Show/hide the error window\n"
    "^CTRL-C^        Quit\n"
    "^M^             Show the menu for the focused window\n"
    "^TAB^           Cycles window focus\n"
    "^TAB^           Cycles window focus\n"
    "\n";

struct HELP_prv_data {
    WINS_window* win;
    int start_line;  // first text line shown, from 0; negative after a page down on a short text
    int line_count;
    const char* use_msg;
};

// Walks the whole text and draws what lies in the view, so that the count of lines does not depend on it.
class page {
  public:
    explicit page(HELP_prv_data* pd) : pd_(pd) {}

    int draw(std::string_view text) {
        while (!text.empty())
            text.remove_prefix(step(text));
        return line_;
    }

  private:
    // Handles what stands at the front; how many characters that was.
    std::size_t step(std::string_view text) {
        switch (text.front()) {
            case '\n':
                ++line_;
                column_ = 1;
                return 1;
            case '^':
                bold_ = !bold_;
                return 1;
            case '!': {
                const std::string_view rest = text.substr(1, text.find('\n') - 1);
                if (in_view()) WINTEXT_put_centered(pd_->win, row(), attr(), rest);
                return 1 + rest.size();
            }
            default:
                put(text.substr(0, 1));
                return 1;
        }
    }

    void put(std::string_view character) {
        if (column_ > LAST_COLUMN) {
            ++line_;
            column_ = 1;
        }
        if (in_view()) WINTEXT_put_attr(pd_->win, row(), column_, attr(), character);
        ++column_;
    }

    int row() const { return line_ - pd_->start_line; }
    bool in_view() const { return row() >= 1 && row() <= VIEW_LINES; }
    int attr() const { return bold_ ? WINS_attr_highlight() : WINS_attr_normal(); }

    HELP_prv_data* pd_;
    int line_ = 1;
    int column_ = 1;
    bool bold_ = false;
};

bool start(HELP_prv_data* pd) {
    pd->use_msg = g_help_message;
    const std::string_view text = pd->use_msg;
    pd->line_count = 1 + static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    return true;
}

void draw(HELP_prv_data* pd, FTIME /*curtime*/) {
    pd->line_count = page(pd).draw(pd->use_msg);
}

// Ctrl-H is also what some terminals send for Backspace: a window that edits text keeps it.
bool calls_help(int key) {
    return key == KEY_F(1) || (key == CTRL_H && !WINS_focus_edits_text());
}

bool toggle(HELP_prv_data* pd, int key) {
    if (!calls_help(key)) return false;
    if (pd->win->visible) {
        WINS_hide_window(pd->win);
    } else {
        WINS_focus_window(pd->win);
        WINS_center(pd->win);
    }
    return false;  // the key goes on
}

bool page_by(HELP_prv_data* pd, int key) {
    if (key == KEY_NPAGE)
        pd->start_line = std::min(pd->start_line + SCROLL_STEP, pd->line_count - SCROLL_MARGIN);
    else if (key == KEY_PPAGE)
        pd->start_line = std::max(pd->start_line - SCROLL_STEP, 0);
    else
        return false;
    return true;
}

constexpr PERSISTENT_kind<HELP_prv_data> KIND{
    .cols = 60, .rows = 12, .title = "Help", .draw = draw, .start = start, .any_key = toggle, .key = page_by};

}  // namespace

PERSISTENT_BINDINGS(HELP, KIND)
