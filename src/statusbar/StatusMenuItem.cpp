// SPDX-License-Identifier: GPL-3.0-or-later
#include "StatusMenuItem.h"

#include "SymbolIcon.h"

StatusMenuItem* StatusMenuItem::separator(QObject* parent)
{
    auto* item = new StatusMenuItem({}, parent);
    item->m_separator = true;
    return item;
}

StatusMenuItem::StatusMenuItem(QString title, QObject* parent) : QObject(parent), m_title(std::move(title)) {}

void StatusMenuItem::setTitle(const QString& title)
{
    m_title = title;
    emit changed();
}

void StatusMenuItem::setImage(const QString& symbolName)
{
    m_image = symbolName;
    emit changed();
}

void StatusMenuItem::setAccessibleDescription(const QString& description)
{
    m_accessibleDescription = description;
    emit changed();
}

void StatusMenuItem::setEnabled(bool enabled)
{
    if (enabled == m_enabled)
        return;
    m_enabled = enabled;
    emit changed();
}

QString StatusMenuItem::iconName() const
{
    return SymbolIcon::freedesktopName(m_image);
}

void StatusMenuItem::setAction(std::function<void()> action)
{
    m_action = std::move(action);
    emit changed();
}

void StatusMenuItem::trigger()
{
    if (m_action)
        m_action();
}
