// Doubly linked lists. A node and its copy of the element are one allocation, the copy behind the node at the
// strictest scalar alignment, so that deleting a node is one free.
#include "libvesk/support/ll.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t DATA_OFFSET =
    (sizeof(LL_NODE) + alignof(std::max_align_t) - 1) / alignof(std::max_align_t) * alignof(std::max_align_t);

LL_NODE* make_node(const void* element, std::size_t size) {
    if (size > SIZE_MAX - DATA_OFFSET) return nullptr;
    void* memory = std::malloc(DATA_OFFSET + size);
    if (memory == nullptr) return nullptr;
    void* data = static_cast<std::byte*>(memory) + DATA_OFFSET;
    if (size > 0) std::memcpy(data, element, size);
    return new (memory) LL_NODE{data, nullptr, nullptr};
}

// Links a free node between two neighbours of the list; null stands for its ends.
void link_between(LL_TYPE* list, LL_NODE* node, LL_NODE* prev, LL_NODE* next) {
    node->prev = prev;
    node->next = next;
    (prev != nullptr ? prev->next : list->head) = node;
    (next != nullptr ? next->prev : list->tail) = node;
    ++list->count;
}

}  // namespace

void LL_init(LL_TYPE* list) {
    *list = LL_TYPE{};
}

LL_NODE* LL_insert_tail(LL_TYPE* list, const void* element, std::size_t size) {
    return LL_insert_before(list, nullptr, element, size);
}

LL_NODE* LL_insert_head(LL_TYPE* list, const void* element, std::size_t size) {
    return LL_insert_before(list, list->head, element, size);
}

LL_NODE* LL_insert_before(LL_TYPE* list, LL_NODE* before, const void* element, std::size_t size) {
    LL_NODE* node = make_node(element, size);
    if (node == nullptr) return nullptr;
    link_between(list, node, before != nullptr ? before->prev : list->tail, before);
    return node;
}

void LL_transverse_forwards(LL_TYPE* list, LL_visit_cb cb, void* param) {
    // The successor is read after the callback: nodes that it appends are visited too.
    for (LL_NODE* node = list->head; node != nullptr; node = node->next)
        cb(node->data, param);
}

LL_NODE* LL_transverse_until_forwards(LL_TYPE* list, LL_test_cb cb, void* param) {
    LL_NODE* node = list->head;
    while (node != nullptr && cb(node->data, param))
        node = node->next;
    return node;
}

void LL_selective_delete(LL_TYPE* list, LL_test_cb cb, void* param) {
    for (LL_NODE* node = list->head; node != nullptr;) {
        const BOOL doomed = cb(node->data, param);
        LL_NODE* next = node->next;
        if (doomed) LL_delete_specfic(list, node);
        node = next;
    }
}

void LL_delete_specfic(LL_TYPE* list, LL_NODE* node) {
    if (node == nullptr) return;
    (node->prev != nullptr ? node->prev->next : list->head) = node->next;
    (node->next != nullptr ? node->next->prev : list->tail) = node->prev;
    --list->count;
    std::free(node);
}

void LL_clear(LL_TYPE* list) {
    while (list->head != nullptr)
        LL_delete_specfic(list, list->head);
}
