// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "PointerMonitor.h"

class QSocketNotifier;
struct _XDisplay; // NOLINT(bugprone-reserved-identifier): Xlib's own name for Display

// Pointer activity on X11: XInput2 raw motion and button events of the root window, and XKB
// modifier-state changes, read from a connection of its own inside the event loop.
class X11PointerMonitor : public PointerMonitor {
    Q_OBJECT

public:
    explicit X11PointerMonitor(QObject* parent = nullptr);
    ~X11PointerMonitor() override;

    // Opens the connection and asks for the events; false when the X server lacks XInput2 or XKB.
    bool start();

private:
    void readEvents();

    _XDisplay* m_display = nullptr;
    QSocketNotifier* m_notifier = nullptr;
    int m_xinputOpcode = 0;
    int m_xkbEventBase = 0;
};
