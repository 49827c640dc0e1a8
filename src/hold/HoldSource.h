// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

// Something that can hold a break that is due: another program full screen, an application
// keeping the session from going idle, the desktop's Do Not Disturb. The cycle asks it whether
// a break may start now and hears from it when that changes; it never polls.
class HoldSource : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    virtual bool holding() const { return m_holding; }
    // Why a break waits, in words for the panel's tooltip; empty while not holding.
    virtual QString reason() const = 0;

signals:
    void holdingChanged();

protected:
    // Keeps the state and tells of a change; the same value again tells nothing.
    void setHolding(bool holding)
    {
        if (holding == m_holding)
            return;
        m_holding = holding;
        emit holdingChanged();
    }

private:
    bool m_holding = false;
};
