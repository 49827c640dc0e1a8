// SPDX-License-Identifier: GPL-3.0-or-later
#include "SettingsView.h"

#include "SettingsWindow.h"
#include "appinfo/AppInfo.h"
#include "break/IconFont.h"
#include "break/QmlEngine.h"
#include "cycle/AppState.h"
#include "history/HistoryModel.h"
#include "history/HistoryStore.h"
#include "preferences/PrefState.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>

namespace SettingsView {

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
    HistoryStore* historyStore = SettingsWindow::historyStoreToShow();
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

void install()
{
    SettingsWindow::openInThisProcessWith(&show);
}

void show()
{
    QQuickWindow* window = settingsWindow();
    if (!window)
        window = makeSettingsWindow();
    if (!window)
        return; // the view's errors are in the log; there is nothing to show
    window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->requestActivate();
}

} // namespace SettingsView
