// The tree of settings and its text file: named nodes with text values, addressed by ";"-joined paths.
// Loading and writing keep order, comments, blank lines and lines that could not be read; a setting whose
// value did not change is written exactly as it was read. docs/configuration.md describes the file.
//
// Empty pieces of a path are skipped ("A;;B" is "A;B", "" is the node itself), a NUL ends a text, and a path
// has at most CONF_MAX_DEPTH pieces: a longer one is never found and never set.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "libvesk/support/types.h"

inline constexpr std::size_t CONF_MAX_DEPTH = 64;
inline constexpr std::size_t CONF_MAX_FILE = 4U << 20;  // bytes

struct CONF_node {
    std::string name;
    std::optional<std::string> value;                  // absent for a node that only has children
    std::vector<std::unique_ptr<CONF_node>> children;  // in the order of the file, then of setting
    std::string comment;  // the lines (each with its newline) that stand before this node's line in the file;
                          // of the root: those after the last setting
    std::string line;     // this node's own line as it was read; empty for a new node
    std::size_t order = 0;  // place of that line in the file, from 1; 0 for a node that did not come from it

    [[nodiscard]] std::size_t n_children() const { return children.size(); }
};

// A new empty root; the caller owns it and gives it back with CONF_free (null is fine).
[[nodiscard]] CONF_node* CONF_alloc();
void CONF_free(CONF_node* root);

// Reads the whole file into the tree, an empty one. A line that cannot be read is kept as it is and reported
// on standard error with its number (the first few; then their count); the later of two equal paths wins,
// which is reported too. FALSE, which is reported, when the tree holds only the beginning of the file: it is
// larger than CONF_MAX_FILE or cannot be read to its end. Such a tree must not be written back. The file
// stays open.
[[nodiscard]] BOOL CONF_load(CONF_node* root, std::FILE* file);
// Writes the whole tree and flushes. FALSE (errno says why) when any byte could not be written.
[[nodiscard]] BOOL CONF_write(const CONF_node* root, std::FILE* file);

// The value at a path, or null when absent or without a value. Valid until the next change. A null node is
// an empty tree.
[[nodiscard]] const char* CONF_lookup(const CONF_node* node, std::string_view path);
[[nodiscard]] const char* CONF_lookup_va(const CONF_node* node,
                                         std::initializer_list<std::string_view> pieces);
[[nodiscard]] const CONF_node* CONF_lookup_tree(const CONF_node* node, std::string_view path);
[[nodiscard]] const CONF_node* CONF_lookup_tree_va(const CONF_node* node,
                                                   std::initializer_list<std::string_view> pieces);

// Creates missing nodes and sets the value (copied). The variadic form takes the value before the path.
void CONF_set(CONF_node* node, std::string_view path, std::string_view value);
void CONF_set_va(CONF_node* node, std::string_view value, std::initializer_list<std::string_view> pieces);
