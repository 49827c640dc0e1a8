// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HoldSource.h"

#include <QList>
#include <memory>

// Everything that can hold a due break, as one: holding while any of them holds, with the reason
// of the first that does. Made only while holding breaks is switched on; each condition the
// desktop cannot report is left out (and said once in the log).
class HoldConditions final : public HoldSource {
    Q_OBJECT

public:
    // Makes the conditions of this desktop: full-screen windows on X11, the inhibitors of the
    // session manager and of power management, and Do Not Disturb of GNOME, KDE and XFCE.
    static std::unique_ptr<HoldSource> make();

    // The conditions given, for tests and desktops of their own.
    explicit HoldConditions(QList<HoldSource*> conditions, QObject* parent = nullptr);

    QString reason() const override;

private:
    bool anyHolds() const;

    QList<HoldSource*> m_conditions;
};
