// SPDX-License-Identifier: GPL-3.0-or-later
#include "StatusItem.h"

StatusItem::StatusItem(QObject* parent) : QObject(parent) {}

void StatusItem::setTitle(const QString& title)
{
    m_title = title;
    emit titleChanged(m_title);
}

void StatusItem::setImagePath(const QString& path)
{
    m_imagePath = path;
    emit imagePathChanged();
}

void StatusItem::setToolTip(const QString& toolTip)
{
    m_toolTip = toolTip;
    emit toolTipChanged();
}

void StatusItem::setPausedText(const QString& text)
{
    if (text == m_pausedText)
        return;
    m_pausedText = text;
    emit pausedTextChanged();
}
