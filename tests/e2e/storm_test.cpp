// Storms over a console with every kind of window open: keys and sizes at random, instruments that come and
// go, texts that would take the terminal over. Whatever happens, the console stays, or leaves as it should.
#include <csignal>
#include <iterator>
#include <random>
#include <regex>
#include <set>

#include "everykind.h"
#include "libvesk/link/veskmsg.h"
#include "libvesk/messages/records/server.h"
#include "libvesk/support/util.h"
#include "support/wire.h"

namespace {

using Storm = EveryKind;
using Random = std::mt19937;

template <class T, std::size_t N>
const T& one_of(const T (&table)[N], Random& random) {
    return table[random() % N];
}

// ---- sizes

TerminalSize any_size(Random& random) {
    static constexpr TerminalSize SIZES[] = {{1, 1},  {1, 500}, {200, 1},  {2, 2},    {200, 500},
                                             {8, 20}, {24, 80}, {50, 132}, {100, 40}, {3, 300}};
    if (random() % 2 == 0) return one_of(SIZES, random);
    return {1 + static_cast<int>(random() % 200), 1 + static_cast<int>(random() % 500)};
}

// Any output will do; without any, a moment.
void let_it_draw(Terminal& console) {
    const std::size_t before = console.output().size();
    (void)console.wait_for([&] { return console.output().size() > before; }, "",
                           std::chrono::milliseconds(300));
}

TEST_F(Storm, OfSizesLeavesAWholeScreen) {
    simulate();
    auto console = open();
    Random random(stress_seed());
    for (int i = 0; i < 150; ++i) {
        console->resize(any_size(random));
        if (random() % 3 == 0) let_it_draw(*console);
        if (random() % 8 == 0) console->type(one_of({"\r", "\t", "m", "\033", "\027"}, random));
    }
    console->type("\027\027\027");
    console->resize({50, 160});
    ASSERT_TRUE(is_up(*console));
    ASSERT_TRUE(choose_from_menu(*console, "Client options"));
    EXPECT_TRUE(console->shows("Set Password"));
    EXPECT_TRUE(all_run());
    console->signal(SIGTERM);
    EXPECT_TRUE(left_restored(*console));
}

// ---- keys

// The keys of a keyboard, without those that stop or end a program from outside.
std::string any_key(Random& random) {
    static constexpr const char* SEQUENCES[] = {
        "\r",      "\t",      "\033",     "\033[A",     "\033[B",      "\033[C",
        "\033[D",  "\033OA",  "\033OB",   "\033[Z",     "\177",        "\033[3~",
        "\033[5~", "\033[6~", "\033[1~",  "\033[4~",    "\033[15~",    "\027",
        "\005",    "\004",    "\025",     "\033[1;5C",  "\303\251",    "\342\224\200",
        "\033[[A", "\033[99", "\033\033", "\033[<0;1M", "\360\237\230"};
    static constexpr std::string_view SIGNALS("\003\021\023\032\034\000", 6);
    switch (random() % 8) {
        case 0:
        case 1:
        case 2:
            return one_of(SEQUENCES, random);
        case 3:
            return std::string("\033") + static_cast<char>(' ' + random() % 95);
        case 4: {
            const char any = static_cast<char>(random());
            return SIGNALS.find(any) == SIGNALS.npos ? std::string(1, any) : "m";
        }
        default:
            return std::string(1, static_cast<char>(' ' + random() % 95));
    }
}

TEST_F(Storm, OfKeysBreaksNothing) {
    simulate();
    const std::string layout = read_file(station().settings_file());
    RecordProperty("seed", static_cast<int>(stress_seed()));
    Random random(stress_seed());
    int consoles = 1;
    auto console = open();
    for (const Deadline end(stress_time(std::chrono::seconds(8))); !end.passed();) {
        // "Quit" is among the keys: a console that was left takes its turn anew.
        if (console->wait_exit(std::chrono::milliseconds(0))) {
            ASSERT_TRUE(left_restored(*console));
            write_file(station().settings_file(), layout);
            console = open();
            ++consoles;
        }
        for (std::size_t n = 1 + random() % 12; n > 0; --n)
            console->type(any_key(random));
        if (random() % 40 == 0) console->resize(any_size(random));
        let_it_draw(*console);
    }
    RecordProperty("consoles", consoles);
    console->signal(SIGTERM);
    EXPECT_TRUE(left_restored(*console));
    EXPECT_TRUE(all_run());
}

TEST_F(Storm, QuitWithEveryWindowOpen) {
    simulate();
    int consoles = 0;
    for (const Deadline end(stress_time(std::chrono::seconds(2))); !end.passed(); ++consoles) {
        auto console = open();
        console->press(Key::enter);
        ASSERT_TRUE(console->shows("Quit"));
        console->press(Key::end);  // where it stands
        console->press(Key::enter);
        ASSERT_TRUE(left_restored(*console));
    }
    RecordProperty("consoles", consoles);
    EXPECT_TRUE(all_run());
}

// ---- instruments of the test's own

// An instrument with a link of the test's making, which may say what no program of ours would.
class RawInstrument {
  public:
    RawInstrument(Station& station, const std::string& name) : end_(station.socket()), name_(name) {
        end_.send(wire::hello(FRAME_PEER_INSTRUMENT, name));
    }
    void announce(const std::string& type, const char* display_name, char id_ch) {
        auto info = NETDSD_default<NET_SERVER_InstrumentInfo>();
        UTIL_strcpynt(info.type, type.c_str());
        UTIL_strcpynt(info.display_name, display_name);
        info.id_ch = id_ch;
        say(MSG_SERVER_INSTRUMENTINFO, NETDSD_of<NET_SERVER_InstrumentInfo>(), &info);
    }
    void say(NETMSG_type type, const NETDSD_entry* dsd, const void* record, const std::string& dest = "") {
        FRAME_bytes out;
        const FRAME_span payload(static_cast<const std::byte*>(record), dsd->total_size);
        const DWORD flags = dest.empty() ? FRAME_TO_ALL : 0;
        FRAME_encode_message(&out, {type, flags, "", dest, dsd->name, payload});
        end_.send(out);
        look();
    }
    // Everything has left for the server, who still listens.
    [[nodiscard]] bool all_said() {
        return wire::until([this] { look(); }, [this] { return end_.unsent() == 0 || end_.ended(); }) &&
               !end_.ended();
    }
    // Its messages to all have come back to it.
    [[nodiscard]] bool is_heard() {
        return wire::until([this] { look(); }, [this] { return heard_; });
    }

  private:
    void look() {
        end_.look();
        for (const wire::Seen& s : std::exchange(end_.frames(), {}))
            heard_ = heard_ || s.source == name_;
    }

    wire::End end_;
    std::string name_;
    bool heard_ = false;
};

TEST_F(Storm, OfInstrumentsThatComeAndGoLeavesNothingBehind) {
    auto console = open();
    Random random(stress_seed());
    std::vector<std::unique_ptr<RawInstrument>> present;
    for (int i = 0; i < 1000; ++i) {
        const Instrument& kind = instruments()[random() % instruments().size()];
        const std::string name = kind.name + "x" + std::to_string(i);
        present.push_back(std::make_unique<RawInstrument>(station(), name));
        present.back()->announce(kind.type, "Comes and goes", 'N');
        ASSERT_TRUE(present.back()->is_heard());
        if (present.size() > random() % 6)
            present.erase(present.begin() + static_cast<long>(random() % present.size()));
        if (i % 10 != 0) continue;
        console->type(
            one_of({"\r", "\033n", "m", "\t", "2", "4", "\033[B\r", "\r\033[B\033[B\033[B\033[B\r"}, random));
        let_it_draw(*console);
    }
    present.clear();
    console->type("\027\027\027");
    auto last = station().instrument("LAST", "cpc_3010", "The last one", 'Z');
    ASSERT_TRUE(is_up(*console, "Z")) << "indicators of others are left";
    EXPECT_TRUE(console->hides("Comes and goes"));
    ASSERT_TRUE(choose_from_menu(*console, "Z The last one"));
    EXPECT_TRUE(
        console->wait_for([&] { return corner(*console, "The last one").has_value(); }, "its window"));
    EXPECT_TRUE(all_run());
    console->signal(SIGTERM);
    EXPECT_TRUE(left_restored(*console));
}

// ---- texts

// Sequences that set a title, colours or the character set, ring, clear and reset; beyond ASCII, a control
// character in UTF-8 and bytes that are none.
constexpr const char* INJECTIONS[] = {
    "\033]0;vesk\a",    "\23331m\233",    "\016\b\r\n",   "\033c\033#8",
    "\302\233\377\376", "\033P1$q\033\\", "\342\202\254",
};
constexpr const char* NEVER_WRITTEN[] = {"\033]", "\a",     "\016",  "\233",        "\377",
                                         "\033c", "\033#8", "\033P", "\342\202\254"};

// A record with nothing but injections for texts; which of them, `turn` says.
std::vector<char> hostile_record(const NETDSD_entry* dsd, std::size_t turn) {
    std::vector<char> record(dsd->total_size);
    NETDSD_set_defaults(dsd, record.data());
    NETDSD_for_each_leaf(dsd, [&](const NETDSD_field& f, std::size_t at) {
        const auto type = NETDSD_element_type(f.ft);
        if (type != NETDSD_FT_STRING && type != NETDSD_FT_CHAR) return;
        const std::string_view text = INJECTIONS[turn++ % std::size(INJECTIONS)];
        for (std::size_t i = 0; i < f.size / NETDSD_values(f); ++i)
            record[at + i] = text[i % text.size()];
    });
    return record;
}

testing::AssertionResult is_plain(std::string_view bytes) {
    for (const char c : bytes)
        if (!UTIL_is_printable(static_cast<unsigned char>(c)) && c != '\n')
            return testing::AssertionFailure() << "byte " << static_cast<int>(static_cast<unsigned char>(c));
    return testing::AssertionSuccess();
}

// Of what is not ASCII only what frames, graphs and marks are drawn with.
testing::AssertionResult is_drawn_by_us(const Terminal& console) {
    for (int y = 0; y < console.size().rows; ++y)
        for (int x = 0; x < console.size().cols; ++x) {
            const std::string text = console.cell(y, x).text;
            if (text.size() == 1 || text.starts_with("\342\224") || text.starts_with("\342\226")) continue;
            return testing::AssertionFailure() << "\"" << text << "\" on the screen:\n" << console.text();
        }
    return testing::AssertionSuccess();
}

TEST_F(Storm, OfHostileTextsNeverReachesATerminalRaw) {
    auto monitor = station().peer({"--monitor"});
    auto console = open();
    std::vector<std::unique_ptr<RawInstrument>> all;
    for (std::size_t i = 0; i < instruments().size(); ++i) {
        all.push_back(std::make_unique<RawInstrument>(station(), instruments()[i].name));
        all.back()->announce(instruments()[i].type, INJECTIONS[i % std::size(INJECTIONS)],
                             "\033\233\a\016"[i % 4]);
    }
    ASSERT_TRUE(monitor->wait_line({"MSG_SERVER_INSTRUMENTINFO", instruments().back().name}));
    std::size_t records = 0;
    for (int type = 0; type < NETMSG_COUNT; ++type) {
        const NETMSG_entry* msg = NETMSG_by_type(type);
        if (msg->dsd == nullptr || msg->dsd->numbers_only || msg->msg == MSG_SERVER_INSTRUMENTINFO) continue;
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i]->say(msg->msg, msg->dsd, hostile_record(msg->dsd, i).data());
        ASSERT_TRUE(monitor->wait_line({msg->name})) << msg->name << "\n" << station().server().err();
        let_it_draw(*console);
        ++records;
    }
    EXPECT_GT(records, 40U);
    for (const auto& instrument : all)
        ASSERT_TRUE(instrument->all_said());
    // Each display's menu, the main menu with all names, the windows that show what was said.
    for (std::size_t i = 0; i < instruments().size() + 6; ++i) {
        console->type("\tm");
        let_it_draw(*console);
        EXPECT_TRUE(is_drawn_by_us(*console));
        console->type("\027");
        let_it_draw(*console);
    }
    console->press(Key::enter);
    ASSERT_TRUE(console->shows("Quit"));
    EXPECT_TRUE(is_drawn_by_us(*console));
    console->signal(SIGTERM);
    ASSERT_TRUE(left_restored(*console));
    static const std::regex OWN_TITLE("\x1b\\]2;vesk[^\a]{0,16}\a");
    const std::string written = std::regex_replace(console->output(), OWN_TITLE, "");
    for (const char* injected : NEVER_WRITTEN)
        EXPECT_EQ(written.find(injected), std::string::npos) << testing::PrintToString(injected);
    EXPECT_TRUE(is_plain(monitor->out()));
    EXPECT_TRUE(is_plain(station().server().err()));
}

}  // namespace
