// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>
#include <optional>

// The program's own icon font: two pictograms in the private-use area, U+E64B the wooden fish
// and U+E64C its mallet. The font sits in the resources as "iconfont" and is registered with
// the font database on first use, once.
class IconFont {
public:
    enum Value { muyu, muyugun };

    IconFont(Value value) : m_value(value) {}

    // Exactly the two one-character texts name a glyph.
    static std::optional<IconFont> fromRawValue(const QString& rawValue);
    QString rawValue() const;

    // The family to draw the glyphs with, "iconfont"; registers the font on first use. A missing
    // or unreadable font is a broken build and ends the process.
    static QString name();

    // Registers the font file at `path`; ends the process when it is missing or unreadable.
    static void registerFont(const QString& path);
    // How often the font was registered in this process (once at most).
    static int registrations();

    // The glyph drawn into a square image of `size` pixels, in the default text colour.
    QImage loadIcon(int size) const;

    friend bool operator==(IconFont a, IconFont b) { return a.m_value == b.m_value; }

private:
    Value m_value;
};
