// The keys of a dialog.
#pragma once

#include "libveskcurs/cursdialog_dialog.h"

namespace cursdialog {

// Gives the dialog that is on top a key. Callbacks run in here: the caller keeps the record alive.
void dialog_key(CURSDIALOG_type& dlg, int key);

}  // namespace cursdialog
