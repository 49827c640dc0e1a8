// SPDX-License-Identifier: GPL-3.0-or-later
#include "SettingsWindow.h"

#include "AboutDialog.h"
#include "appinfo/AppInfo.h"
#include "break/IconFont.h"
#include "break/QmlEngine.h"
#include "cycle/AppState.h"
#include "history/HistoryModel.h"
#include "history/HistoryStore.h"
#include "preferences/PrefState.h"
#if LULLTIDE_UPDATE_CHECKS
#include "updates/Updater.h"
#endif

#include <QCoreApplication>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>

namespace SettingsWindow {

namespace {

HistoryStore* historyStore = nullptr;

} // namespace

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

namespace {

const char settingsWindowName[] = "settingsWindow";

QQuickWindow* settingsWindow()
{
    for (QWindow* window : QGuiApplication::allWindows()) {
        if (window->objectName() == QLatin1String(settingsWindowName))
            return qobject_cast<QQuickWindow*>(window);
    }
    return nullptr;
}

QQuickWindow* makeSettingsWindow()
{
    const QVariantMap appInfo{
        {QStringLiteral("name"), AppInfo::name()},
        {QStringLiteral("versionLine"), QStringLiteral("v%1(%2)").arg(AppInfo::version(), AppInfo::build())},
        {QStringLiteral("releaseNotesLink"), AppInfo::releaseNotesLink()},
        {QStringLiteral("copyright"), AppInfo::copyright()},
        {QStringLiteral("iconFontFamily"), IconFont::name()},
        {QStringLiteral("glyph"), IconFont(IconFont::muyu).rawValue()},
    };
    // Without a history file of the program's own (tests of other tabs), the tab reads one of
    // the window's: the default place, opened only when the tab asks.
    auto* model = historyStore ? new HistoryModel(*historyStore) : nullptr;
    if (!model) {
        static HistoryStore* fallback = new HistoryStore;
        model = new HistoryModel(*fallback);
    }
    QObject* view =
        QmlEngine::create(QStringLiteral("PreferencesView"),
                          {
                              {QStringLiteral("prefState"), QVariant::fromValue(&AppState::prefState())},
                              {QStringLiteral("appInfo"), appInfo},
                              {QStringLiteral("historyModel"), QVariant::fromValue(model)},
                          });
    auto* item = qobject_cast<QQuickItem*>(view);
    if (!item) {
        delete view;
        delete model;
        return nullptr;
    }
    auto* window = new QQuickWindow;
    window->setObjectName(QLatin1String(settingsWindowName));
    window->setTitle(QCoreApplication::translate("SettingsWindow", "Settings"));
    window->setMinimumSize(QSize(480, 400));
    window->resize(560, 600);
    item->setParent(window);
    model->setParent(window);
    item->setParentItem(window->contentItem());
    // Closed, the window keeps its object for the next time but lets its scene go.
    QObject::connect(window, &QWindow::visibleChanged, window, [window](bool visible) {
        if (!visible)
            window->releaseResources();
    });
    return window;
}

} // namespace

bool sendAction(const QString& action)
{
    // The settings window answers to both names it has had.
    if (action != QLatin1String("showSettingsWindow:") && action != QLatin1String("showPreferencesWindow:"))
        return false;
    QQuickWindow* window = settingsWindow();
    if (!window)
        window = makeSettingsWindow();
    if (!window)
        return true; // the view's errors are in the log; there is nothing to show
    window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->requestActivate();
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
