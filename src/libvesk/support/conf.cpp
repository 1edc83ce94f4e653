// The tree of settings and its file. A line of the file belongs to the node that it sets, together with the
// comments above it, so that writing only has to put the nodes back into the order of the file and to find a
// place for those that are new.
#include "libvesk/support/conf.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unordered_map>

#include "libvesk/support/conf_line.h"
#include "libvesk/support/util.h"

namespace {

constexpr int MAX_REPORTS = 5;  // standard error may be a pipe that nobody reads yet

std::string_view up_to_nul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

// ---------------------------------------------------------------- the tree

// Appends the pieces of a path as the program writes it; every character but the separator stands for itself.
void split(std::string_view path, CONF_path& into) {
    path = up_to_nul(path);
    while (!path.empty()) {
        const std::size_t length = std::min(path.find(CONF_SEPARATOR), path.size());
        if (length > 0) into.emplace_back(path.substr(0, length));
        path.remove_prefix(std::min(length + 1, path.size()));
    }
}

CONF_path split_all(std::initializer_list<std::string_view> paths) {
    CONF_path all;
    for (std::string_view path : paths)
        split(path, all);
    return all;
}

const CONF_node* find_child(const CONF_node& node, std::string_view name) {
    const auto same = [name](const auto& child) { return child->name == name; };
    const auto found = std::find_if(node.children.begin(), node.children.end(), same);
    return found == node.children.end() ? nullptr : found->get();
}

const CONF_node* find(const CONF_node* node, const CONF_path& path) {
    if (path.size() > CONF_MAX_DEPTH) return nullptr;
    for (const std::string& name : path) {
        if (node == nullptr) break;
        node = find_child(*node, name);
    }
    return node;
}

CONF_node* add_child(CONF_node& node, std::string_view name) {
    node.children.push_back(std::make_unique<CONF_node>());
    node.children.back()->name = name;
    return node.children.back().get();
}

const char* value_of(const CONF_node* node) {
    return node != nullptr && node->value ? node->value->c_str() : nullptr;
}

void set(CONF_node* node, const CONF_path& path, std::string_view value) {
    if (node == nullptr || path.empty() || path.size() > CONF_MAX_DEPTH) return;
    for (const std::string& name : path) {
        auto* child = const_cast<CONF_node*>(find_child(*node, name));
        node = child != nullptr ? child : add_child(*node, name);
    }
    node->value = up_to_nul(value);
}

// ---------------------------------------------------------------- reading the file

// FALSE: `text` is only the beginning.
bool read_all(std::FILE* file, std::string* text) {
    char chunk[8192];
    std::size_t n;
    while (text->size() <= CONF_MAX_FILE && (n = std::fread(chunk, 1, sizeof chunk, file)) > 0)
        text->append(chunk, n);
    if (std::ferror(file)) {
        UTIL_complain("the configuration file cannot be read: %s", std::strerror(errno));
        return false;
    }
    if (text->size() <= CONF_MAX_FILE) return true;
    UTIL_complain("the configuration file is larger than %zu bytes, the rest is ignored", CONF_MAX_FILE);
    text->resize(text->rfind('\n', CONF_MAX_FILE - 1) + 1);
    return false;
}

class loader {
  public:
    explicit loader(CONF_node& root) : root_(root) {}

    void read(std::string_view text) {
        while (!text.empty()) {
            const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
            read_line(text.substr(0, length));
            text.remove_prefix(length);
        }
        root_.comment = std::move(above_);
        if (reports_ > MAX_REPORTS)
            UTIL_complain("configuration file: %d more such lines", reports_ - MAX_REPORTS);
    }

  private:
    void read_line(std::string_view line) {
        ++number_;
        const std::string_view content = UTIL_trimmed(line);
        if (content.empty() || content.front() == '#') {
            above_ += line;
            return;
        }
        CONF_path path;
        std::string value;
        const char* wrong = CONF_read_setting(content, path, value);
        if (wrong == nullptr && path.size() > CONF_MAX_DEPTH) wrong = "its path is too deep";
        if (wrong != nullptr) {
            report(wrong, "it is kept as it is");
            above_ += line;
            return;
        }
        store(node_at(path), line, std::move(value));
    }

    void store(CONF_node& node, std::string_view line, std::string value) {
        if (node.value) report("it sets what an earlier line set", "the earlier line is dropped");
        node.comment += above_;
        above_.clear();
        node.value = std::move(value);
        node.line = line;
        node.order = number_;
    }

    // By an index of all paths: a search among the siblings would make a large file take forever.
    CONF_node& node_at(const CONF_path& path) {
        CONF_node* node = &root_;
        std::string key;
        for (const std::string& name : path) {
            key += name;
            key += CONF_SEPARATOR;
            CONF_node*& known = index_[key];
            if (known == nullptr) known = add_child(*node, name);
            node = known;
        }
        return *node;
    }

    void report(const char* what, const char* consequence) {
        if (++reports_ > MAX_REPORTS) return;
        UTIL_complain("configuration file, line %zu: %s; %s", number_, what, consequence);
    }

    CONF_node& root_;
    std::string above_;  // what stands above the next setting
    std::size_t number_ = 0;
    int reports_ = 0;
    std::unordered_map<std::string, CONF_node*> index_;
};

// ---------------------------------------------------------------- writing the file

struct placed {
    const CONF_node* node;
    std::size_t after;  // place in the file: its own, or for a new node that of the line it follows
    bool is_new;
    std::string path;
};

std::size_t last_line(const CONF_node& node) {
    std::size_t last = node.order;
    for (const auto& child : node.children)
        last = std::max(last, last_line(*child));
    return last;
}

// Collects all settings below a node; a new one goes after the last line of the closest ancestor that has
// any.
void collect(const CONF_node& node, const std::string& prefix, std::size_t anchor, std::vector<placed>& all) {
    const std::size_t last = last_line(node);
    if (last > 0) anchor = last;
    for (const auto& child : node.children) {
        std::string path = prefix;
        CONF_append_name(path, child->name);
        if (child->value) {
            const std::size_t after = child->order > 0 ? child->order : anchor;
            all.push_back({child.get(), after, child->order == 0, path});
        }
        collect(*child, path + CONF_SEPARATOR, anchor, all);
    }
}

std::vector<placed> in_file_order(const CONF_node& root) {
    std::vector<placed> all;
    collect(root, "", 0, all);
    std::stable_sort(all.begin(), all.end(), [](const placed& a, const placed& b) {
        return a.after != b.after ? a.after < b.after : a.is_new < b.is_new;
    });
    return all;
}

// Appends lines, completing first a line that the file ended without.
void append_lines(std::string& text, std::string_view lines, std::string_view newline) {
    if (lines.empty()) return;
    if (!text.empty() && text.back() != '\n') text += newline;
    text += lines;
}

// The line as it was read while it still says what the node holds, else a new one.
std::string line_of(const placed& p, std::string_view newline) {
    CONF_path path;
    std::string value;
    const bool was_read = !p.node->line.empty();
    if (was_read && CONF_read_setting(p.node->line, path, value) == nullptr && value == p.node->value)
        return p.node->line;
    std::string line = p.path + " = ";
    CONF_append_value(line, *p.node->value);
    line += newline;
    return line;
}

std::string file_text(const CONF_node& root) {
    const std::vector<placed> all = in_file_order(root);
    const auto is_dos = [](const placed& p) { return p.node->line.ends_with("\r\n"); };
    const std::string newline = std::any_of(all.begin(), all.end(), is_dos) ? "\r\n" : "\n";
    std::string text;
    for (const placed& p : all) {
        append_lines(text, p.node->comment, newline);
        append_lines(text, line_of(p, newline), newline);
    }
    append_lines(text, root.comment, newline);
    return text;
}

}  // namespace

CONF_node* CONF_alloc() {
    return new CONF_node;
}

void CONF_free(CONF_node* root) {
    delete root;
}

BOOL CONF_load(CONF_node* root, std::FILE* file) {
    if (root == nullptr || file == nullptr) return FALSE;
    std::string text;
    const bool whole = read_all(file, &text);
    loader(*root).read(text);
    return whole;
}

BOOL CONF_write(const CONF_node* root, std::FILE* file) {
    const std::string text = root != nullptr ? file_text(*root) : std::string();
    return std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0;
}

const char* CONF_lookup(const CONF_node* node, std::string_view path) {
    return value_of(CONF_lookup_tree(node, path));
}

const char* CONF_lookup_va(const CONF_node* node, std::initializer_list<std::string_view> paths) {
    return value_of(CONF_lookup_tree_va(node, paths));
}

const CONF_node* CONF_lookup_tree(const CONF_node* node, std::string_view path) {
    return find(node, split_all({path}));
}

const CONF_node* CONF_lookup_tree_va(const CONF_node* node, std::initializer_list<std::string_view> paths) {
    return find(node, split_all(paths));
}

void CONF_set(CONF_node* node, std::string_view path, std::string_view value) {
    set(node, split_all({path}), value);
}

void CONF_set_va(CONF_node* node, std::string_view value, std::initializer_list<std::string_view> paths) {
    set(node, split_all(paths), value);
}
