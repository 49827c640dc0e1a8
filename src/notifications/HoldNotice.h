// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "logging/SaidOnce.h"

#include <QObject>

class CycleEvents;
class TrackedNotification;

// The desktop notification when a due break is held: what holds it and when it comes at the
// latest. Withdrawn when the hold ends. The cycle tells a flapping holder once a minute at most,
// so this says it no more often.
class HoldNotice : public QObject {
    Q_OBJECT

public:
    explicit HoldNotice(CycleEvents& events, QObject* parent = nullptr);

    // "The break waits while another program is full screen. It comes at 14:05 at the latest."
    static QString body(const QString& reason, double secondsLeft);

private:
    void show(const QString& reason);

    TrackedNotification* m_notice;
    SaidOnce m_noServer;
};
