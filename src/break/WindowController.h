// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Config.h"

class QScreen;
class QQuickWindow;
class Updater;
class QString;

// Opens and closes the application's own windows: one break window per screen, the settings
// window, the update check and the About dialog.
namespace WindowController {

// Start-up: makes the updater, which checks by itself when that is on.
void setup();

#if LULLTIDE_UPDATE_CHECKS
// The process's one updater, made by setup().
Updater& updater();
#endif

// Shows (creating when needed) a break window on every screen, fades it in over one second
// and gives the primary screen's one the keyboard focus. False, with nothing shown, when the
// break screen cannot be made (a broken installation).
bool showBreak();

// Fades out and closes the break window of every screen (a screen without one gets one,
// closed at once), and closes the windows of screens that went away during the break.
void closeBreak();

// Whether the break windows are up (from showBreak() until closeBreak()).
bool isBreakShown();

// Opens the settings window (made on first use, reused after) and brings it to the front.
void showPrefView();
// Carries out an action named as menus name them: "showSettingsWindow:" and
// "showPreferencesWindow:" both open the settings window. False for an unknown action.
bool sendAction(const QString& action);

#if LULLTIDE_UPDATE_CHECKS
// Checks for a newer version, with progress and result shown.
void showUpdater();
#endif

// Shows the About dialog, in front of other windows.
void showAbout();

// The screen's identifier, which is also the title of its break window: its name, "0" when
// empty. (When two screens share one, the title of the second adds its place: "0 (2)".)
QString displayIdentifier(const QScreen* screen);

} // namespace WindowController
