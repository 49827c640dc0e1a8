// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>

class QObject;
class QScreen;
class QQuickWindow;
class QString;

// Opens and closes the break windows: one per screen, found again by the screen's key.
namespace WindowController {

// Makes these windows the cycle's break screen (AppState::breakScreen()).
void install();

// The objects the break views show: one with the prompt, the buttons' visibility and skip()
// and postpone(), one with the countdown's timeString and timesUp. Without this the views show
// the cycle's own (AppState's).
void setViewState(QObject* prompt, QObject* countdown);

// Makes every screen's break window and view without showing them, so that the break appears
// at once when it comes. False when the view cannot be made.
bool prepareBreak();

// How a break window appears: faded in over one second, or at once (a break already under way,
// shown again).
enum class Entrance { FadeIn, AtOnce };

// Shows (creating when needed) a break window on every screen, fades it in (unless told
// otherwise or the desktop asks for less animation) and gives the primary screen's one the
// keyboard focus. False, with nothing shown, when the break screen cannot be made (a broken
// installation).
bool showBreak(Entrance entrance = Entrance::FadeIn);

// Fades out and closes the break window of every screen (a screen without one gets one,
// closed at once), and closes the windows of screens that went away during the break.
void closeBreak();

// Whether the break windows are up (from showBreak() until closeBreak()).
bool isBreakShown();

// The break window of every screen, for the break that is up: shown, or about to be (on Wayland
// the primary screen's may open a moment after the others).
QList<QQuickWindow*> breakWindows();

// The screen's identifier, which is also the key of its break window (and on X11 its role,
// "break-" and the key): its name, "0" when empty. (When two screens share one, the key of the
// second adds its place: "0 (2)".)
QString displayIdentifier(const QScreen* screen);

} // namespace WindowController
