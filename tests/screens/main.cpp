// Plays a screen file and compares what it holds with what the program does now:
//
//   test_screens FILE
//
// With VESK_REWRITE_SCREENS in the environment the file, and the documents' pictures that are drawn from it,
// are written anew instead. One file in a process: what the program keeps process-wide must not leak.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "screens/play.h"

namespace {

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

// The lines of both in order: those of one alone marked with "-" (expected) and "+" (present), and three of
// those before them.
std::string difference(const std::string& expected, const std::string& present) {
    const auto a = lines_of(expected), b = lines_of(present);
    // common[i][j]: how many lines a from i and b from j have in common.
    std::vector<std::vector<int>> common(a.size() + 1, std::vector<int>(b.size() + 1));
    for (std::size_t i = a.size(); i-- > 0;)
        for (std::size_t j = b.size(); j-- > 0;)
            common[i][j] =
                a[i] == b[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
    std::string result;
    std::size_t told = 0;  // lines of a
    for (std::size_t i = 0, j = 0; i < a.size() || j < b.size();) {
        if (i < a.size() && j < b.size() && a[i] == b[j]) {
            ++i, ++j;
            continue;
        }
        for (std::size_t k = std::max(told, i < 3 ? 0 : i - 3); k < i; ++k)
            result += "  " + a[k] + '\n';
        const bool gone = j == b.size() || (i < a.size() && common[i + 1][j] >= common[i][j + 1]);
        result += gone ? "- " + a[i++] + '\n' : "+ " + b[j++] + '\n';
        told = i;
    }
    return result;
}

// The file holds that; where the switch says so, from now on.
void expect_file(const std::string& path, const std::string& present) {
    if (std::getenv("VESK_REWRITE_SCREENS") != nullptr) {
        std::ofstream(path, std::ios::binary) << present;
        return;
    }
    const std::string expected = contents(path);
    EXPECT_TRUE(expected == present) << path << " has (-) and the program shows (+):\n"
                                     << difference(expected, present);
}

class ScreenFile : public ScreenPlay {
  public:
    explicit ScreenFile(std::string path) : path_(std::move(path)) {}

  private:
    void TestBody() override {
        expect_file(path_, play(contents(path_)));
        for (const auto& [name, svg] : pictures())
            expect_file(VESK_DOCS "/images/" + name + ".svg", svg);
    }
    std::string path_;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    setenv("TZ", "UTC", 1);
    if (argc != 2) {
        std::fputs("usage: test_screens FILE\n", stderr);
        return 2;
    }
    const std::filesystem::path path = argv[1];
    testing::RegisterTest(path.parent_path().filename().c_str(), path.stem().c_str(), nullptr, nullptr,
                          __FILE__, __LINE__, [path]() -> testing::Test* { return new ScreenFile(path); });
    return RUN_ALL_TESTS();
}
