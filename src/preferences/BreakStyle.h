// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QStringList>
#include <optional>

// The two built-in kinds of short-break prompt, each with its ten sentences.
class BreakStyle {
    Q_GADGET
    Q_PROPERTY(int rawValue READ rawValue CONSTANT)
    Q_PROPERTY(QString desc READ desc CONSTANT)
    Q_PROPERTY(QStringList prompts READ prompts CONSTANT)

public:
    enum Value { relaxation = 0, struggle = 1 };
    Q_ENUM(Value)

    BreakStyle(Value value = relaxation) : m_value(value) {}

    // Exactly 0 and 1 name a style; anything else names none.
    static std::optional<BreakStyle> fromRawValue(qint64 rawValue);
    static QList<BreakStyle> allCases() { return {relaxation, struggle}; }

    Value value() const { return m_value; }
    int rawValue() const { return int(m_value); }
    // "Relaxation" or "Struggle".
    QString desc() const;
    // The style's sentences in their fixed order (not translated).
    QStringList prompts() const;

    friend bool operator==(BreakStyle a, BreakStyle b) { return a.m_value == b.m_value; }

private:
    Value m_value;
};

inline size_t qHash(BreakStyle style, size_t seed = 0)
{
    return ::qHash(style.rawValue(), seed);
}
