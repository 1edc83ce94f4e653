// The geometry of moving between widgets: candidates are ranked by how far they are, the nearest one wins.
#include "libveskcurs/cursdialog_focus.h"

#include <cctype>
#include <cstdlib>
#include <utility>

namespace cursdialog {

namespace {

using Distance = std::pair<int, int>;  // the first part decides, the second settles ties

// The nearest widget that can take the focus. `distance` gives a candidate's, negative: not a candidate.
template <class F>
CURSDIALOG_widget* nearest(const CURSDIALOG_type& dlg, F distance) {
    CURSDIALOG_widget* best = nullptr;
    Distance best_distance;
    for (const auto& wd : dlg.widgets) {
        if (!takes_focus(*wd)) continue;
        const Distance d = distance(*wd);
        if (d.first < 0 || (best != nullptr && d >= best_distance)) continue;
        best = wd.get();
        best_distance = d;
    }
    return best;
}

CURSDIALOG_widget* with_hot_key(const CURSDIALOG_type& dlg, int key) {
    return nearest(dlg, [&](const CURSDIALOG_widget& wd) { return Distance(wd.hot_key == key ? 0 : -1, 0); });
}

}  // namespace

CURSDIALOG_widget* first_widget(const CURSDIALOG_type& dlg) {
    return nearest(dlg, [](const CURSDIALOG_widget&) { return Distance(0, 0); });
}

CURSDIALOG_widget* last_widget(const CURSDIALOG_type& dlg) {
    int order = static_cast<int>(dlg.widgets.size());
    return nearest(dlg, [&](const CURSDIALOG_widget&) { return Distance(order--, 0); });
}

CURSDIALOG_widget* next_widget(const CURSDIALOG_type& dlg, int direction) {
    const auto n = static_cast<int>(dlg.widgets.size());
    int focused = 0;
    while (focused < n && dlg.widgets[focused].get() != dlg.focus)
        ++focused;
    for (int i = 1; i <= n; ++i) {
        CURSDIALOG_widget* wd = dlg.widgets[(focused + i * direction + n) % n].get();
        if (takes_focus(*wd)) return wd;
    }
    return nullptr;
}

CURSDIALOG_widget* beside_widget(const CURSDIALOG_type& dlg, int direction) {
    if (dlg.focus == nullptr) return nullptr;
    const CURSDIALOG_widget& from = *dlg.focus;
    CURSDIALOG_widget* in_row = nearest(dlg, [&](const CURSDIALOG_widget& wd) {
        const int dx = (wd.x - from.x) * direction;
        return Distance(wd.y == from.y && dx > 0 ? dx : -1, 0);
    });
    if (in_row != nullptr || from.style != CURSDIALOG_STYLE_MENU) return in_row;
    return nearest(dlg, [&](const CURSDIALOG_widget& wd) {
        const int dx = (wd.x - from.x) * direction;
        return Distance(wd.style == CURSDIALOG_STYLE_MENU && dx > 0 ? dx : -1, std::abs(wd.y - from.y));
    });
}

CURSDIALOG_widget* page_widget(const CURSDIALOG_type& dlg, int direction, int rows) {
    if (dlg.focus == nullptr) return nullptr;
    const CURSDIALOG_widget& from = *dlg.focus;
    return nearest(dlg, [&](const CURSDIALOG_widget& wd) {
        const int dy = (wd.y - from.y) * direction;
        if (dy <= 0 || (from.style == CURSDIALOG_STYLE_MENU && wd.x != from.x)) return Distance(-1, 0);
        // Within the page the farthest is wanted; beyond it the first one, when nothing is within.
        return Distance(dy <= rows ? rows - dy : dy, std::abs(wd.x - from.x));
    });
}

CURSDIALOG_widget* hot_widget(const CURSDIALOG_type& dlg, int key) {
    if (key < 1 || key > 255) return nullptr;
    CURSDIALOG_widget* exact = with_hot_key(dlg, key);
    if (exact != nullptr || key > 127) return exact;
    const int other = std::isupper(key) != 0 ? std::tolower(key) : std::toupper(key);
    return with_hot_key(dlg, other);
}

}  // namespace cursdialog
