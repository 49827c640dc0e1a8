// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Tells a user whose desktop has no panel for our item where Lulltide is: a desktop
// notification, once per installation, until some panel shows the item again.
namespace PanelAbsenceNotice {

// The item is not in a panel of StatusNotifierItems (`why`); logs what shows it instead and,
// when not even a system tray exists, sends the notice unless it was sent before. The notice
// waits a few seconds for a panel that starts after us.
void noStatusNotifierPanel(const QString& why);

// A panel shows the item: a later loss of every panel is told again, and a notice still on the
// screen goes away.
void panelFound();

} // namespace PanelAbsenceNotice
