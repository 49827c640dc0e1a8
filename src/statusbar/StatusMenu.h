// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QObject>

class StatusMenuItem;

// The status item's menu: an ordered list of entries that the panel exporter renders.
class StatusMenu : public QObject {
    Q_OBJECT

public:
    explicit StatusMenu(QObject* parent = nullptr);

    void addItem(StatusMenuItem* item);
    // Puts the entry at `index` of the order (the end when past it).
    void insertItem(qsizetype index, StatusMenuItem* item);
    void removeItem(StatusMenuItem* item);
    const QList<StatusMenuItem*>& items() const { return m_items; }
    StatusMenuItem* itemWithTag(int tag) const;

signals:
    // Entries were added or removed.
    void layoutChanged();
    // An entry's title, image or action changed.
    void itemChanged(StatusMenuItem* item);

private:
    QList<StatusMenuItem*> m_items;
};
