#include "StatusItem.h"

StatusItem::StatusItem(QObject* parent) : QObject(parent) {}

void StatusItem::setTitle(const QString& title)
{
    m_title = title;
    emit titleChanged(m_title);
}
