// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What every process of Lulltide sets up right after its application object: its name and
// language, its icons, and where it finds its other program.
namespace ApplicationLook {

// The name and version Qt shows, the translations, and the desktop entry's name.
void nameTheApplication();

// The windows' icon, and an icon theme that has the icons the menus and tabs name.
void useTheDesktopsIcons();

// The program that shows the break windows and the settings window: the one beside this
// program's file when there is one (a build tree), else the installed one.
QString viewsProgram();

} // namespace ApplicationLook
