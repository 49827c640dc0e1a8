// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class StatusItem;

// Puts the status item into the desktop's panel.
namespace StatusItemExporter {

// As a StatusNotifierItem with its menu over D-Bus when a panel watches for such items; as a
// tray icon while none does (the item moves to the panel as soon as one appears). Once only.
void start(StatusItem& item);

} // namespace StatusItemExporter
