// SPDX-License-Identifier: GPL-3.0-or-later
#include "StatusBarController.h"

#include "AppInfo.h"
#include "Config.h"
#include "Feedback.h"
#include "StatusItem.h"
#include "StatusItemExporter.h"
#include "StatusMenu.h"
#include "StatusMenuItem.h"
#include "app/AppControl.h"
#include "app/AppState.h"
#include "break/PromptState.h"
#include "break/WindowController.h"
#include "preferences/PrefState.h"
#include "timer/TicktackState.h"

#include <QCoreApplication>
#include <QFile>

namespace StatusBarController {
namespace {

const QString muyuImage = QStringLiteral(":/icons/muyu.svg");

StatusMenuItem* entry(const QString& title, const QString& image, const QString& key,
                      std::function<void()> action)
{
    auto* item = new StatusMenuItem(title);
    if (!image.isEmpty())
        item->setImage(image);
    item->setKeyEquivalent(key);
    item->setAction(std::move(action));
    return item;
}

StatusMenu* buildMenu()
{
    auto* menu = new StatusMenu;
    menu->addItem(new StatusMenuItem(headerTitle(AppInfo::infos())));
    menu->addItem(StatusMenuItem::separator());

    // The middle click and the tray menu's shortcut come here too; the one toggle they share
    // also takes down a break screen, whose countdown a pause stops.
    auto* pause = entry({}, {}, QStringLiteral("p"), [] { AppControl::togglePause(); });
    pause->setTag(AppState::pauseItemTag);
    menu->addItem(pause);
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "Settings..."),
                        QStringLiteral("gearshape.circle"), QStringLiteral(","),
                        [] { WindowController::showPrefView(); }));
    menu->addItem(StatusMenuItem::separator());
#if LULLTIDE_UPDATE_CHECKS
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "Check for Updates..."),
                        QStringLiteral("arrow.counterclockwise.icloud"), {},
                        [] { WindowController::showUpdater(); }));
#endif
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "Feedback..."),
                        QStringLiteral("mail.stack"), {}, [] { Feedback::compose(); }));
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "About..."),
                        QStringLiteral("info.circle"), {}, [] { WindowController::showAbout(); }));
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "Quit"), QStringLiteral("escape"),
                        QStringLiteral("q"), [] { QCoreApplication::quit(); }));
    return menu;
}

// Runs for every value either half of the work countdown takes, with the latest of both.
void countdownChanged(StatusItem& item)
{
    TicktackState& work = AppState::workState();
    QString title = work.timeString();
    if (work.timesUp()) {
        title.clear();
        AppState::promptState().showBreak();
    }
    if (!AppState::prefState().showTime())
        title.clear();
    item.setTitle(title);
}

// The tooltip keeps the countdown also when the title does not show it.
void updateToolTip(StatusItem& item)
{
    const TicktackState& work = AppState::workState();
    item.setToolTip(work.timesUp() ? QString() : work.timeString());
}

StatusItem* buildItem()
{
    auto* item = new StatusItem;
    if (QFile::exists(muyuImage))
        item->setImagePath(muyuImage);
    item->setMenu(&menu());
    TicktackState& work = AppState::workState();
    QObject::connect(&work, &TicktackState::timesUpChanged, item, [item] { countdownChanged(*item); });
    QObject::connect(&work, &TicktackState::timeStringChanged, item, [item] { countdownChanged(*item); });
    QObject::connect(&work, &TicktackState::timesUpChanged, item, [item] { updateToolTip(*item); });
    QObject::connect(&work, &TicktackState::timeStringChanged, item, [item] { updateToolTip(*item); });
    // The subscription starts with the values the countdown already has.
    countdownChanged(*item);
    updateToolTip(*item);
    StatusItemExporter::start(*item);
    return item;
}

} // namespace

QString headerTitle(const QVariantMap& infos)
{
    return AppInfo::name(infos) + QStringLiteral(" - v") + AppInfo::version(infos) + u'(' +
           AppInfo::build(infos) + u')';
}

StatusMenu& menu()
{
    static StatusMenu* statusMenu = buildMenu();
    return *statusMenu;
}

StatusItem& item()
{
    static StatusItem* statusItem = buildItem();
    return *statusItem;
}

void showTime(bool show)
{
    QString title;
    const TicktackState& work = AppState::workState();
    if (show && !work.timesUp())
        title = work.timeString();
    item().setTitle(title);
}

} // namespace StatusBarController
