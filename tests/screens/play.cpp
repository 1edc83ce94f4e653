#include "screens/play.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>

#include "cursclient/cursclient.h"
#include "cursclient/debug.h"
#include "cursclient/snapshot.h"
#include "libvesk/json/json_line.h"
#include "libvesk/messages/records/server.h"
#include "libveskcurs/curskeys.h"

namespace {

// Where an instrument's window stands, and what stays free around it.
constexpr int LEFT = 2, TOP = 1, BOTTOM = 1;
constexpr int STATUS_COLS = 40;  // an indicator or two, and the time

const std::map<std::string, int, std::less<>> KEYS{
    {"tab", CURSKEYS_TAB}, {"btab", CURSKEYS_BTAB},      {"enter", '\r'},    {"esc", CURSKEYS_ESCAPE},
    {"up", KEY_UP},        {"down", KEY_DOWN},           {"left", KEY_LEFT}, {"right", KEY_RIGHT},
    {"pgup", KEY_PPAGE},   {"pgdn", KEY_NPAGE},          {"space", ' '},     {"home", KEY_HOME},
    {"end", KEY_END},      {"backspace", KEY_BACKSPACE}, {"delete", KEY_DC}};

// The key behind a name: of the table, "f5", "ctrl-w", "alt-n"; 0 when there is none.
int key_named(std::string_view name) {
    if (const auto it = KEYS.find(name); it != KEYS.end()) return it->second;
    if (name.size() > 1 && name[0] == 'f') return KEY_F(std::atoi(name.data() + 1));
    if (name.size() == 6 && name.starts_with("ctrl-")) return name[5] & 0x1F;
    if (name.size() == 5 && name.starts_with("alt-")) return CURSKEYS_ALT + name[4];
    return 0;
}

void cut_blanks(std::string* line) {
    line->erase(line->find_last_not_of(' ') + 1);
}

// ---- looks

// The frame of the window that has the focus is bold; in texts its lines are heavy instead, so that only what
// stands out otherwise needs letters.
wchar_t heavy(wchar_t line) {
    static constexpr std::wstring_view LIGHT = L"─│┌┐└┘├┤", HEAVY = L"━┃┏┓┗┛┣┫";
    const auto at = LIGHT.find(line);
    return at == std::wstring_view::npos ? line : HEAVY[at];
}

struct Look {
    int pair;
    bool bold;
    bool reverse;
};

Look look_at(int y, int x) {
    const attr_t attributes = TestScreen::attributes(newscr, y, x);
    return {TestScreen::color_pair(newscr, y, x), (attributes & A_BOLD) != 0, (attributes & A_REVERSE) != 0};
}

// But for the top of a frame.
std::string with_light_frame(std::string text) {
    static constexpr struct {
        std::string_view heavy, light;
    } LINES_BELOW[] = {{"┃", "│"}, {"┣", "├"}, {"┫", "┤"}, {"┗", "└"}, {"┛", "┘"}, {"━", "─"}};
    if (text.find("┏") != std::string::npos) return text;
    for (const auto& [heavy, light] : LINES_BELOW)
        for (std::size_t at = 0; (at = text.find(heavy, at)) != std::string::npos;)
            text.replace(at, heavy.size(), light);
    return text;
}

bool is_blank(const std::string& text) {
    return with_light_frame(text).find_first_not_of(" │") == std::string::npos;
}

// The letter of a pair of colours, a capital when the text is bold; a blank for white on blue, and for bold
// yellow in a heavy border, where white on blue has a dot. Of a blank only the background can be seen.
// Underlines, of hot keys and entries, are left out.
char letter_of(Look look, wchar_t c, bool in_border) {
    static constexpr std::string_view PLAIN =
                                          "nw yk"
                                          "re",
                                      BOLD = "NWBYKRE";
    if (look.reverse) return look.bold ? 'I' : 'i';
    const auto pair = static_cast<std::size_t>(look.pair);
    if (pair >= PLAIN.size()) return '?';
    if (c == L' ') return look.pair == CP_YELLOW_BLUE || look.pair == CP_RED_BLUE ? ' ' : PLAIN[pair];
    const char letter = look.bold ? BOLD[pair] : PLAIN[pair];
    if (!in_border) return letter;
    return letter == 'Y' ? ' ' : letter == ' ' ? '.' : letter;
}

// Runs of the same letter as " : r6-15 Y20", columns from 0; a run goes on across blanks.
std::string spans_of(const std::string& looks) {
    std::string spans;
    for (std::size_t from = looks.find_first_not_of(' '); from != std::string::npos;) {
        const std::size_t next = looks.find_first_not_of(std::string(" ") + looks[from], from);
        const std::size_t last = looks.find_last_of(looks[from], next == std::string::npos ? next : next - 1);
        spans += (spans.empty() ? " : " : " ") + std::string(1, looks[from]) + std::to_string(from);
        if (last > from) spans += '-' + std::to_string(last);
        from = next;
    }
    return spans;
}

bool is_expected(std::string_view line) {
    return !line.empty() &&
           (line.front() == ' ' || std::isdigit(static_cast<unsigned char>(line.front())) != 0 ||
            line.starts_with("sent ") || line.starts_with("same "));
}

}  // namespace

ScreenPlay::ScreenPlay() {
    EXPECT_TRUE(DEBUG_preinit() && DEBUG_init());
}

ScreenPlay::~ScreenPlay() {
    DEBUG_cleanup();
    DEBUG_release_stderr();
}

std::string ScreenPlay::play(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (is_expected(line)) continue;
        std::string written = line;
        for (std::string more; line.ends_with('\\') && std::getline(lines, more);) {
            written += '\n' + more;
            line.pop_back();
            line += more;
        }
        out_ += written + '\n';
        SCOPED_TRACE(line);
        if (line.empty() || line.front() == '#') continue;
        step(line);
        note_sent();
        if (watching_) tell_screen();
    }
    return out_;
}

void ScreenPlay::step(const std::string& line) {
    if (line.front() == '{') return receive_line(line);
    const std::size_t blank = line.find(' ');
    const std::string word = line.substr(0, blank);
    const std::string rest = blank == std::string::npos ? "" : line.substr(blank + 1);
    if (word == "keys") return press_keys(rest);
    if (word == "screen") tell_screen();
    if (word == "known" || word == "picture") look_at_screen();
    if (word == "picture" || (word == "screen" && !rest.empty())) draw(rest);
    if (word == "screen" || word == "known" || word == "picture") return;
    if (word == "watch" || word == "quiet") return void(watching_ = word == "watch");
    if (word == "terminal") return set_terminal(rest);
    if (word == "clock") return set_time(std::atof(rest.c_str()));
    if (word == "ticks") return void(g_tick += static_cast<DWORD>(std::atoi(rest.c_str())));
    if (word == "password") return UTIL_strcpynt(g_passwd, rest.c_str());
    if (word == "focus") return void(focus(rest.c_str()));
    ADD_FAILURE() << "a screen file knows no \"" << word << "\"";
}

void ScreenPlay::receive_line(const std::string& line) {
    JSONLINE_message message;
    std::string error;
    if (!JSONLINE_read(line, &message, &error)) {
        ADD_FAILURE() << error;
        return;
    }
    const bool announced = message.msg->msg == MSG_SERVER_INSTRUMENTINFO;
    const bool first = source_.empty();
    if (announced) source_ = message.src;
    const std::string source = message.src.empty() ? source_ : message.src;
    receive(source.c_str(), message.msg->msg, message.dsd, message.payload.data());
    if (!announced) return;
    const auto* info = reinterpret_cast<const NET_SERVER_InstrumentInfo*>(message.payload.data());
    WINS_window* win = window((info->type + (':' + source)).c_str());
    if (win == nullptr) return;
    WINS_focus_window(win);
    if (first) fit(win);
}

// As the loop hands it on.
void ScreenPlay::press_key(int key) {
    DEBUG_rawkeypress(key);
    distribute_key(key);
}

void ScreenPlay::press_keys(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.front() == '<' ? text.find('>') : std::string_view::npos;
        if (end == std::string_view::npos) {
            press_key(static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
            continue;
        }
        const int key = key_named(std::string(text.substr(1, end - 1)));
        EXPECT_NE(key, 0) << text;
        press_key(key);
        text.remove_prefix(end + 1);
    }
}

void ScreenPlay::set_terminal(const std::string& size) {
    int lines = 0, cols = 0;
    ASSERT_EQ(std::sscanf(size.c_str(), "%dx%d", &cols, &lines), 2) << "COLSxLINES";
    sized_ = true;
    screens_.clear();
    resize(lines, cols);
}

// The first instrument's window stands in the corner of a terminal that is just large enough for it, if the
// file says no other size.
void ScreenPlay::fit(WINS_window* win) {
    if (!sized_) {
        const int cols = std::max(getmaxx(win->win) + 2 * LEFT, STATUS_COLS);
        set_terminal(std::to_string(cols) + "x" + std::to_string(getmaxy(win->win) + TOP + BOTTOM + 1));
    }
    WINS_absolute_move(win, LEFT, TOP);
}

ScreenPlay::Row ScreenPlay::row_of_screen(int y) {
    Row row;
    bool in_border = false;  // between the corners of the frame of what has the focus
    for (int x = 0; x < COLS; ++x) {
        const Look look = look_at(y, x);
        const wchar_t c = TestScreen::character(newscr, y, x);
        const wchar_t told = look.bold && look.pair == CP_YELLOW_BLUE ? heavy(c) : c;
        if (told == L'┏' || told == L'┗') in_border = true;
        if (told == L'┓' || told == L'┛') in_border = false;
        append_utf8(&row.text, static_cast<std::uint32_t>(told));
        row.looks += told != c ? ' ' : letter_of(look, c, in_border);
    }
    cut_blanks(&row.text);
    cut_blanks(&row.looks);
    return row;
}

// The rows that are not as on the screen before, rows of blanks together; that a frame became heavy or
// light is told at its top alone. The status bar is never told.
std::string ScreenPlay::changed_rows(const Screen& before, const Screen& now) {
    const auto changed = [&](std::size_t y) {
        const Row was = y < before.size() ? before[y] : Row{};
        return with_light_frame(now[y].text) != with_light_frame(was.text) || now[y].looks != was.looks;
    };
    std::string changes;
    for (std::size_t y = 0; y < now.size(); ++y) {
        if (!changed(y)) continue;
        std::string line = (y < 10 ? " " : "") + std::to_string(y);
        const std::size_t first = y;
        while (is_blank(now[y].text) && y + 1 < now.size() && now[y + 1] == now[y] && changed(y + 1))
            ++y;
        if (y > first) line += '-' + std::to_string(y);
        line += ' ' + now[y].text;
        cut_blanks(&line);
        changes += line + spans_of(now[y].looks) + '\n';
    }
    return changes;
}

void ScreenPlay::look_at_screen() {
    ::redraw();
    screens_.emplace_back();
    for (int y = 0; y < LINES - 1; ++y)
        screens_.back().push_back(row_of_screen(y));
}

// In one line when the screen is as it has been before.
void ScreenPlay::tell_screen() {
    look_at_screen();
    const auto now = screens_.rbegin(), before = std::next(now);
    const std::string changes =
        before == screens_.rend() ? changed_rows({}, *now) : changed_rows(*before, *now);
    const auto again = std::find(before, screens_.rend(), *now);
    if (changes.empty() || again == screens_.rend())
        out_ += changes;
    else
        out_ += "same as " + std::to_string(again - now) + " screens ago\n";
}

void ScreenPlay::draw(const std::string& picture) {
    pictures_[picture] = draw_picture(
        {LINES, COLS}, [](int y, int x) { return SNAPSHOT_cell(newscr, y, x); }, "vesk.cursclient");
}

void ScreenPlay::note_sent() {
    for (const std::string& sent : take_sent())
        out_ += "sent " + sent + '\n';
}
