// The documents against the program: every kind of display has its page, and the keys and menu entries that
// pages and manual name are those that the console has, with the same guards. The pages are read as they
// stand: in tables headed "Key" and "Menu", what is in backquotes in the first cell counts; "Keys and menu:
// as [kind](kind.md)" takes over another page's.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "cursclient/display.h"
#include "cursclient/keyhelp.h"
#include "libveskcurs/curskeys.h"
#include "support/display_rig.h"

namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::HasSubstr;

const fs::path DOCS = VESK_DOCS;
constexpr const char* EVERY_MENU = "1 Hide window";

// ---- the documents

struct page {
    std::set<std::string> keys;
    std::map<std::string, bool> menu;  // entry: asks for the password
};

std::string read(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> quoted(const std::string& text) {
    static const std::regex QUOTED("`([^`]+)`");
    std::vector<std::string> result;
    for (std::sregex_iterator it(text.begin(), text.end(), QUOTED), end; it != end; ++it)
        result.push_back((*it)[1]);
    return result;
}

page read_page(const fs::path& path);

// "Keys and menu: as [grimm](grimm.md)".
void take_over(const fs::path& path, const std::string& line, page* p) {
    static const std::regex AS(R"(^([^:]*): as \[[^\]]*\]\(([^)]*)\))");
    std::smatch m;
    if (!std::regex_search(line, m, AS)) return;
    const std::string what = m[1];
    page other = read_page(path.parent_path() / m[2].str());
    if (what.find("eys") != std::string::npos) p->keys.merge(other.keys);
    if (what.find("enu") != std::string::npos) p->menu.merge(other.menu);
}

page read_page(const fs::path& path) {
    page p;
    enum { TEXT, KEYS, MENU } table = TEXT;
    for (const std::string& line : lines_of(read(path))) {
        if (!line.starts_with("|")) {
            table = TEXT;
            take_over(path, line, &p);
        }
        const std::string first = line.substr(0, line.find('|', 1));
        if (table == KEYS)
            for (const std::string& key : quoted(first))
                p.keys.insert(key);
        if (table == MENU)
            for (const std::string& entry : quoted(first))
                p.menu[entry] = line.ends_with("| password |");
        if (line.starts_with("| Key |")) table = KEYS;
        if (line.starts_with("| Menu |")) table = MENU;
    }
    return p;
}

fs::path page_of(const std::string& kind) {
    return DOCS / "displays" / ((kind == "inst_skel" ? "skel" : kind) + ".md");
}

// ---- the console

class Documents : public DisplayRig {
  protected:
    static constexpr const char* SOURCE = "S1";

    static std::string ident(const std::string& kind) { return kind + ":" + SOURCE; }

    // The instrument comes with nothing known about it; its window has the focus.
    static void bring_up(const std::string& kind) {
        leave(SOURCE);
        announce(SOURCE, kind.c_str());
        ASSERT_NE(focus(ident(kind).c_str()), nullptr) << kind;
    }

    static void close_dialogs() {
        for (int i = 0; i < 10 && CURSDIALOG_active(); ++i)
            press(CURSKEYS_ESCAPE);
        EXPECT_FALSE(CURSDIALOG_active());
    }

    // The labels of the open menu, which is small enough for the screen.
    static std::vector<std::string> entries(const std::string& title) {
        const std::vector<std::string> rows = lines_of(screen_text());
        std::vector<std::string> labels;
        const std::regex top("\\+-*" + (title.empty() ? "-" : " " + title + " ") + "-*\\+");
        std::smatch m;
        std::size_t at = 0;
        while (at < rows.size() && !std::regex_search(rows[at], m, top))
            ++at;
        if (at == rows.size()) return labels;
        const auto left = static_cast<std::size_t>(m.position()) + 1;
        const auto width = static_cast<std::size_t>(m.length()) - 2;
        for (++at; at < rows.size() && rows[at][left - 1] != '+'; ++at) {
            std::string label = rows[at].substr(left, width);
            label.erase(label.find_last_not_of(' ') + 1);
            label.erase(0, label.find_first_not_of(' '));
            labels.push_back(label);
        }
        return labels;
    }

    // Presses every button of the menu once, with the password asked for; adds what it found to `found`.
    static void try_menu(const std::string& kind, page* found) {
        const std::string title = kind == "verticalprofile" ? "Schedule" : "Instrument";
        press('m');
        const std::vector<std::string> labels = entries(title);
        ASSERT_THAT(labels, Contains(EVERY_MENU)) << kind << screen_text();
        close_dialogs();
        for (std::size_t i = 1; i < labels.size(); ++i) {
            press('m');
            for (std::size_t step = 0; step < i; ++step)
                press(KEY_DOWN);
            press(ENTER);
            found->menu[labels[i]] = screen_text().find("Enter password") != std::string::npos;
            close_dialogs();
        }
    }

    // Letters that count in both cases, and the keys that turn pages, whatever view they count in.
    static void try_keys(BOOL both_cases, page* found) {
        for (int c = 'A'; c <= 'Z'; ++c) {
            if (c == 'M' || !DISPLAY_distribute_keypress(c)) continue;
            found->keys.insert(std::string(1, static_cast<char>(c)));
            if (both_cases) {
                EXPECT_TRUE(DISPLAY_distribute_keypress(std::tolower(c))) << static_cast<char>(c);
            }
            if (DISPLAY_distribute_keypress(KEY_NPAGE)) found->keys.insert("Page Down");
            if (DISPLAY_distribute_keypress(KEY_PPAGE)) found->keys.insert("Page Up");
        }
        for (int c = '!'; c < 127; ++c) {
            if (std::isalpha(c) == 0 && DISPLAY_distribute_keypress(c))
                found->keys.insert(std::string(1, static_cast<char>(c)));
        }
    }

    static page found_in(const std::string& kind);
};

// Reports that bring a kind into another state, in which its menu has other rows.
struct situation {
    const char* kind;
    NETMSG_type msg;
    const char* values;
};

constexpr situation SITUATIONS[] = {
    {"psap", MSG_PSAP_FILTERSTATUS, R"({"changing_filter":true})"},
    {"psap3", MSG_PSAP3_FILTERSTATUS, R"({"changing_filter":true})"},
    {"clap3w", MSG_CLAP3W_FILTERSTATUS, R"({"status":2})"},
    {"clap3w", MSG_CLAP3W_FILTERSTATUS, R"({"status":3})"},
    {"ccn", MSG_CCN_SCANNING, R"({"enabled":true})"},
    {"ccn", MSG_CCN_STATUS, R"({"in_calibration":true})"},
    {"genericpid", MSG_GENERICPID_TUNING_STATUS, R"({"state":6})"},
    {"verticalprofile", MSG_VERTICALPROFILE_ALL, R"({"enabled":true})"},
    {"neph", MSG_COMMON_NEPH_SPANCHECK_PHASE, R"({"phase":2})"},
    {"neph", MSG_COMMON_NEPH_SPANCHECK_RESULTS, "{}"},
    {"nephM903", MSG_COMMON_NEPH_SPANCHECK_PHASE, R"({"phase":2})"},
    {"nephM903", MSG_COMMON_NEPH_SPANCHECK_RESULTS, "{}"},
    {"neph_aurora3000", MSG_COMMON_NEPH_SPANCHECK_PHASE, R"({"phase":2})"},
    {"neph_aurora3000", MSG_COMMON_NEPH_SPANCHECK_RESULTS, "{}"},
    {"neph_passive", MSG_COMMON_NEPH_SPANCHECK_PHASE, R"({"phase":2})"},
    {"neph_passive", MSG_COMMON_NEPH_SPANCHECK_RESULTS, "{}"},
};

constexpr int ROUNDS = 8;  // through the modes of which the label names one

page Documents::found_in(const std::string& kind) {
    page found;
    const auto look_around = [&] {
        for (int round = 0; round < ROUNDS; ++round) {
            focus(ident(kind).c_str());  // a command may have brought up another window
            try_menu(kind, &found);
            try_keys(round == 0, &found);
        }
    };
    bring_up(kind);
    look_around();
    for (const situation& s : SITUATIONS) {
        if (kind != s.kind) continue;
        bring_up(kind);
        report(SOURCE, s.msg, s.values);
        look_around();
    }
    return found;
}

TEST_F(Documents, EveryKindHasAPageWithItsKeysAndItsMenu) {
    UTIL_strcpynt(g_passwd, "secret");
    // Of several kinds, and of kinds that no instrument announces: screen files show their menus.
    std::set<fs::path> pages{DOCS / "displays/spancheck.md", DOCS / "displays/AVGSTATUS.md"};
    for (const std::string& kind : kinds()) {
        SCOPED_TRACE(kind);
        pages.insert(page_of(kind));
        ASSERT_TRUE(fs::exists(page_of(kind))) << page_of(kind);
        const page documented = read_page(page_of(kind));
        const page found = found_in(kind);
        EXPECT_EQ(documented.keys, found.keys);
        std::set<std::string> on_f4;
        for (const KEYHELP_row& row : KEYHELP_of_kind(kind))
            on_f4.insert(row.key);
        EXPECT_EQ(on_f4, found.keys);
        EXPECT_EQ(documented.menu, found.menu);
    }
    for (const auto& file : fs::directory_iterator(DOCS / "displays"))
        EXPECT_THAT(pages, Contains(file.path())) << "a page of nothing";
    g_passwd[0] = '\0';
}

// ---- the manual

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

TEST_F(Documents, TheManualHasTheKeysOfTheHelpPageAndTheMainMenu) {
    const page manual = read_page(DOCS / "manual.md");
    std::set<std::string> keys;
    for (const std::string& key : manual.keys)
        keys.insert(upper(key));
    press(KEY_F(1));
    int on_page = 0;
    for (int scrolled = 0; scrolled < 6; ++scrolled) {
        static const std::regex ROW(R"(\|(CTRL-[A-Z]|ALT-X|ESC|ENTER|F[0-9]+|M|TAB)[ ,])");
        const std::string text = screen_text();
        for (std::sregex_iterator it(text.begin(), text.end(), ROW), end; it != end; ++it, ++on_page)
            EXPECT_THAT(keys, Contains((*it)[1].str()));
        press(KEY_NPAGE);
    }
    EXPECT_GT(on_page, 11) << "the help page was read";
    press(CURSKEYS_ESCAPE);

    press(ENTER);
    const std::vector<std::string> labels = entries("");
    EXPECT_THAT(labels, Contains("Quit")) << screen_text();
    for (const std::string& label : labels)
        EXPECT_TRUE(manual.menu.contains(label)) << label;
    EXPECT_EQ(manual.menu.size(), labels.size() + 1);
    EXPECT_TRUE(manual.menu.contains(EVERY_MENU));
}

TEST_F(Documents, EveryKeyOfTheManualDoesSomething) {
    static const std::map<std::string, int> CODES{
        {"Enter", ENTER},
        {"Esc", CURSKEYS_ESCAPE},
        {"Ctrl-M", ENTER},
        {"Alt-X", CURSKEYS_ALT + 'x'},
        {"Ctrl-D", CURSKEYS_CTRL_D},
        {"Ctrl-E", CURSKEYS_CTRL_E},
        {"Ctrl-W", CURSKEYS_CTRL_W},
        {"F1", KEY_F(1)},
        {"F2", KEY_F(2)},
        {"F3", KEY_F(3)},
        {"F4", KEY_F(4)},
        {"Ctrl-H", 8},
        {"F12", KEY_F(12)},
        {"M", 'M'},
        {"Tab", CURSKEYS_TAB},
        {"Shift-Tab", CURSKEYS_BTAB},
        {"Left", KEY_LEFT},
        {"Right", KEY_RIGHT},
        {"Up", KEY_UP},
        {"Down", KEY_DOWN},
    };
    // These go other ways: signals, the terminal's own picture, and the debug console, which this rig leaves
    // out; F6 writes files.
    static const std::set<std::string> ELSEWHERE{"Ctrl-C", "Ctrl-Z", "Ctrl-L", "F5", "F6"};
    for (const std::string& key : read_page(DOCS / "manual.md").keys) {
        if (ELSEWHERE.contains(key)) continue;
        ASSERT_TRUE(CODES.contains(key)) << "no such key: " << key;
        for (const char* source : {"N1", "N2"}) {
            announce(source, "cpc_3010", source, source[1] == '1' ? 'x' : 'y');
            focus((std::string("cpc_3010:") + source).c_str());
        }
        const std::string before = screen_text();
        press(CODES.at(key));
        EXPECT_NE(screen_text(), before) << key;
        close_dialogs();
        for (const char* source : {"N1", "N2"})
            leave(source);
    }
}

TEST(ManualPage, TellsEveryKeyOfTheManual) {
    std::set<std::string> told;
    static const std::regex WORD(R"([^" ,]+)");
    for (const std::string& line : lines_of(read(DOCS / "man/vesk.cursclient.1")))
        if (line.starts_with(".B"))
            for (std::sregex_iterator it(line.begin(), line.end(), WORD), end; it != end; ++it)
                told.insert(it->str());
    for (const std::string& key : read_page(DOCS / "manual.md").keys)
        EXPECT_THAT(told, Contains(key));
}

TEST(Manual, NamesEveryScenario) {
    const std::string manual = read(DOCS / "manual.md");
    for (const auto& file : fs::directory_iterator(DOCS / "scenarios"))
        EXPECT_THAT(manual, HasSubstr("(scenarios/" + file.path().filename().string() + ")"));
}

// ---- all documents

TEST(DocumentLinks, LeadSomewhereAndEveryPictureIsShown) {
    static const std::regex LINK(R"(\]\(([^)#]+)[^)]*\))");
    std::set<fs::path> linked;
    std::vector<fs::path> documents{DOCS.parent_path() / "README.md"};
    for (const auto& file : fs::recursive_directory_iterator(DOCS))
        if (file.path().extension() == ".md") documents.push_back(file.path());
    for (const fs::path& document : documents) {
        const std::string text = read(document);
        for (std::sregex_iterator it(text.begin(), text.end(), LINK), end; it != end; ++it) {
            const std::string target = (*it)[1];
            if (target.find("://") != std::string::npos) continue;
            const fs::path path = (document.parent_path() / target).lexically_normal();
            EXPECT_TRUE(fs::exists(path)) << document << " links to " << target;
            linked.insert(path);
        }
    }
    for (const auto& file : fs::recursive_directory_iterator(DOCS / "images")) {
        if (file.is_regular_file()) {
            EXPECT_THAT(linked, Contains(file.path())) << "shown nowhere";
        }
    }
}

TEST(DriversGuide, QuotesTheExamplesAsTheyAre) {
    const fs::path examples = DOCS.parent_path() / "examples";
    const std::string source = read(examples / "serial_counter.cpp") + read(examples / "serial_counter.sh");
    static const std::regex BLOCK("```(cpp|sh)\n([^`]*)```");
    const std::string guide = read(DOCS / "drivers.md");
    int blocks = 0;
    for (std::sregex_iterator it(guide.begin(), guide.end(), BLOCK), end; it != end; ++it, ++blocks)
        EXPECT_THAT(source, HasSubstr((*it)[2].str()));
    EXPECT_GE(blocks, 8);
}

}  // namespace
