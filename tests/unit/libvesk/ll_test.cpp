// Lists: order after every kind of insertion, deletion of any set of nodes, searches, and ownership of
// copies.
#include "libvesk/support/ll.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

struct int_list {
    LL_TYPE l{};
    int_list(std::initializer_list<int> values) {
        for (int v : values)
            EXPECT_NE(LL_insert_tail(&l, &v, sizeof v), nullptr);
    }
    int_list(const int_list&) = delete;
    int_list& operator=(const int_list&) = delete;
    ~int_list() { LL_clear(&l); }
};

// The elements head to tail, after checking that the links backward and the count tell the same.
std::vector<int> elements(const LL_TYPE& list) {
    std::vector<int> forward;
    const LL_NODE* last = nullptr;
    for (LL_NODE* node = list.head; node != nullptr; node = node->next) {
        EXPECT_EQ(node->prev, last);
        forward.push_back(*LL_data<int>(node));
        last = node;
    }
    EXPECT_EQ(list.tail, last);
    EXPECT_EQ(list.count, static_cast<int>(forward.size()));
    return forward;
}

using ints = std::vector<int>;

TEST(Ll, InsertsInOrderAndOwnsCopies) {
    int_list list{};
    int value = 2;
    LL_NODE* two = LL_insert_tail(&list.l, &value, sizeof value);
    value = 4;
    LL_NODE* four = LL_insert_before(&list.l, nullptr, &value, sizeof value);
    value = 1;
    LL_NODE* one = LL_insert_head(&list.l, &value, sizeof value);
    value = 3;
    LL_NODE* three = LL_insert_before(&list.l, four, &value, sizeof value);
    value = 0;
    LL_NODE* zero = LL_insert_before(&list.l, one, &value, sizeof value);
    value = 99;
    EXPECT_EQ(elements(list.l), (ints{0, 1, 2, 3, 4}));
    for (const LL_NODE* node : {zero, one, two, three, four})
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(node->data) % alignof(std::max_align_t), 0U);
}

// Every subset of five nodes, the whole list among them, in one walk each.
TEST(Ll, SelectiveDeleteTakesAnySubset) {
    for (unsigned doomed = 0; doomed < 32; ++doomed) {
        int_list list{0, 1, 2, 3, 4};
        unsigned mask = doomed;
        const LL_test_cb is_doomed = [](void* data, void* param) -> BOOL {
            return (*static_cast<unsigned*>(param) >> *static_cast<int*>(data) & 1U) != 0;
        };
        LL_selective_delete(&list.l, is_doomed, &mask);
        ints expected;
        for (int i = 0; i < 5; ++i)
            if ((doomed >> i & 1U) == 0) expected.push_back(i);
        EXPECT_EQ(elements(list.l), expected) << doomed;
    }
}

TEST(Ll, SearchStopsAtTheFirstHit) {
    int_list list{5, 7, 9, 7};
    struct search {
        int wanted;
        int visited;
    } s{7, 0};
    const LL_test_cb differs = [](void* data, void* param) -> BOOL {
        auto* looking = static_cast<search*>(param);
        ++looking->visited;
        return *static_cast<int*>(data) != looking->wanted;
    };
    EXPECT_EQ(LL_transverse_until_forwards(&list.l, differs, &s), list.l.head->next);
    EXPECT_EQ(s.visited, 2);
    s.wanted = 1;
    EXPECT_EQ(LL_transverse_until_forwards(&list.l, differs, &s), nullptr);
}

TEST(Ll, VisitorMayAppend) {
    int_list list{1, 2};
    const LL_visit_cb append_up_to_five = [](void* data, void* param) {
        const int next = *static_cast<int*>(data) + 2;
        if (next > 5) return;
        EXPECT_NE(LL_insert_tail(static_cast<LL_TYPE*>(param), &next, sizeof next), nullptr);
    };
    LL_transverse_forwards(&list.l, append_up_to_five, &list.l);
    EXPECT_EQ(elements(list.l), (ints{1, 2, 3, 4, 5}));
    int sum = 0;
    for (int& v : LL_each<int>(list.l))
        sum += v;
    EXPECT_EQ(sum, 15);
}

}  // namespace
