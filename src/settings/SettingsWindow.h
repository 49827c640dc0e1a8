// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Config.h"

class HistoryStore;
class QString;
class Updater;

// The settings window, the update check and the About dialog: each made on first use and
// reused after.
namespace SettingsWindow {

// Start-up: makes the updater, which checks by itself when that is on.
void setup();

#if LULLTIDE_UPDATE_CHECKS
// The process's one updater, made by setup().
Updater& updater();
#endif

// The history file the History tab reads; set by the program before the window is first made.
void setHistoryStore(HistoryStore* store);
HistoryStore* historyStoreToShow();

// Where no process of its own shows the window (the tests), `open` shows it in this one.
void openInThisProcessWith(void (*open)());

// From now on the window opens in a process of its own, `program --settings-window`.
void showThrough(const QString& program);

// Opens the settings window (made on first use, reused after) and brings it to the front.
void show();
// Carries out an action named as menus name them: "showSettingsWindow:" and
// "showPreferencesWindow:" both open the settings window. False for an unknown action.
bool sendAction(const QString& action);

#if LULLTIDE_UPDATE_CHECKS
// Checks for a newer version, with progress and result shown.
void showUpdater();
#endif

// Shows the About dialog, in front of other windows.
void showAbout();

} // namespace SettingsWindow
