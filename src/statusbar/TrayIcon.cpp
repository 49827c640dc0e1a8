// SPDX-License-Identifier: GPL-3.0-or-later
#include "TrayIcon.h"

#include "BadgeIcon.h"
#include "Config.h"
#include "StatusItem.h"
#include "StatusPopupMenu.h"
#include "cycle/CycleControl.h"

#include <QCursor>
#include <QIcon>
#include <QPixmap>
#include <QSystemTrayIcon>

TrayIcon::TrayIcon(StatusItem& item, StatusPopupMenu* menu, QObject* parent)
    : QObject(parent), m_item(item), m_menu(menu), m_tray(new QSystemTrayIcon)
{
    m_tray->setObjectName(QStringLiteral("trayIcon"));
    // Either click opens the menu, beside the panel as the item's menu on a panel does; the
    // middle click pauses or resumes, as there.
    connect(m_tray, &QSystemTrayIcon::activated, menu, [menu](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context)
            menu->openAt(QCursor::pos());
        else if (reason == QSystemTrayIcon::MiddleClick)
            CycleControl::togglePause(CycleControl::Origin::MiddleClick);
    });
    connect(&m_item, &StatusItem::imagePathChanged, this, &TrayIcon::updateIcon);
    connect(&m_item, &StatusItem::pausedTextChanged, this, &TrayIcon::updateIcon);
    connect(&m_item, &StatusItem::toolTipChanged, this, &TrayIcon::updateToolTip);
    updateIcon();
    updateToolTip();
    m_tray->show();
}

TrayIcon::~TrayIcon()
{
    delete m_tray;
}

void TrayIcon::updateIcon()
{
    QIcon icon;
    for (int size : {16, 22, 24, 32, 48}) {
        const QImage image = m_item.pausedText().isEmpty() ? BadgeIcon::draw(m_item.imagePath(), size, {})
                                                            : BadgeIcon::drawPaused(m_item.imagePath(), size);
        if (!image.isNull())
            icon.addPixmap(QPixmap::fromImage(image));
    }
    m_tray->setIcon(icon);
}

void TrayIcon::updateToolTip()
{
    QString text = QString::fromUtf8(Config::name);
    if (!m_item.toolTip().isEmpty())
        text += u'\n' + m_item.toolTip();
    if (text != m_tray->toolTip())
        m_tray->setToolTip(text);
}
