// Where the focus goes from a widget of a dialog. Each returns null when there is nowhere to go.
#pragma once

#include "libveskcurs/cursdialog_dialog.h"

namespace cursdialog {

[[nodiscard]] CURSDIALOG_widget* first_widget(const CURSDIALOG_type& dlg);
[[nodiscard]] CURSDIALOG_widget* last_widget(const CURSDIALOG_type& dlg);
// In the order of adding, round the ends; `direction` is 1 or -1 here and below.
[[nodiscard]] CURSDIALOG_widget* next_widget(const CURSDIALOG_type& dlg, int direction);
// Along the row; in columns also to the nearest row of the next one.
[[nodiscard]] CURSDIALOG_widget* beside_widget(const CURSDIALOG_type& dlg, int direction);
// As far as `rows` rows down or up, in the same column where there are columns.
[[nodiscard]] CURSDIALOG_widget* page_widget(const CURSDIALOG_type& dlg, int direction, int rows);
// The widget with that hot key: the exact character first, then its other case.
[[nodiscard]] CURSDIALOG_widget* hot_widget(const CURSDIALOG_type& dlg, int key);

}  // namespace cursdialog
