// The stack of open dialogs: it owns them, and what was closed for as long as a callback may still be using
// it. Private to the toolkit.
#pragma once

#include <memory>
#include <vector>

#include "libveskcurs/cursdialog_dialog.h"

namespace cursdialog {

using Dialogs = std::vector<std::unique_ptr<CURSDIALOG_type>>;

// Bottom to top; the last one takes the keys.
[[nodiscard]] const Dialogs& open_dialogs();
[[nodiscard]] bool is_open(const CURSDIALOG_type* dlg);
// Puts it on top; null while all of them are being closed.
CURSDIALOG_type* open_dialog(std::unique_ptr<CURSDIALOG_type> dlg);
// Takes it from the stack and runs its closed callback. Does nothing with one that is not open.
void close_dialog(CURSDIALOG_type* dlg);
// From the top down; a callback cannot open another one meanwhile.
void close_all();

// Stands around everything that may run callbacks. A callback may do anything to any dialog, so the outermost
// scope destroys what was closed meanwhile, the last closed first, since a dialog closes those that it
// opened.
class CallScope {
  public:
    CallScope();
    ~CallScope();
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
};

}  // namespace cursdialog
