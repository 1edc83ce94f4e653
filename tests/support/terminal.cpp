// The pseudo-terminal and the emulator behind it.
#include "support/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>
#include <vterm.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

std::size_t columns(std::string_view utf8) {
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    return utf8.size() - static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), continues));
}

// libvterm 0.1 writes the second half of a wide character, such as the line echoes when one is typed at a
// shell, to nowhere where a row has a single column.
int emulated_columns(TerminalSize size) {
    return std::max(size.cols, 2);
}

winsize window_size(TerminalSize size) {
    winsize w{};
    w.ws_row = static_cast<unsigned short>(size.rows);
    w.ws_col = static_cast<unsigned short>(size.cols);
    return w;
}

std::uint32_t packed(const VTermColor& c) {
    return static_cast<std::uint32_t>(c.rgb.red) << 16 | static_cast<std::uint32_t>(c.rgb.green) << 8 |
           c.rgb.blue;
}

VTermColor unpacked(std::uint32_t c) {
    VTermColor color;
    vterm_color_rgb(&color, static_cast<std::uint8_t>(c >> 16), static_cast<std::uint8_t>(c >> 8),
                    static_cast<std::uint8_t>(c));
    return color;
}

// The sixteen basic colours.
constexpr std::array<std::uint32_t, 16> PALETTE{TERMINAL_BLACK, TERMINAL_RED, 0x4e9a06, TERMINAL_YELLOW,
                                                TERMINAL_BLUE,  0x75507b,     0x06989a, TERMINAL_WHITE,
                                                0x555753,       0xef2929,     0x8ae234, 0xfce94f,
                                                0x729fcf,       0xad7fa8,     0x34e2e2, 0xeeeeec};

void use_palette(VTermState* state) {
    for (std::size_t i = 0; i < PALETTE.size(); ++i) {
        const VTermColor color = unpacked(PALETTE.at(i));
        vterm_state_set_palette_color(state, static_cast<int>(i), &color);
    }
    const VTermColor fg = unpacked(TERMINAL_WHITE);
    const VTermColor bg = unpacked(TERMINAL_BLACK);
    vterm_state_set_default_colors(state, &fg, &bg);
    vterm_state_set_bold_highbright(state, 0);
}

}  // namespace

struct Terminal::Impl {
    pid_t pid = -1;
    int master = -1;
    int line = -1;    // the terminal's other side, held so that its settings outlive the program
    termios found{};  // its settings before the program ran
    TerminalSize size;
    VTerm* vt = nullptr;
    VTermScreen* screen = nullptr;
    bool alternate = false;
    std::string output;
    std::optional<int> exit;

    void start(const Command& command);
    void pump(int milliseconds);
    void take(std::string_view bytes);
    void take_the_rest();
    bool has_scroll_region() const;
    void forget_scroll_region();
    bool idle();
    void write(std::string_view bytes) const;
    std::string row(int y) const;
    static int on_property(VTermProp prop, VTermValue* value, void* self);
    static void on_output(const char* bytes, std::size_t n, void* self);
};

void Terminal::Impl::start(const Command& command) {
    const winsize w = window_size(size);
    if (openpty(&master, &line, nullptr, nullptr, &w) != 0) throw std::runtime_error("openpty failed");
    fcntl(master, F_SETFD, FD_CLOEXEC);
    fcntl(line, F_SETFD, FD_CLOEXEC);
    tcgetattr(line, &found);
    pid = fork();
    if (pid < 0) throw std::runtime_error("fork failed");
    if (pid == 0) {
        login_tty(line);
        exec_command(command);
    }
    fcntl(master, F_SETFL, O_NONBLOCK);
}

// Takes what the program has written, waiting for it at most that long.
void Terminal::Impl::pump(int milliseconds) {
    pollfd fd{master, POLLIN, 0};
    if (poll(&fd, 1, milliseconds) <= 0) return;
    std::array<char, 65536> bytes{};
    const ssize_t n = read(master, bytes.data(), bytes.size());
    if (n > 0) take({bytes.data(), static_cast<std::size_t>(n)});
}

void Terminal::Impl::take(std::string_view bytes) {
    output += bytes;
    vterm_input_write(vt, bytes.data(), bytes.size());
}

// By what the program asked for last.
bool Terminal::Impl::has_scroll_region() const {
    std::string_view before = output;
    for (std::size_t at = 0; (at = before.rfind("\033[")) != std::string_view::npos;
         before = before.substr(0, at)) {
        const std::string_view request = std::string_view(output).substr(at + 2);
        const std::size_t end = request.find_first_not_of("0123456789;");
        if (end != std::string_view::npos && request[end] == 'r')
            return end > 0 && !request.starts_with("1;");
    }
    return false;
}

// As terminals do when their size changes; libvterm 0.1 would go on with a region that ends above its start.
void Terminal::Impl::forget_scroll_region() {
    VTermPos cursor{};
    vterm_state_get_cursorpos(vterm_obtain_state(vt), &cursor);
    const std::string request =
        "\033[r\033[" + std::to_string(cursor.row + 1) + ";" + std::to_string(cursor.col + 1) + "H";
    vterm_input_write(vt, request.data(), request.size());
}

// The program waits for something to happen, has no key left to read, and all it wrote was taken.
bool Terminal::Impl::idle() {
    pump(0);
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    const std::string text{std::istreambuf_iterator<char>(stat), {}};
    const std::size_t state = text.rfind(") ");  // behind the program's name, which may hold anything
    int keys = 0;
    if (state == std::string::npos || text[state + 2] != 'S' || ioctl(line, FIONREAD, &keys) != 0)
        return false;
    pollfd fd{master, POLLIN, 0};
    return keys == 0 && poll(&fd, 1, 0) == 0;
}

// After the program's end: takes what is still on its way. What the test itself writes to the line comes out
// behind all of it.
void Terminal::Impl::take_the_rest() {
    static constexpr std::string_view MARK = "<the test has seen it end>";
    if (line < 0 || ::write(line, MARK.data(), MARK.size()) != static_cast<ssize_t>(MARK.size())) return;
    std::string rest;
    std::array<char, 4096> bytes{};
    for (const Deadline deadline(PATIENCE); !rest.ends_with(MARK) && !deadline.passed();) {
        pollfd fd{master, POLLIN, 0};
        const ssize_t n = poll(&fd, 1, deadline.left()) > 0 ? read(master, bytes.data(), bytes.size()) : 0;
        if (n > 0) rest.append(bytes.data(), static_cast<std::size_t>(n));
    }
    if (rest.ends_with(MARK)) rest.resize(rest.size() - MARK.size());
    take(rest);
}

void Terminal::Impl::write(std::string_view bytes) const {
    if (master < 0) return;
    if (::write(master, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        throw std::runtime_error("the program does not read its keys");
}

std::string Terminal::Impl::row(int y) const {
    std::string result;
    for (int x = 0; x < size.cols; ++x) {
        VTermScreenCell cell;
        if (vterm_screen_get_cell(screen, {y, x}, &cell) == 0) break;
        append_utf8(&result, cell.chars[0] == 0 || cell.chars[0] > 0x10FFFF ? ' ' : cell.chars[0]);
    }
    return result;
}

int Terminal::Impl::on_property(VTermProp prop, VTermValue* value, void* self) {
    auto* impl = static_cast<Impl*>(self);
    if (prop == VTERM_PROP_ALTSCREEN) impl->alternate = value->boolean != 0;
    return 1;
}

// Keys, and the emulator's answers to what the program asks the terminal.
void Terminal::Impl::on_output(const char* bytes, std::size_t n, void* self) {
    static_cast<Impl*>(self)->write({bytes, n});
}

Terminal::Terminal(Command command, TerminalSize size) : impl_(std::make_unique<Impl>()) {
    static constexpr VTermScreenCallbacks CALLBACKS{.damage = nullptr,
                                                    .moverect = nullptr,
                                                    .movecursor = nullptr,
                                                    .settermprop = Impl::on_property,
                                                    .bell = nullptr,
                                                    .resize = nullptr,
                                                    .sb_pushline = nullptr,
                                                    .sb_popline = nullptr};
    impl_->size = size;
    impl_->vt = vterm_new(size.rows, emulated_columns(size));
    vterm_set_utf8(impl_->vt, 1);
    vterm_output_set_callback(impl_->vt, Impl::on_output, impl_.get());
    use_palette(vterm_obtain_state(impl_->vt));
    impl_->screen = vterm_obtain_screen(impl_->vt);
    vterm_screen_set_callbacks(impl_->screen, &CALLBACKS, impl_.get());
    vterm_screen_enable_altscreen(impl_->screen, 1);
    vterm_screen_reset(impl_->screen, 1);
    command.env.try_emplace("TERM", "xterm-256color");
    impl_->start(command);
}

Terminal::~Terminal() {
    if (!impl_->exit) {
        kill(impl_->pid, SIGKILL);
        waitpid(impl_->pid, nullptr, 0);
    }
    hang_up();
    vterm_free(impl_->vt);
}

pid_t Terminal::pid() const {
    return impl_->pid;
}

void Terminal::signal(int number) const {
    if (!impl_->exit) kill(impl_->pid, number);
}

void Terminal::type(std::string_view characters) {
    impl_->write(characters);
}

void Terminal::press(Key key) {
    static const std::map<Key, VTermKey> CODES{
        {Key::up, VTERM_KEY_UP},
        {Key::down, VTERM_KEY_DOWN},
        {Key::left, VTERM_KEY_LEFT},
        {Key::right, VTERM_KEY_RIGHT},
        {Key::enter, VTERM_KEY_ENTER},
        {Key::tab, VTERM_KEY_TAB},
        {Key::backspace, VTERM_KEY_BACKSPACE},
        {Key::remove, VTERM_KEY_DEL},
        {Key::home, VTERM_KEY_HOME},
        {Key::end, VTERM_KEY_END},
        {Key::escape, VTERM_KEY_ESCAPE},
        {Key::f5, static_cast<VTermKey>(VTERM_KEY_FUNCTION(5))},
    };
    if (key == Key::back_tab) return type("\033[Z");
    vterm_keyboard_key(impl_->vt, CODES.at(key), VTERM_MOD_NONE);
}

void Terminal::alt(char character) {
    type(std::string("\033") + character);
}

void Terminal::resize(TerminalSize size) {
    impl_->size = size;
    if (impl_->has_scroll_region()) impl_->forget_scroll_region();
    vterm_set_size(impl_->vt, size.rows, emulated_columns(size));
    const winsize w = window_size(size);
    ioctl(impl_->master, TIOCSWINSZ, &w);
}

void Terminal::hold(bool on) const {
    tcflow(impl_->line, on ? TCOOFF : TCOON);
}

void Terminal::scribble(std::string_view bytes) const {
    if (::write(impl_->line, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        throw std::runtime_error("the terminal takes nothing");
}

void Terminal::hang_up() {
    for (int* fd : {&impl_->line, &impl_->master}) {
        if (*fd >= 0) close(*fd);
        *fd = -1;
    }
}

testing::AssertionResult Terminal::settles() {
    for (const Deadline deadline(PATIENCE); !deadline.passed(); impl_->pump(1))
        if (impl_->idle()) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "does not come to rest; the screen:\n" << text();
}

testing::AssertionResult Terminal::wait_for(const std::function<bool()>& condition, std::string_view what,
                                            std::chrono::milliseconds wait) {
    const Deadline deadline(wait);
    while (!condition()) {
        if (!deadline.passed()) {
            impl_->pump(deadline.left());
            continue;
        }
        return testing::AssertionFailure() << "waited " << wait.count() << " ms for "
                                           << (what.empty() ? "a condition" : what) << "; the screen:\n"
                                           << text();
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult Terminal::shows(std::string_view text) {
    return wait_for([&] { return find(text).has_value(); }, "\"" + std::string(text) + "\"");
}

testing::AssertionResult Terminal::hides(std::string_view text) {
    return wait_for([&] { return !find(text).has_value(); }, "no \"" + std::string(text) + "\"");
}

testing::AssertionResult Terminal::never_shows(std::string_view text) {
    if (!wait_for([&] { return find(text).has_value(); }, "", WATCH)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "\"" << text << "\" came up; the screen:\n" << this->text();
}

std::optional<int> Terminal::wait_exit(std::chrono::milliseconds wait) {
    if (impl_->exit) return impl_->exit;
    impl_->exit = reap(impl_->pid, Deadline(wait), [&] { impl_->pump(5); });
    if (impl_->exit) impl_->take_the_rest();
    return impl_->exit;
}

testing::AssertionResult Terminal::exits_with(int code) {
    const std::optional<int> exit = wait_exit();
    if (exit == code) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << (exit ? "exited with " + std::to_string(*exit) : std::string("did not exit")) << " instead of "
           << code << "; the screen:\n"
           << text();
}

TerminalSize Terminal::size() const {
    return impl_->size;
}

std::string Terminal::row(int row) const {
    return impl_->row(row);
}

std::string Terminal::text() const {
    std::string result;
    for (int y = 0; y < impl_->size.rows; ++y) {
        const std::string line = row(y);
        result += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return result;
}

TerminalCell Terminal::cell(int row, int col) const {
    VTermScreenCell cell{};
    vterm_screen_get_cell(impl_->screen, {row, col}, &cell);
    vterm_screen_convert_color_to_rgb(impl_->screen, &cell.fg);
    vterm_screen_convert_color_to_rgb(impl_->screen, &cell.bg);
    TerminalCell result;
    append_utf8(&result.text, cell.chars[0] == 0 ? ' ' : cell.chars[0]);
    result.bold = cell.attrs.bold != 0;
    result.reverse = cell.attrs.reverse != 0;
    result.fg = packed(result.reverse ? cell.bg : cell.fg);
    result.bg = packed(result.reverse ? cell.fg : cell.bg);
    return result;
}

std::optional<Terminal::Place> Terminal::find(std::string_view text) const {
    for (int y = 0; y < impl_->size.rows; ++y) {
        const std::string line = row(y);
        const std::size_t at = line.find(text);
        if (at != std::string::npos)
            return Place{y, static_cast<int>(columns(std::string_view(line).substr(0, at)))};
    }
    return std::nullopt;
}

const std::string& Terminal::output() const {
    return impl_->output;
}

bool Terminal::alternate_screen() const {
    return impl_->alternate;
}

// By what the program asked for last: the emulator would bring the cursor's visibility back together with a
// saved place, which no terminal does.
bool Terminal::cursor_visible() const {
    static constexpr std::string_view REQUEST = "\033[?25";
    const std::size_t last = impl_->output.rfind(REQUEST);
    return last == std::string::npos || impl_->output.substr(last + REQUEST.size(), 1) == "h";
}

bool Terminal::settings_changed() const {
    const termios& a = impl_->found;
    termios b{};
    tcgetattr(impl_->line, &b);
    return a.c_iflag != b.c_iflag || a.c_oflag != b.c_oflag || a.c_cflag != b.c_cflag ||
           a.c_lflag != b.c_lflag || std::memcmp(a.c_cc, b.c_cc, sizeof a.c_cc) != 0;
}

std::string Terminal::svg(std::string_view title) const {
    return draw_picture(
        size(), [this](int row, int col) { return cell(row, col); }, title);
}
