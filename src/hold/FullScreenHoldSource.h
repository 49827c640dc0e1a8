// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HoldSource.h"

class QSocketNotifier;
struct _XDisplay; // NOLINT(bugprone-reserved-identifier): Xlib's own name for Display

// Holds while the active window of another program is full screen (X11): the root window's
// _NET_ACTIVE_WINDOW and that window's _NET_WM_STATE, followed through property-change events
// on a connection of its own. Wayland shows no program another's windows, so there is none there.
class FullScreenHoldSource : public HoldSource {
    Q_OBJECT

public:
    explicit FullScreenHoldSource(QObject* parent = nullptr);
    ~FullScreenHoldSource() override;

    // Opens the connection and reads the present state; false without an X server.
    bool start();

    QString reason() const override;

private:
    void readEvents();
    // Follows the active window anew and works out whether it holds.
    void update();
    unsigned long activeWindow() const;
    bool isFullScreen(unsigned long window) const;
    bool isOurs(unsigned long window) const;

    _XDisplay* m_display = nullptr;
    QSocketNotifier* m_notifier = nullptr;
    unsigned long m_watched = 0;
    unsigned long m_activeAtom = 0;
    unsigned long m_stateAtom = 0;
    unsigned long m_fullScreenAtom = 0;
    unsigned long m_pidAtom = 0;
};
