// The settings tree and its file: lookups, round trips of every name and value, what stays as it was in a
// file that somebody else wrote, and files that are broken.
#include "libvesk/support/conf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

struct tree {
    CONF_node* root = CONF_alloc();
    std::string complaints;  // on standard error while the text was loaded
    BOOL whole = FALSE;
    tree() = default;
    explicit tree(std::string_view text) {
        std::FILE* file = std::tmpfile();
        std::fwrite(text.data(), 1, text.size(), file);
        std::rewind(file);
        testing::internal::CaptureStderr();
        whole = CONF_load(root, file);
        complaints = testing::internal::GetCapturedStderr();
        std::fclose(file);
    }
    tree(const tree&) = delete;
    tree& operator=(const tree&) = delete;
    ~tree() { CONF_free(root); }

    std::string text() const {
        char* memory = nullptr;
        std::size_t size = 0;
        std::FILE* file = open_memstream(&memory, &size);
        EXPECT_TRUE(CONF_write(root, file));
        std::fclose(file);
        std::string result(memory, size);
        std::free(memory);
        return result;
    }
    std::string get(std::string_view path) const {
        const char* value = CONF_lookup(root, path);
        return value == nullptr ? "(null)" : value;
    }
};

// Every node with its value, in order.
std::string dump(const CONF_node& node) {
    std::string text;
    for (const auto& child : node.children)
        text += "<" + child->name + "=" + child->value.value_or("(none)") + dump(*child) + ">";
    return text;
}

TEST(ConfTree, LooksUpByJoinedPathsAndPieces) {
    tree t;
    CONF_set(t.root, "Settings;EnableColor", "TRUE");
    CONF_set_va(t.root, "7", {"Windows", "cpc_3010:N61", "XPos"});
    CONF_set_va(t.root, "P", {"Aggregate", "A11", "Stack;Pitot"});
    CONF_set(t.root, "Settings", "both");
    EXPECT_EQ(t.get("Settings;EnableColor"), "TRUE");
    EXPECT_EQ(t.get("Settings"), "both") << "a node may have a value and children";
    EXPECT_EQ(t.get("Aggregate;A11;Stack;Pitot"), "P");
    EXPECT_STREQ(CONF_lookup_va(t.root, {"Windows", "cpc_3010:N61", "XPos"}), "7");
    EXPECT_EQ(CONF_lookup(t.root, "Windows"), nullptr) << "only has children";
    EXPECT_EQ(CONF_lookup(t.root, "settings;enablecolor"), nullptr);
    EXPECT_EQ(t.get(";Settings;;EnableColor;"), "TRUE");
    EXPECT_EQ(CONF_lookup_tree(t.root, ""), t.root);

    CONF_set(t.root, "Settings;EnableColor", "FALSE");
    EXPECT_EQ(t.get("Settings;EnableColor"), "FALSE");
    EXPECT_EQ(CONF_lookup_tree(t.root, "Settings")->n_children(), 1U);
}

TEST(ConfTree, NullAndDeepPathsAreHarmless) {
    EXPECT_EQ(CONF_lookup(nullptr, "A"), nullptr);
    EXPECT_EQ(CONF_lookup_tree_va(nullptr, {"A", "B"}), nullptr);
    CONF_free(nullptr);
    tree t;
    CONF_set(t.root, "", "x");
    std::string deep;
    for (std::size_t i = 0; i < CONF_MAX_DEPTH; ++i)
        deep += "a;";
    CONF_set(t.root, deep + "b", "too deep");
    EXPECT_EQ(t.text(), "");
    CONF_set(t.root, deep, "deep");
    EXPECT_EQ(tree(t.text()).get(deep), "deep");
}

// Every character in names and values, at either end and inside, and some words that look like syntax.
TEST(ConfFile, EveryNameAndValueComesBack) {
    tree t;
    for (int c = 1; c < 256; ++c) {
        if (c == ';') continue;
        const std::string one(1, static_cast<char>(c));
        for (const std::string& text : {one, one + "x", "x" + one, "x" + one + "y", one + one}) {
            CONF_set_va(t.root, text, {"name" + one, text});
            CONF_set_va(t.root, text, {text, "first"});
        }
    }
    for (const char* text :
         {"\"quoted\"", "\"", "a=b", "# no comment", "\\", "\\n", "a\\", "=", " ", "\xc3\xa9", "\\x41"})
        CONF_set_va(t.root, text, {text, text, text});
    const std::string written = t.text();
    const tree back(written);
    EXPECT_EQ(back.complaints, "");
    EXPECT_EQ(dump(*back.root), dump(*t.root));
    EXPECT_EQ(back.text(), written);
}

TEST(ConfFile, UnchangedFileComesBackByteForByte) {
    for (const char* text : {
             "",
             "\n",
             "# only a comment",
             "A=1\n",
             "  Settings ; EnableColor   =  \"TRUE\"  \n\n\t# x\n B;c = d = e # f\n# end\n\n",
             "A;x = 1\nB;y = 2\nA;z = 3\nA = 4\n",
             "# dos\r\nA = 1\r\n\r\nB = \"2\"\r\n# end",
             "A =\nB = \"\"\nC;;D; = odd\n",
             "nothing to read here\nA = 1\n\"x\nB = \"open\n= 5\nC = \"x\" y\nD = \"\\q\"\n;=1\nE\\;F = 1\n",
         })
        EXPECT_EQ(tree(text).text(), text);
}

TEST(ConfFile, ValuesAreReadAsDocumented) {
    const tree t(
        "a = plain text \nb = \"  kept  \"\nc=\nd = x = y\ne = C:\\dir\\\nf = half \"quoted\"\ng = "
        "\"tab\\tq\\\"b\\\\\"\r\n"
        "h = 3 # left\n  i ; j\\ = 4\n\\#k = 5\nl\\=m = 6\nn\\x41 = \\x41");
    const struct {
        const char* path;
        const char* value;
    } rows[] = {{"a", "plain text"},  {"b", "  kept  "},  {"c", ""},
                {"d", "x = y"},       {"e", "C:\\dir\\"}, {"f", "half \"quoted\""},
                {"g", "tab\tq\"b\\"}, {"h", "3 # left"},  {"i;j ", "4"},
                {"#k", "5"},          {"l=m", "6"},       {"nA", "\\x41"}};
    EXPECT_EQ(t.complaints, "");
    for (const auto& row : rows)
        EXPECT_EQ(t.get(row.path), row.value) << row.path;
}

TEST(ConfFile, ChangesKeepPlaceAndComments) {
    tree t(
        "# who\nSettings;Password = \"a\"\n\n# where\nWindows;w0;XPos =   1\nWindows;w0;YPos =   2\n"
        "# look\nSettings;EnableColor=1\nbroken line\n# end\n");
    CONF_set(t.root, "Windows;w0;XPos", "10");
    CONF_set(t.root, "Windows;w0;YPos", "2");
    CONF_set(t.root, "Windows;w1;XPos", "5");
    CONF_set(t.root, "Windows;w0;Visible", "TRUE");
    CONF_set(t.root, "Settings;ErrorDisplayTime", "2.0");
    CONF_set(t.root, "New", "n");
    const std::string expected =
        "# who\nSettings;Password = \"a\"\n\n# where\nWindows;w0;XPos = 10\nWindows;w0;YPos =   2\n"
        "Windows;w0;Visible = TRUE\nWindows;w1;XPos = 5\n"
        "# look\nSettings;EnableColor=1\nSettings;ErrorDisplayTime = 2.0\nNew = n\nbroken line\n# end\n";
    EXPECT_EQ(t.text(), expected);
    EXPECT_EQ(t.text(), expected) << "a second save writes the same";
    tree dos("A = 1\r\nB = 2");
    CONF_set(dos.root, "A", "3");
    CONF_set(dos.root, "C", "4");
    EXPECT_EQ(dos.text(), "A = 3\r\nB = 2\r\nC = 4\r\n") << "lines end as those of the file do";
    tree open_end("# end without a newline");
    CONF_set(open_end.root, "A;b", " a \"b\" # \\\x1b\n");
    CONF_set(open_end.root, "P", "");
    EXPECT_EQ(open_end.text(), "A;b = \" a \\\"b\\\" # \\\\\\x1B\\n\"\nP = \"\"\n# end without a newline");
}

TEST(ConfFile, RepeatedAndUnreadableLinesAreReportedWithTheirNumber) {
    const tree twice("# one\nA;b = 1\nC = 2\n# two\nA ; b = 3\n");
    EXPECT_EQ(twice.get("A;b"), "3") << "the later wins";
    EXPECT_THAT(twice.complaints, testing::HasSubstr("line 5"));
    EXPECT_EQ(twice.text(), "C = 2\n# one\n# two\nA ; b = 3\n");

    const tree t("A = 1\nno equals sign\n\n# fine\nB = \"open\nC = 2\n");
    EXPECT_THAT(t.complaints, testing::HasSubstr("line 2"));
    EXPECT_THAT(t.complaints, testing::HasSubstr("line 5"));
    EXPECT_THAT(t.complaints, testing::Not(testing::HasSubstr("open\n"))) << "values may be secret";
    EXPECT_EQ(t.get("A") + t.get("C"), "12");
}

TEST(ConfFile, LargeAndBinaryFilesAreReadWithoutAFlood) {
    std::string text;
    for (int i = 0; i < 200'000; ++i)
        text += "key" + std::to_string(i) + "=1\n";
    const tree wide(text);
    EXPECT_EQ(wide.get("key199999"), "1");
    EXPECT_TRUE(wide.whole);
    EXPECT_EQ(wide.text(), text);

    std::string garbage;
    for (unsigned i = 0, x = 1; i < 300'000; ++i, x = x * 1664525U + 1013904223U)
        garbage += static_cast<char>(x >> 24);
    EXPECT_LT(tree(garbage).complaints.size(), 2000U);

    const tree endless("B = 1\nA = " + std::string(CONF_MAX_FILE, 'x'));
    EXPECT_EQ(endless.text(), "B = 1\n");
    EXPECT_THAT(endless.complaints, testing::HasSubstr("larger than"));
    EXPECT_FALSE(endless.whole);
}

TEST(ConfFile, FailuresOfTheFileAreTold) {
    tree t("A = 1\n");
    std::FILE* full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    errno = 0;
    EXPECT_FALSE(CONF_write(t.root, full));
    EXPECT_EQ(errno, ENOSPC);
    std::fclose(full);
    std::FILE* folder = std::fopen("/", "r");
    ASSERT_NE(folder, nullptr);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(CONF_load(t.root, folder));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("Is a directory"));
    std::fclose(folder);
}

}  // namespace
