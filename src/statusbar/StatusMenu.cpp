// SPDX-License-Identifier: GPL-3.0-or-later
#include "StatusMenu.h"

#include "StatusMenuItem.h"

#include <algorithm>

StatusMenu::StatusMenu(QObject* parent) : QObject(parent) {}

void StatusMenu::addItem(StatusMenuItem* item)
{
    insertItem(m_items.size(), item);
}

void StatusMenu::insertItem(qsizetype index, StatusMenuItem* item)
{
    item->setParent(this);
    m_items.insert(std::clamp<qsizetype>(index, 0, m_items.size()), item);
    connect(item, &StatusMenuItem::changed, this, [this, item] { emit itemChanged(item); });
    emit layoutChanged();
}

void StatusMenu::removeItem(StatusMenuItem* item)
{
    if (!m_items.removeOne(item))
        return;
    item->disconnect(this);
    item->deleteLater();
    emit layoutChanged();
}

StatusMenuItem* StatusMenu::itemWithTag(int tag) const
{
    for (StatusMenuItem* item : m_items) {
        if (item->tag() == tag)
            return item;
    }
    return nullptr;
}
