// Ownership of dialogs, and the order in which the callbacks of closing run. Nothing here holds an iterator
// across one.
#include "libveskcurs/cursdialog_stack.h"

#include <algorithm>
#include <utility>

namespace cursdialog {

namespace {

Dialogs g_open;
Dialogs g_closed;   // waiting for the last callback to return
int g_callers = 0;  // calls on the stack that may be inside a callback
bool g_ending = false;

Dialogs::iterator find(const CURSDIALOG_type* dlg) {
    return std::find_if(g_open.begin(), g_open.end(), [&](const auto& d) { return d.get() == dlg; });
}

}  // namespace

const Dialogs& open_dialogs() {
    return g_open;
}

bool is_open(const CURSDIALOG_type* dlg) {
    return find(dlg) != g_open.end();
}

CURSDIALOG_type* open_dialog(std::unique_ptr<CURSDIALOG_type> dlg) {
    if (g_ending) return nullptr;
    g_open.push_back(std::move(dlg));
    return g_open.back().get();
}

void close_dialog(CURSDIALOG_type* dlg) {
    const auto at = find(dlg);
    if (at == g_open.end()) return;  // closed before, or never a dialog

    const CallScope scope;
    g_closed.push_back(std::move(*at));
    g_open.erase(at);
    dlg->window.reset();
    if (dlg->closed_cb != nullptr) dlg->closed_cb(dlg, dlg->user_data.get());
}

void close_all() {
    g_ending = true;
    {
        const CallScope scope;
        while (!g_open.empty())
            close_dialog(g_open.back().get());
    }
    g_ending = false;
}

CallScope::CallScope() {
    ++g_callers;
}

CallScope::~CallScope() {
    while (g_callers == 1 && !g_closed.empty()) {
        const std::unique_ptr<CURSDIALOG_type> dlg = std::move(g_closed.back());
        g_closed.pop_back();
        if (dlg->cleanup_cb != nullptr) dlg->cleanup_cb(dlg->user_data.get());
    }
    --g_callers;
}

}  // namespace cursdialog
