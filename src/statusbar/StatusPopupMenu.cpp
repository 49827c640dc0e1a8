// SPDX-License-Identifier: GPL-3.0-or-later
#include "StatusPopupMenu.h"

#include "PanelHost.h"
#include "StatusMenu.h"
#include "StatusMenuItem.h"

#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QScreen>
#include <QPointer>

namespace {

void present(QAction* action, const StatusMenuItem& item)
{
    // "&" marks a mnemonic in Qt; a literal one is written twice.
    QString text = item.title();
    action->setText(text.replace(u'&', QStringLiteral("&&")));
    action->setEnabled(item.isEnabled());
    action->setIcon(QIcon::fromTheme(item.iconName()));
    if (!item.keyEquivalent().isEmpty())
        action->setShortcut(QKeySequence(QStringLiteral("Ctrl+") + item.keyEquivalent()));
    action->setShortcutVisibleInContextMenu(true);
}

} // namespace

StatusPopupMenu::StatusPopupMenu(StatusMenu& menu, QWidget* parent) : QMenu(parent), m_menu(menu)
{
    setObjectName(QStringLiteral("statusPopupMenu"));
    connect(&m_menu, &StatusMenu::layoutChanged, this, &StatusPopupMenu::rebuild);
    rebuild();
}

void StatusPopupMenu::openAt(const QPoint& given)
{
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.append(screen->geometry());
    const QPoint point = PanelHost::menuPosition(given, QCursor::pos(), screens);
    const QScreen* screen = QGuiApplication::screenAt(point);
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen) {
        popup(point);
        return;
    }
    popup(PanelHost::menuTopLeft(point, sizeHint(), screen->geometry(), screen->availableGeometry()));
}

void StatusPopupMenu::rebuild()
{
    clear();
    for (StatusMenuItem* item : m_menu.items()) {
        if (item->isSeparator()) {
            addSeparator();
            continue;
        }
        QAction* action = addAction(QString());
        present(action, *item);
        QPointer<StatusMenuItem> entry = item;
        connect(item, &StatusMenuItem::changed, action, [action, item] { present(action, *item); });
        // Run after the menu has closed: an action may open a window or end the program.
        connect(action, &QAction::triggered, item, [entry] {
            QMetaObject::invokeMethod(
                entry,
                [entry] {
                    if (entry)
                        entry->trigger();
                },
                Qt::QueuedConnection);
        });
    }
}
