// Doubly linked lists that own byte copies of their elements. Elements must be trivially copyable; what an
// element points to stays its owner's business. Single-threaded.
#pragma once

#include "libvesk/support/types.h"

struct LL_NODE {
    void* data;  // the list's private copy of the element, aligned for any scalar; valid as long as the node
    LL_NODE* next;
    LL_NODE* prev;
};

struct LL_TYPE {
    LL_NODE* head;
    LL_NODE* tail;
    int count;  // number of nodes
};

using LL_visit_cb = void (*)(void* data, void* param);
using LL_test_cb = BOOL (*)(void* data, void* param);

// Makes the list empty. Zero-filled memory is an empty list too. Does not free: use LL_clear on a used list.
void LL_init(LL_TYPE* list);

// Each insert copies `size` bytes into a new node and returns the node, or null when memory is out (the list
// is unchanged then). `before` must be a node of the list; null inserts at the tail.
[[nodiscard]] LL_NODE* LL_insert_tail(LL_TYPE* list, const void* element, std::size_t size);
[[nodiscard]] LL_NODE* LL_insert_head(LL_TYPE* list, const void* element, std::size_t size);
[[nodiscard]] LL_NODE* LL_insert_before(LL_TYPE* list, LL_NODE* before, const void* element,
                                        std::size_t size);

// Calls `cb` for every node, head to tail. The callback may append nodes but must not delete any.
void LL_transverse_forwards(LL_TYPE* list, LL_visit_cb cb, void* param);
// Walks head to tail while `cb` returns TRUE; the first node for which it returned FALSE, or null.
[[nodiscard]] LL_NODE* LL_transverse_until_forwards(LL_TYPE* list, LL_test_cb cb, void* param);

// Deletes every node for which `cb` returns TRUE; the callback releases what the element owns.
void LL_selective_delete(LL_TYPE* list, LL_test_cb cb, void* param);
// Deletes that one node; null is ignored. (The name is spelled so.)
void LL_delete_specfic(LL_TYPE* list, LL_NODE* node);
// Deletes all nodes and leaves the list empty.
void LL_clear(LL_TYPE* list);

// Typed views for range-for over a list: `for (T& e : LL_each<T>(list))`. The current node must not be
// deleted inside the loop.
template <class T>
class LL_each {
  public:
    explicit LL_each(const LL_TYPE& list) : head_(list.head) {}
    struct iterator {
        LL_NODE* node;
        T& operator*() const { return *static_cast<T*>(node->data); }
        iterator& operator++() {
            node = node->next;
            return *this;
        }
        bool operator!=(const iterator& other) const { return node != other.node; }
    };
    iterator begin() const { return {head_}; }
    iterator end() const { return {nullptr}; }

  private:
    LL_NODE* head_;
};

template <class T>
[[nodiscard]] T* LL_data(LL_NODE* node) {
    return node == nullptr ? nullptr : static_cast<T*>(node->data);
}
