// SPDX-License-Identifier: GPL-3.0-or-later
#include "StatusBarController.h"

#include "Config.h"
#include "Feedback.h"
#include "StatusItem.h"
#include "StatusItemExporter.h"
#include "StatusMenu.h"
#include "StatusMenuItem.h"
#include "appinfo/AppInfo.h"
#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/CycleControl.h"
#include "cycle/CycleEvents.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "preferences/PrefState.h"
#include "settings/SettingsWindow.h"

#include <QCoreApplication>
#include <QFile>

namespace StatusBarController {
namespace {

const QString muyuImage = QStringLiteral(":/icons/muyu.svg");
constexpr int postponeItemTag = 9002;

QString tr(const char* text)
{
    return QCoreApplication::translate("StatusBarController", text);
}

StatusMenuItem* entry(const QString& title, const QString& image, const QString& key,
                      const QString& description, std::function<void()> action)
{
    auto* item = new StatusMenuItem(title);
    item->setAccessibleDescription(description);
    if (!image.isEmpty())
        item->setImage(image);
    item->setKeyEquivalent(key);
    item->setAction(std::move(action));
    return item;
}

// The pause entry says what it does next: "- Stop -" while working, "- Wrok -" when stopped.
void updatePauseEntry(StatusMenu& statusMenu)
{
    StatusMenuItem* item = statusMenu.itemWithTag(AppState::pauseItemTag);
    if (!item)
        return;
    if (AppState::working()) {
        item->setImage(QStringLiteral("stop.circle"));
        item->setAccessibleDescription(tr("Pause the breaks"));
        item->setTitle(QCoreApplication::translate("AppState", "- Stop -"));
    } else {
        item->setImage(QStringLiteral("play.circle"));
        item->setAccessibleDescription(tr("Start the breaks again"));
        // Spelled so on purpose: users know the entry by this text.
        item->setTitle(QCoreApplication::translate("AppState", "- Wrok -"));
    }
}

StatusMenu* buildMenu()
{
    auto* menu = new StatusMenu;
    menu->addItem(new StatusMenuItem(headerTitle(AppInfo::infos())));
    menu->addItem(StatusMenuItem::separator());

    // The middle click and the tray menu's shortcut come here too; the one toggle they share
    // also takes down a break screen, whose countdown a pause stops.
    auto* pause =
        entry({}, {}, QStringLiteral("p"), {}, [] { CycleControl::togglePause(CycleControl::Origin::Menu); });
    pause->setTag(AppState::pauseItemTag);
    menu->addItem(pause);
    updatePauseEntry(*menu);
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "Settings..."),
                        QStringLiteral("gearshape.circle"), QStringLiteral(","), tr("Open the settings"),
                        [] { SettingsWindow::show(); }));
    menu->addItem(StatusMenuItem::separator());
#if LULLTIDE_UPDATE_CHECKS
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "Check for Updates..."),
                        QStringLiteral("arrow.counterclockwise.icloud"), {}, tr("Look for a newer version"),
                        [] { SettingsWindow::showUpdater(); }));
#endif
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "Feedback..."),
                        QStringLiteral("mail.stack"), {}, tr("Write to the makers of Lulltide"),
                        [] { Feedback::compose(); }));
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "About..."),
                        QStringLiteral("info.circle"), {}, tr("About Lulltide"),
                        [] { SettingsWindow::showAbout(); }));
    menu->addItem(entry(QCoreApplication::translate("StatusBarController", "Quit"), QStringLiteral("escape"),
                        QStringLiteral("q"), tr("Quit Lulltide"), [] { QCoreApplication::quit(); }));
    return menu;
}

// The countdown, empty once the work period has ended, or how long a held break has waited.
QString currentTitle()
{
    const BreakGate& gate = AppState::breakGate();
    if (gate.held())
        return gate.heldTimeString();
    const TicktackState& work = AppState::workState();
    return work.timesUp() ? QString() : work.timeString();
}

// Runs for every value either half of the work countdown takes, with the latest of both.
void countdownChanged(StatusItem& item)
{
    item.setTitle(AppState::prefState().showTime() ? currentTitle() : QString());
}

// The tooltip keeps the countdown also when the title does not show it, and says why nothing
// counts: a frozen countdown would look like a broken one.
void updateToolTip(StatusItem& item)
{
    const BreakGate& gate = AppState::breakGate();
    QString tip;
    if (AppState::manualPause()) {
        tip = tr("Paused");
    } else if (!AppState::working()) {
        switch (AppState::stopCause()) {
        case AppState::StopCause::Lock:
            tip = tr("Stopped while the screen is locked");
            break;
        case AppState::StopCause::Idle:
            tip = tr("Stopped: no activity");
            break;
        default:
            tip = tr("Stopped");
            break;
        }
    } else if (gate.held()) {
        tip = tr("Break waiting %1").arg(gate.heldTimeString());
        if (!gate.holdReason().isEmpty())
            tip += QStringLiteral(": ") + gate.holdReason();
        if (gate.holdSecondsLeft() >= 0)
            tip += u'\n' + tr("It comes at %1 at the latest.")
                               .arg(TicktackController::clockTimeIn(gate.holdSecondsLeft()));
    } else {
        tip = currentTitle();
    }
    item.setToolTip(tip);
    // Stopped, the countdown keeps its last figure; a period that counts while the cycle is
    // marked stopped (a new day's greeting after an unlock) is no standstill.
    if (AppState::manualPause())
        item.setPausedText(tr("Paused"));
    else if (!AppState::working() && !TicktackController::isRunning())
        item.setPausedText(tr("Stopped"));
    else
        item.setPausedText({});
}

// The entry is in the menu only while postponing is on, right after the pause entry, so the
// menu is otherwise the usual one; it is greyed out once the postpones in a row are used up.
void updatePostponeEntry()
{
    StatusMenu& statusMenu = menu();
    StatusMenuItem* postpone = statusMenu.itemWithTag(postponeItemTag);
    if (!AppState::prefState().allowPostpone()) {
        if (postpone)
            statusMenu.removeItem(postpone);
        return;
    }
    if (!postpone) {
        postpone = entry(QCoreApplication::translate("StatusBarController", "Postpone Break"),
                         QStringLiteral("clock.arrow.circlepath"), {}, tr("Postpone the coming break"),
                         [] { CycleControl::postpone(0); });
        postpone->setTag(postponeItemTag);
        const qsizetype pauseIndex =
            statusMenu.items().indexOf(statusMenu.itemWithTag(AppState::pauseItemTag));
        statusMenu.insertItem(pauseIndex + 1, postpone);
    }
    postpone->setEnabled(CycleControl::canPostpone());
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
    QObject::connect(&AppState::events(), &CycleEvents::changed, item, [item] {
        updateToolTip(*item);
        updatePostponeEntry();
    });
    // Whether a postpone would move the break changes as the countdown nears it.
    QObject::connect(&work, &TicktackState::timeStringChanged, item, &updatePostponeEntry);
    QObject::connect(&AppState::prefState(), &PrefState::showTimeChanged, item,
                     [] { showTime(AppState::prefState().showTime()); });
    BreakGate& gate = AppState::breakGate();
    QObject::connect(&gate, &BreakGate::changed, item, [item] {
        if (AppState::prefState().showTime())
            item->setTitle(currentTitle());
        updateToolTip(*item);
        updatePostponeEntry();
    });
    QObject::connect(&AppState::prefState(), &PrefState::allowPostponeChanged, item, &updatePostponeEntry);
    updatePostponeEntry();
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
    static StatusMenu* statusMenu = [] {
        StatusMenu* made = buildMenu();
        QObject::connect(&AppState::events(), &CycleEvents::changed, made,
                         [made] { updatePauseEntry(*made); });
        return made;
    }();
    return *statusMenu;
}

StatusItem& item()
{
    static StatusItem* statusItem = buildItem();
    return *statusItem;
}

void showTime(bool show)
{
    item().setTitle(show ? currentTitle() : QString());
}

} // namespace StatusBarController
