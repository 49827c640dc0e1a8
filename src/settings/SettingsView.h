// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The settings window itself: its Qt Quick view in a window of this process. Lulltide shows it
// from a process of its own (SettingsChild); the tests show it in theirs.
namespace SettingsView {

// Makes SettingsWindow::show() open the window in this process.
void install();

// Opens the window (made on first use, reused after) and brings it to the front.
void show();

} // namespace SettingsView
