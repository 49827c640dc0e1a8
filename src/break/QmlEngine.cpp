// SPDX-License-Identifier: GPL-3.0-or-later
#include "QmlEngine.h"

#include "logging/Logger.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QOpenGLContext>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QScreen>

#include <malloc.h>

namespace QmlEngine {

namespace {

QQmlEngine* made = nullptr;

bool anyScreenScaledByAFraction()
{
    for (const QScreen* screen : QGuiApplication::screens()) {
        const qreal ratio = screen->devicePixelRatio();
        if (!qFuzzyCompare(ratio, qreal(qRound(ratio))))
            return true;
    }
    return false;
}

bool openGLWorks()
{
    QOpenGLContext context;
    return context.create();
}

} // namespace

void chooseRenderer()
{
    // Our views are text and flat shapes: Qt Quick's software renderer draws them without
    // an OpenGL context per monitor, and puts the first break screen up several times
    // sooner (see bench/break-latency). But at a fractional scale (Xft.dpi 100, 120, 144…,
    // QT_SCALE_FACTOR 1.25) it paints whole logical pixels only: the last row and column of
    // device pixels stay unpainted and a moving item leaves a stale row behind. There Qt
    // Quick's OpenGL renderer draws every pixel, when OpenGL works at all.
    // QT_QUICK_BACKEND still chooses another.
    static bool chosen = false;
    if (chosen)
        return;
    chosen = true;
    if (!qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        return;
    if (anyScreenScaledByAFraction()) {
        if (openGLWorks())
            return;
        logger().warning(QStringLiteral("no OpenGL: windows are drawn in software, in whole logical pixels"));
    }
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

QQmlEngine& engine()
{
    static QQmlEngine* qmlEngine = [] {
        chooseRenderer();
        // Fusion draws its controls from the desktop's palette, light or dark, and looks at
        // home beside other Linux programs; QT_QUICK_CONTROLS_STYLE still chooses another.
        if (qEnvironmentVariableIsEmpty("QT_QUICK_CONTROLS_STYLE"))
            QQuickStyle::setStyle(QStringLiteral("Fusion"));
        auto* created = new QQmlEngine;
        created->addImportPath(QStringLiteral("qrc:/"));
        // The windows and the engine live as long as the process; they go as it ends (while
        // the platform is still there), so that the JavaScript heap is handed back in order.
        qAddPostRoutine([] {
            deleteWindows();
            delete &engine();
        });
        made = created;
        return created;
    }();
    return *qmlEngine;
}

void deleteWindows()
{
    for (QWindow* window : QGuiApplication::allWindows()) {
        if (!qobject_cast<QQuickWindow*>(window))
            continue;
        // What reacts to a window's signals must not meet it half destroyed.
        window->disconnect();
        delete window;
    }
}

void releaseMemory()
{
    if (!made)
        return;
    made->collectGarbage();
#ifdef __GLIBC__
    // glibc keeps freed pages for the next allocation; between breaks there is none for long.
    malloc_trim(0);
#endif
}

QUrl viewUrl(const QString& viewName)
{
    return QUrl(QStringLiteral("qrc:/Lulltide/%1.qml").arg(viewName));
}

QObject* create(const QString& viewName, const QVariantMap& properties)
{
    QQmlComponent component(&engine(), viewUrl(viewName));
    if (!component.isReady()) {
        logger().error(QStringLiteral("cannot make the view ") + viewName + QStringLiteral(": ") +
                       component.errorString().trimmed());
        return nullptr;
    }
    QObject* view = component.createWithInitialProperties(properties);
    if (!view)
        logger().error(QStringLiteral("cannot make the view ") + viewName + QStringLiteral(": ") +
                       component.errorString().trimmed());
    return view;
}

} // namespace QmlEngine
