// SPDX-License-Identifier: GPL-3.0-or-later
#include "StatusItemExporter.h"

#include "DBusMenu.h"
#include "StatusItem.h"
#include "StatusNotifierItem.h"
#include "StatusPopupMenu.h"
#include "TrayIcon.h"
#include "notifications/PanelAbsenceNotice.h"

#include <QGuiApplication>
#include <QPointer>

namespace StatusItemExporter {
namespace {

StatusPopupMenu* popupMenu(StatusItem& item)
{
    static QPointer<StatusPopupMenu> menu;
    if (!menu)
        menu = new StatusPopupMenu(*item.menu());
    return menu;
}

QPointer<TrayIcon> trayIcon;

void showTrayIcon(StatusItem& item, const QString& why)
{
    if (trayIcon)
        return;
    PanelAbsenceNotice::noStatusNotifierPanel(why);
    // The classic tray is an X11 window protocol: elsewhere only a StatusNotifierWatcher can
    // show the item, and Qt's tray icon would only wait for an X11 tray that cannot come.
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return;
    trayIcon = new TrayIcon(item, popupMenu(item), &item);
}

} // namespace

void start(StatusItem& item)
{
    static bool started = false;
    if (started)
        return;
    started = true;

    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        showTrayIcon(item, QStringLiteral("no D-Bus session bus"));
        return;
    }

    auto* menu = new DBusMenu(*item.menu(), &item);
    auto* notifierItem = new StatusNotifierItem(item, bus, QLatin1String(DBusMenu::objectPath), &item);
    if (!menu->exportOn(bus) || !notifierItem->exportAndRegister()) {
        showTrayIcon(item, QStringLiteral("the status item's D-Bus paths are taken"));
        return;
    }
    QObject::connect(notifierItem, &StatusNotifierItem::menuRequested, &item,
                     [&item](const QPoint& position) { popupMenu(item)->openAt(position); });
    // A panel that comes later takes the item over from the tray icon, and gives it back when
    // it goes: the item is never nowhere.
    QObject::connect(notifierItem, &StatusNotifierItem::registered, &item, [] {
        delete trayIcon;
        PanelAbsenceNotice::panelFound();
    });
    QObject::connect(notifierItem, &StatusNotifierItem::watcherLost, &item, [&item] {
        showTrayIcon(item, QStringLiteral("the StatusNotifierWatcher left the session bus"));
    });
    if (!notifierItem->hasWatcher())
        showTrayIcon(item, QStringLiteral("no StatusNotifierWatcher on the session bus"));
}

} // namespace StatusItemExporter
