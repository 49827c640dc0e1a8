// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class StatusMenu;

// What the panel shows for Lulltide: an image with a title beside it, a tooltip and a menu.
// The setters notify on every assignment; the panel exporters skip what did not change.
class StatusItem : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)
    Q_PROPERTY(QString imagePath READ imagePath WRITE setImagePath NOTIFY imagePathChanged)
    Q_PROPERTY(QString toolTip READ toolTip WRITE setToolTip NOTIFY toolTipChanged)

public:
    explicit StatusItem(QObject* parent = nullptr);

    QString title() const { return m_title; }
    void setTitle(const QString& title);

    // The image drawn before the title.
    QString imageName() const { return QStringLiteral("muyu"); }
    // Where the image is (an SVG file or resource); empty when there is none, and the item
    // shows its title only.
    QString imagePath() const { return m_imagePath; }
    void setImagePath(const QString& path);

    // The text shown when the pointer rests on the item: the work countdown, or why there is none.
    QString toolTip() const { return m_toolTip; }
    void setToolTip(const QString& toolTip);

    // What the panel shows in place of a countdown that stands still: "Paused" when paused by
    // hand, "Stopped" when the lock or idleness stopped it; empty while it counts.
    QString pausedText() const { return m_pausedText; }
    void setPausedText(const QString& text);

    StatusMenu* menu() const { return m_menu; }
    void setMenu(StatusMenu* menu) { m_menu = menu; }

signals:
    void titleChanged(const QString& title);
    void imagePathChanged();
    void toolTipChanged();
    void pausedTextChanged();

private:
    QString m_title;
    QString m_imagePath;
    QString m_toolTip;
    QString m_pausedText;
    StatusMenu* m_menu = nullptr;
};
