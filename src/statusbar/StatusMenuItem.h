// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <functional>

// One entry of the status menu, as the panel's menu exporter renders it.
// `image` is the logical symbol name (e.g. "stop.circle"), which is also the entry's accessible
// description; `iconName` is the freedesktop icon the panel draws for it.
class StatusMenuItem : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY changed)
    Q_PROPERTY(QString image READ image WRITE setImage NOTIFY changed)
    Q_PROPERTY(bool enabled READ isEnabled NOTIFY changed)

public:
    static StatusMenuItem* separator(QObject* parent = nullptr);
    explicit StatusMenuItem(QString title = {}, QObject* parent = nullptr);

    QString title() const { return m_title; }
    void setTitle(const QString& title);

    QString image() const { return m_image; }
    void setImage(const QString& symbolName);
    QString iconName() const;
    // What the entry does, in words for a screen reader (the title alone may be a symbol or,
    // as "- Wrok -", a word of the program's own).
    QString accessibleDescription() const { return m_accessibleDescription; }
    void setAccessibleDescription(const QString& description);

    // Pressed together with Control, e.g. "p".
    QString keyEquivalent() const { return m_keyEquivalent; }
    void setKeyEquivalent(const QString& key) { m_keyEquivalent = key; }

    int tag() const { return m_tag; }
    void setTag(int tag) { m_tag = tag; }

    bool isSeparator() const { return m_separator; }
    // An entry without an action is shown disabled, like a header.
    bool isEnabled() const { return !m_separator && bool(m_action) && m_enabled; }
    // An entry with an action can still be greyed out while it would do nothing.
    void setEnabled(bool enabled);

    void setAction(std::function<void()> action);
    void trigger();

signals:
    void changed();

private:
    QString m_title;
    QString m_image;
    QString m_keyEquivalent;
    QString m_accessibleDescription;
    int m_tag = 0;
    bool m_separator = false;
    bool m_enabled = true;
    std::function<void()> m_action;
};
