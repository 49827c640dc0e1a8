// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hold/HoldSource.h"

// What holds a break in the cycle's tests: the real conditions (full-screen windows, inhibitors,
// Do Not Disturb) have tests of their own; here the cycle's answer to any of them is what counts.
// The newest one made is `current`, until it goes.
class TestHoldSource : public HoldSource {
public:
    static inline TestHoldSource* current = nullptr;
    static inline int made = 0;

    TestHoldSource()
    {
        current = this;
        ++made;
    }
    ~TestHoldSource() override
    {
        if (current == this)
            current = nullptr;
    }
    bool holding() const override { return m_holding; }
    QString reason() const override { return m_holding ? QStringLiteral("A video call is on") : QString(); }
    void set(bool holding)
    {
        m_holding = holding;
        emit holdingChanged();
    }

private:
    bool m_holding = false;
};
