// The tree of settings and its text file: named nodes with text values, addressed by ";"-joined paths.
// Loading and writing keep order, comments, blank lines and lines that could not be read.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "libvesk/types.h"

struct CONF_node {
    std::string name;
    std::optional<std::string> value;                  // absent for a node that only has children
    std::vector<std::unique_ptr<CONF_node>> children;  // in the order of the file, then of setting
    std::string comment;  // the lines (each with its newline) that stand before this node's line in the file

    [[nodiscard]] std::size_t n_children() const { return children.size(); }
};

// A new empty root; the caller owns it and gives it back with CONF_free (null is fine).
[[nodiscard]] CONF_node* CONF_alloc();
void CONF_free(CONF_node* root);

// Reads the whole file into the tree. A line that cannot be read is kept as it is and reported on standard
// error with its number; the later of two equal paths wins. The file stays open.
void CONF_load(CONF_node* root, std::FILE* file);
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
