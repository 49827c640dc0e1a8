// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "BreakStyle.h"

#include <QObject>

// The chosen break style, kept under "break_style" as its number. A stored value that names
// no style reads as relaxation. The setter notifies on every assignment.
class PrefStyleState : public QObject {
    Q_OBJECT
    Q_PROPERTY(
        int breakStyleRawValue READ breakStyleRawValue WRITE setBreakStyleRawValue NOTIFY breakStyleChanged)
    // For the pickers: every style's description, in the order of their numbers.
    Q_PROPERTY(QStringList styleDescriptions READ styleDescriptions CONSTANT)
    // The chosen style's sentences.
    Q_PROPERTY(QStringList prompts READ prompts NOTIFY breakStyleChanged)

public:
    static constexpr const char breakStyleKey[] = "break_style";

    explicit PrefStyleState(QObject* parent = nullptr);

    BreakStyle breakStyle() const;
    void setBreakStyle(BreakStyle style);

    int breakStyleRawValue() const { return breakStyle().rawValue(); }
    // Values that name no style are ignored.
    void setBreakStyleRawValue(int rawValue);

    static QStringList styleDescriptions();
    QStringList prompts() const { return breakStyle().prompts(); }

signals:
    void breakStyleChanged();
};
