// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

// Tells observers outside the cycle (scripts on the bus) that working, the manual pause or
// the break windows may have changed. Countdown text changes come from the TicktackStates.
class StateChanges : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

signals:
    void changed();
};
