// The cost of one pass of the console with a window of every kind in view at 200x60 and values that change,
// beside a bare curses loop that draws the same boxes and texts: a record of what the windows showed, drawn
// again with box and waddnstr. Both draw for terminals of the same kind, which throw their output away, and
// the bare loop's screen is compared with the console's before anything is timed.
#include <curses.h>
#include <panel.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "console_rig.h"
#include "cursclient/cursclient.h"
#include "cursclient/wins.h"
#include "table.h"

namespace {

constexpr int PASSES_PER_SECOND = 5;
constexpr std::size_t FRAMES = 32;  // seconds of the station that go round

struct text_run {
    int y, x;
    attr_t attr;
    short pair;
    std::string text;
};

struct bare_window {
    WINDOW* win;
    bool has_box;
    attr_t box_attr;
    short box_pair;
    std::vector<text_run> runs[FRAMES];
};

struct second {
    FTIME now;
    std::vector<STATION_message> messages;
};

// A row's cells as curses hands them out.
std::vector<chtype> cells(WINDOW* win, int y) {
    std::vector<chtype> row(static_cast<std::size_t>(getmaxx(win)) + 1);
    const int old_y = getcury(win);
    const int old_x = getcurx(win);
    mvwinchnstr(win, y, 0, row.data(), getmaxx(win));
    wmove(win, old_y, old_x);
    row.pop_back();
    return row;
}

bool is_blank(chtype c) {
    return (c & A_CHARTEXT) == ' ';
}

attr_t attributes_of(chtype c) {
    return c & (A_ATTRIBUTES & ~A_COLOR);
}

short pair_of(chtype c) {
    return static_cast<short>(PAIR_NUMBER(c));
}

// The texts of a row: what differs from the plain box, cut where two blanks or another attribute follow.
void record_row(const std::vector<chtype>& row, const std::vector<chtype>& plain, int y,
                std::vector<text_run>* runs) {
    const auto is_text = [&](std::size_t x) {
        return x < row.size() && !is_blank(row[x]) && (row[x] & A_CHARTEXT) != 0 &&
               ((row[x] ^ plain[x]) & (A_CHARTEXT | A_ALTCHARSET)) != 0;
    };
    for (std::size_t x = 0; x < row.size(); ++x) {
        if (!is_text(x)) continue;
        text_run run{y, static_cast<int>(x), attributes_of(row[x]), pair_of(row[x]), ""};
        const auto belongs = [&](std::size_t at) {
            return is_text(at) && attributes_of(row[at]) == run.attr && pair_of(row[at]) == run.pair;
        };
        // A single blank belongs to a text, but not to line drawing.
        const auto goes_on = [&](std::size_t at) {
            return belongs(at) || ((run.attr & A_ALTCHARSET) == 0 && at < row.size() && is_blank(row[at]) &&
                                   belongs(at + 1));
        };
        while (goes_on(x))
            run.text += static_cast<char>(row[x++] & A_CHARTEXT);
        --x;
        runs->push_back(std::move(run));
    }
}

void draw_box(const bare_window& w) {
    werase(w.win);
    if (!w.has_box) return;
    wattr_set(w.win, w.box_attr, w.box_pair, nullptr);
    box(w.win, 0, 0);
}

void draw_bare(const std::vector<bare_window>& windows, std::size_t frame) {
    for (const bare_window& w : windows) {
        draw_box(w);
        for (const text_run& run : w.runs[frame]) {
            wattr_set(w.win, run.attr, run.pair, nullptr);
            wmove(w.win, run.y, run.x);
            waddnstr(w.win, run.text.data(), static_cast<int>(run.text.size()));
        }
        wnoutrefresh(w.win);
    }
    doupdate();
}

class scene {
  public:
    scene() {
        for (std::size_t f = 0; f < FRAMES; ++f) {
            seconds_.push_back({0, rig_.station.next_second()});
            seconds_.back().now = rig_.station.now();
            prepare(f);
            redraw();
            screens_.push_back(TestScreen::dump(curscr));
            if (f == 0) make_bare_windows();
            record(f);
            rig_.use_screen();
        }
        compare();
    }
    ~scene() { rig_.use_screen(); }
    scene(const scene&) = delete;
    scene& operator=(const scene&) = delete;

    void prepare(std::size_t frame) {
        rig_.use_screen();
        CONSOLE_rig::deliver(seconds_[frame].messages, seconds_[frame].now);
        ++g_tick;
    }
    // The next pass of the same second: time goes on, nothing new has come.
    void prepare_same(std::size_t frame, int pass) {
        rig_.use_screen();
        CONSOLE_rig::deliver({}, seconds_[frame].now + 0.2 * pass);
        ++g_tick;
    }
    void prepare_bare() { bare_screen_->use(); }
    void draw_bare(std::size_t frame) { ::draw_bare(bare_, frame); }
    [[nodiscard]] std::size_t windows() const { return bare_.size() - 1; }

  private:
    // In the order in which they are stacked, the screen behind them first.
    void make_bare_windows() {
        WINDOW* const behind = stdscr;
        originals_.push_back(behind);
        for (PANEL* p = panel_above(nullptr); p != nullptr; p = panel_above(p))
            if (panel_window(p) != behind) originals_.push_back(panel_window(p));
        bare_screen_ = std::make_unique<TestScreen>(CONSOLE_rig::LINES_USED, CONSOLE_rig::COLUMNS_USED);
        for (WINDOW* from : originals_) {
            WINDOW* win = newwin(getmaxy(from), getmaxx(from), getbegy(from), getbegx(from));
            wbkgd(win, getbkgd(from));
            const chtype corner = cells(from, 0).front();
            bare_.push_back(
                {win, from != behind, attributes_of(corner) & ~A_ALTCHARSET, pair_of(corner), {}});
        }
    }
    void record(std::size_t frame) {
        for (std::size_t i = 0; i < bare_.size(); ++i) {
            draw_box(bare_[i]);
            for (int y = 0; y < getmaxy(bare_[i].win); ++y)
                record_row(cells(originals_[i], y), cells(bare_[i].win, y), y, &bare_[i].runs[frame]);
        }
    }
    void compare() {
        prepare_bare();
        for (std::size_t f = 0; f < FRAMES; ++f) {
            draw_bare(f);
            const std::string drawn = TestScreen::dump(curscr);
            if (drawn == screens_[f]) continue;
            std::fprintf(stderr, "the bare loop does not draw what the console drew:\n%s\n%s\n",
                         drawn.c_str(), screens_[f].c_str());
            std::abort();
        }
    }

    std::unique_ptr<TestScreen> bare_screen_;  // outlives the console's
    CONSOLE_rig rig_;
    std::vector<second> seconds_;
    std::vector<WINDOW*> originals_;
    std::vector<bare_window> bare_;
    std::vector<std::string> screens_;
};

// Of this thread's own time, so that the other programs of a busy machine do not count.
double thread_microseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) * 1e-3;
}

class stopwatch {
  public:
    template <class DRAW>
    void time(DRAW draw) {
        const double began = thread_microseconds();
        draw();
        times_.push_back(thread_microseconds() - began);
    }
    [[nodiscard]] double median() {
        std::sort(times_.begin(), times_.end());
        return times_[times_.size() / 2];
    }

  private:
    std::vector<double> times_;
};

// An ordinary day: the windows of four instruments in view, the others hidden.
void hide_all_but_four() {
    int left = 4;
    for (WINS_window& win : LL_each<WINS_window>(g_window_list))
        if (win.visible && left-- <= 0) WINS_hide_window(&win);
}

}  // namespace

int main(int argc, char** argv) {
    const int passes = argc > 1 ? std::atoi(argv[1]) : 1500;
    scene s;
    stopwatch console;
    stopwatch same;
    stopwatch bare;
    // In turns, so that both meet the same machine, and each draws another second than the one on the screen.
    for (std::size_t i = 0; i < static_cast<std::size_t>(passes) * 2;) {
        const std::size_t frame = i++ % FRAMES;
        s.prepare(frame);
        console.time(redraw);
        for (int pass = 1; pass < PASSES_PER_SECOND; ++pass) {
            s.prepare_same(frame, pass);
            same.time(redraw);
        }
        s.prepare_bare();
        bare.time([&] { s.draw_bare(i++ % FRAMES); });
    }
    hide_all_but_four();
    stopwatch four;
    for (int i = 0; i < passes; ++i) {
        s.prepare(static_cast<std::size_t>(i) % FRAMES);
        four.time(redraw);
    }
    const double pass = console.median();
    TABLE_row("a pass, " + std::to_string(s.windows()) + " windows in view", TABLE_number(pass) + " us",
              "bare curses " + TABLE_number(bare.median()) + " us", TABLE_number(pass / bare.median(), 2),
              "at most 1.5");
    const double second = pass + (PASSES_PER_SECOND - 1) * same.median();
    TABLE_row("a pass in which nothing new has come", TABLE_number(same.median()) + " us",
              "one with news " + TABLE_number(pass) + " us", TABLE_number(same.median() / pass, 2));
    TABLE_row("one with news and four without, each second", TABLE_number(second / 1e4, 2) + " % of a core");
    TABLE_row("a pass, 4 windows in view", TABLE_number(four.median()) + " us");
    return 0;
}
