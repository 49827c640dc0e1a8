// SPDX-License-Identifier: GPL-3.0-or-later
#include "SettingsWindow.h"

#include "AboutDialog.h"
#include "SettingsProcess.h"
#include "cycle/AppState.h"
#include "preferences/PrefState.h"
#if LULLTIDE_UPDATE_CHECKS
#include "updates/Updater.h"
#endif

#include <QCoreApplication>

namespace SettingsWindow {

namespace {

HistoryStore* historyStore = nullptr;
SettingsProcess* settingsProcess = nullptr;
void (*openHere)() = nullptr;

} // namespace

void openInThisProcessWith(void (*open)())
{
    openHere = open;
}

HistoryStore* historyStoreToShow()
{
    return historyStore;
}

void showThrough(const QString& program)
{
    delete settingsProcess;
    settingsProcess = new SettingsProcess(program, QCoreApplication::instance());
}

void setHistoryStore(HistoryStore* store)
{
    historyStore = store;
}

#if LULLTIDE_UPDATE_CHECKS
namespace {

Updater& updaterController()
{
    // Whether to check by itself is read here, once: a later change counts from the next launch.
    static Updater* updater = new Updater(AppState::prefState().autoCheckUpdate());
    return *updater;
}

} // namespace

void setup()
{
    updaterController();
}

Updater& updater()
{
    return updaterController();
}
#else
void setup() {}
#endif

bool sendAction(const QString& action)
{
    // The settings window answers to both names it has had.
    if (action != QLatin1String("showSettingsWindow:") && action != QLatin1String("showPreferencesWindow:"))
        return false;
    if (settingsProcess)
        settingsProcess->show();
    else if (openHere)
        openHere();
    return true;
}

void show()
{
    sendAction(QStringLiteral("showSettingsWindow:"));
}

#if LULLTIDE_UPDATE_CHECKS
void showUpdater()
{
    updaterController().checkForUpdates();
}
#endif

void showAbout()
{
    AboutDialog::showShared();
}

} // namespace SettingsWindow
