// SPDX-License-Identifier: GPL-3.0-or-later
#include "WindowController.h"

#include "BreakWindowGuard.h"
#include "IconFont.h"
#include "QmlEngine.h"
#include "ReducedMotion.h"
#include "WaylandOverlayLayer.h"
#include "WaylandShortcutsInhibitor.h"
#include "X11WindowHints.h"
#include "appinfo/AppInfo.h"
#include "cycle/AppState.h"
#include "cycle/BreakScreen.h"
#include "cycle/PromptState.h"
#include "cycle/TicktackState.h"
#include "logging/Logger.h"
#include "preferences/PrefState.h"

#include <QGuiApplication>
#include <QPropertyAnimation>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QSet>
#include <QTimer>

#include <functional>
#include <memory>

namespace WindowController {
namespace {

const char breakWindowName[] = "breakWindow";
// The property that tells which screen a break window belongs to.
const char screenKeyName[] = "screenKey";
bool breakShown = false;
// What the views show; the cycle's own objects unless another is set.
QObject* viewPrompt = nullptr;
QObject* viewCountdown = nullptr;
const char fadeName[] = "fade";
// Whether the compositor's key bindings were asked for the window's surface as shown now.
const char keysAskedName[] = "keysAsked";

QString screenKeyOf(const QWindow* window)
{
    return window->property(screenKeyName).toString();
}

// Break windows are closed, not destroyed: the window list is their registry, so the next
// break on the same screen finds and reuses its window by its screen's key.
QQuickWindow* findWindow(const QString& key)
{
    for (QWindow* window : QGuiApplication::allWindows()) {
        auto* quickWindow = qobject_cast<QQuickWindow*>(window);
        if (quickWindow && window->objectName() == QLatin1String(breakWindowName) &&
            screenKeyOf(window) == key)
            return quickWindow;
    }
    return nullptr;
}

// Wayland has no window opacity: there the window is transparent and its content fades, which
// looks the same.
bool fadesWholeWindows()
{
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

QObject* fadeTarget(QQuickWindow* window)
{
    return fadesWholeWindows() ? static_cast<QObject*>(window) : window->contentItem();
}

void stopFade(QQuickWindow* window)
{
    if (auto* running = window->findChild<QPropertyAnimation*>(QLatin1String(fadeName))) {
        running->setObjectName(QString()); // it lingers until deleted later
        running->stop();
    }
}

void fade(QQuickWindow* window, qreal to)
{
    // A new fade replaces one still running, so a quick close and reopen do not fight.
    stopFade(window);
    QObject* target = fadeTarget(window);
    auto* animation = new QPropertyAnimation(target, "opacity", window);
    animation->setObjectName(QLatin1String(fadeName));
    animation->setDuration(1000);
    animation->setStartValue(target->property("opacity"));
    animation->setEndValue(to);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void present(QQuickWindow* window)
{
    X11WindowHints::showOnAllDesktops(window);
    // Full screen rather than a plain window of the screen's size: window managers keep plain
    // windows out of the panels' space, and Wayland lets no client place its windows at all.
    // Not showFullScreen(): it also asks for the focus, which belongs to the primary screen's window.
    window->setWindowStates(Qt::WindowFullScreen);
    // Shown anew, it has a new surface: the compositor's key bindings are asked for that one.
    WaylandShortcutsInhibitor::forget(window);
    window->setProperty(keysAskedName, false);
    window->setVisible(true);
    WaylandOverlayLayer::placeShown(window);
    window->raise();
    // A surface of the overlay layer gets the keyboard without Qt's focus, and the compositors
    // that offer the layer answer at once: asked now. A full-screen window is asked for once it
    // has the keyboard (holdKeysWhileFocused).
    if (WaylandOverlayLayer::holds(window))
        window->setProperty(keysAskedName, WaylandShortcutsInhibitor::inhibit(window));
}

QScreen* ownScreen(const QQuickWindow* window);

// A break window whose surface the compositor took away opens anew while the break lasts; one
// whose screen went away goes with it.
void reopenClosed(QWindow* window)
{
    if (!breakShown || !window->isVisible())
        return;
    if (!ownScreen(static_cast<QQuickWindow*>(window))) {
        window->hide();
        return;
    }
    logger().info(QStringLiteral("the break window ") + screenKeyOf(window) +
                  QStringLiteral(" put back: closed by the compositor"));
    window->hide();
    present(static_cast<QQuickWindow*>(window));
}

QQuickItem* makeBreakView()
{
    QObject* view =
        QmlEngine::create(QStringLiteral("BreakView"),
                          {
                              {QStringLiteral("promptState"),
                               QVariant::fromValue(viewPrompt ? viewPrompt : &AppState::promptState())},
                              {QStringLiteral("breakState"),
                               QVariant::fromValue(viewCountdown ? viewCountdown : &AppState::breakState())},
                          });
    auto* item = qobject_cast<QQuickItem*>(view);
    if (!item)
        delete view;
    return item;
}

// The window's title is the break's own ("Short break"), set by its view: it is what a screen
// reader says as the break opens.
QQuickWindow* newBreakWindow(const QRect& frame, const QString& key, QScreen* screen)
{
    QmlEngine::chooseRenderer();
    auto* window = new QQuickWindow;
    window->setObjectName(QLatin1String(breakWindowName));
    window->setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    if (fadesWholeWindows()) {
        window->setColor(QColor(0xAA, 0xAA, 0xAA)); // light grey, hidden under the view
    } else {
        QSurfaceFormat format = window->format();
        format.setAlphaBufferSize(8);
        window->setFormat(format);
        window->setColor(Qt::transparent);
    }
    window->setProperty(screenKeyName, key);
    // Tools and window-manager rules tell the screens' windows apart by their role.
    X11WindowHints::keepRole(window, QStringLiteral("break-") + key);
    window->setScreen(screen);
    window->setGeometry(frame);
    WaylandOverlayLayer::adopt(window, reopenClosed);
    return window;
}

bool hasView(const QQuickWindow* window)
{
    return !window->contentItem()->childItems().isEmpty();
}

bool isFractional(qreal ratio)
{
    return !qFuzzyCompare(ratio, qreal(qRound(ratio)));
}

// The key of the screen's break window: its display identifier, and from the second screen
// of one identifier on (screens without a name, or two of one name, which some Wayland
// compositors give) its place among them, so that every screen has a window of its own.
QString screenKey(const QScreen* screen)
{
    const QString displayId = displayIdentifier(screen);
    int place = 1;
    for (const QScreen* other : QGuiApplication::screens()) {
        if (other == screen)
            break;
        place += displayIdentifier(other) == displayId;
    }
    return place == 1 ? displayId : QStringLiteral("%1 (%2)").arg(displayId).arg(place);
}

// The break window's frame on the screen. At a fractional scale the screen's size in logical
// pixels is rounded, and a window of that size can end a device pixel short of the monitor's
// edge; one logical pixel more always reaches it (the rest lies under the next screen's break
// window or off the desktop). Window managers fit full-screen windows to the monitor anyway.
QRect frameFor(const QScreen* screen)
{
    QRect frame = screen->geometry();
    if (isFractional(screen->devicePixelRatio()))
        frame.adjust(0, 0, 1, 1);
    return frame;
}

// A window found again by its key may stem from before the screen changed (another size,
// unplugged and plugged back): it follows the screen as it is now.
void fitToScreen(QQuickWindow* window, QScreen* screen)
{
    if (window->screen() != screen)
        window->setScreen(screen);
    const QRect frame = frameFor(screen);
    if (window->geometry() != frame)
        window->setGeometry(frame);
}

// The screen's break window with its view, made as needed; null when the view cannot be made:
// a window without its view would cover the screen with no way out.
QQuickWindow* window(QScreen* screen)
{
    const QString key = screenKey(screen);
    QQuickWindow* existing = findWindow(key);
    if (existing && hasView(existing))
        return existing;
    // The view first: making the engine chooses the renderer the window will use.
    QQuickItem* item = makeBreakView();
    if (!item)
        return nullptr;
    QQuickWindow* window = existing ? existing : newBreakWindow(frameFor(screen), key, screen);
    item->setParent(window);
    item->setParentItem(window->contentItem());
    return window;
}

// Hands back the window's full-screen buffer once the break is over: 8 MB per 1080p screen,
// which Qt keeps for the window's lifetime. The window and its view stay, hidden, so the next break finds
// them by their screen's key (making the view anew at every break cost more time than the memory it held was
// worth).
void release(QQuickWindow* window)
{
    if (!hasView(window))
        return; // never drawn: nothing to hand back
    // The buffer follows the window's size when a frame is drawn. Without its native window a
    // new size applies at once, so one frame drawn off screen at one pixel shrinks the buffer;
    // the frame is then put back for the next break.
    // X11 only: a Wayland window without its surface cannot draw that frame (the program
    // stops answering).
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return;
    const QRect frame = window->geometry();
    window->destroy();
    // OpenGL's buffers go with the native window; the software renderer's stay with the window.
    if (QQuickWindow::graphicsApi() == QSGRendererInterface::Software) {
        window->resize(1, 1);
        window->grabWindow();
    }
    // The native window comes back now, not at the next break, so that the window stays in
    // the window manager's and the tools' lists as a closed break window.
    window->create();
    window->setGeometry(frame);
}

// The screen a break window belongs to: the one whose key it carries; null when that screen
// went away.
QScreen* ownScreen(const QQuickWindow* window)
{
    for (QScreen* screen : QGuiApplication::screens()) {
        if (screenKey(screen) == screenKeyOf(window))
            return screen;
    }
    return nullptr;
}

bool isPrimary(const QQuickWindow* window)
{
    return ownScreen(window) == QGuiApplication::primaryScreen();
}

QList<QQuickWindow*> shownBreakWindows()
{
    QList<QQuickWindow*> windows;
    for (QWindow* window : QGuiApplication::allWindows()) {
        if (window->objectName() == QLatin1String(breakWindowName) && window->isVisible())
            windows << static_cast<QQuickWindow*>(window);
    }
    return windows;
}

BreakWindowGuard& guard()
{
    static auto* guard = new BreakWindowGuard(
        {
            .breakShown = [] { return breakShown; },
            .nameOf = [](const QQuickWindow* window) { return screenKeyOf(window); },
            .frameOf =
                [](const QQuickWindow* window) {
                    const QScreen* screen = ownScreen(window);
                    return screen ? frameFor(screen) : window->geometry();
                },
            .putBack =
                [](QQuickWindow* window) {
                    QScreen* screen = ownScreen(window);
                    if (!screen)
                        return;
                    // A window the manager let go of is mapped anew, with the hints of the
                    // start; one it still has is asked back onto every desktop. On Wayland a
                    // window out of sight (another workspace, minimised) is made anew: a new
                    // full-screen window opens where the person is looking.
                    const bool x11 = QGuiApplication::platformName() == QLatin1String("xcb");
                    if (x11 ? X11WindowHints::isWithdrawn(window) : !window->isExposed())
                        window->hide();
                    else
                        X11WindowHints::returnToAllDesktops(window);
                    fitToScreen(window, screen);
                    present(window);
                    if (isPrimary(window))
                        window->requestActivate();
                },
            .takeFocusBack =
                [] {
                    // Wayland lets no client raise its windows: there they open anew, on top.
                    const bool x11 = QGuiApplication::platformName() == QLatin1String("xcb");
                    for (QQuickWindow* window : shownBreakWindows()) {
                        if (!x11)
                            window->hide();
                        present(window);
                        if (isPrimary(window))
                            window->requestActivate();
                    }
                },
        },
        qApp);
    return *guard;
}

} // namespace

QString displayIdentifier(const QScreen* screen)
{
    const QString name = screen ? screen->name() : QString();
    return name.isEmpty() ? QStringLiteral("0") : name;
}

bool isBreakShown()
{
    return breakShown;
}

QList<QQuickWindow*> breakWindows()
{
    QList<QQuickWindow*> windows;
    if (!breakShown)
        return windows;
    for (QScreen* screen : QGuiApplication::screens()) {
        if (QQuickWindow* w = findWindow(screenKey(screen)))
            windows << w;
    }
    return windows;
}

void setViewState(QObject* prompt, QObject* countdown)
{
    viewPrompt = prompt;
    viewCountdown = countdown;
}

bool prepareBreak()
{
    for (QScreen* screen : QGuiApplication::screens()) {
        QQuickWindow* w = window(screen);
        if (!w)
            return false;
        fitToScreen(w, screen);
        w->create();
    }
    return true;
}

// The compositor's own key bindings wait while a break window has the keyboard. They are asked
// for the window that has it, when it gets it, and not for another while the compositor has yet
// to answer: one that asks the person first (GNOME) asks once, about one window, not again for
// each screen's.
void holdKeysWhileFocused(QWindow* focus)
{
    if (!breakShown || !focus || focus->objectName() != QLatin1String(breakWindowName) ||
        focus->property(keysAskedName).toBool() || WaylandShortcutsInhibitor::awaitingAnswer())
        return;
    // Asked again once the compositor answers: the window that has the keyboard then may not
    // have been asked, and the keyboard may not have come back from the compositor's question.
    focus->setProperty(keysAskedName, WaylandShortcutsInhibitor::inhibit(focus, [] {
                           holdKeysWhileFocused(QGuiApplication::focusWindow());
                           guard().checkFocus();
                       }));
}

// A Wayland program learns that its window went out of sight (minimised, on another workspace)
// only when the compositor stops answering its frames, and a break window draws once a second.
// What takes a window out of sight moves the keyboard too: then every full-screen break window
// draws at once, so that one out of sight is found 400 ms later rather than up to 1.4 s.
void drawAfterFocusChange()
{
    if (!breakShown || !QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return;
    for (QQuickWindow* window : shownBreakWindows()) {
        if (!WaylandOverlayLayer::holds(window))
            window->update();
    }
}

// Counts the breaks shown, so that a wait of one break does nothing in the next.
int breaksShown = 0;

// Opens `last` and gives it the keyboard once every other of `windows` has handed its first
// frame to the compositor, or after half a second (a first frame can be slow under load),
// whichever comes first; only in the same break, and only while its screen is there.
void openAfterTheOthersFirstFrame(QQuickWindow* last, const QList<QQuickWindow*>& windows,
                                  const std::function<void(QQuickWindow*)>& open)
{
    struct Wait {
        QSet<QQuickWindow*> others;
        QList<QMetaObject::Connection> connections;
        bool done = false;
    };
    auto wait = std::make_shared<Wait>();
    const auto openLast = [wait, last, open, breakNumber = breaksShown] {
        if (std::exchange(wait->done, true))
            return;
        for (const QMetaObject::Connection& connection : std::as_const(wait->connections))
            QObject::disconnect(connection);
        if (!breakShown || breakNumber != breaksShown || !ownScreen(last))
            return;
        open(last);
        last->raise();
        last->requestActivate();
    };
    for (QQuickWindow* w : windows) {
        if (w == last)
            continue;
        wait->others.insert(w);
        wait->connections << QObject::connect(
            w, &QQuickWindow::frameSwapped, last,
            [wait, openLast, w] {
                wait->others.remove(w);
                if (wait->others.isEmpty())
                    openLast();
            },
            Qt::QueuedConnection);
    }
    QTimer::singleShot(500, last, openLast);
}

bool showBreak(Entrance entrance)
{
    QList<QQuickWindow*> windows;
    for (QScreen* screen : QGuiApplication::screens()) {
        QQuickWindow* w = window(screen);
        if (!w) {
            for (QQuickWindow* made : windows)
                made->hide();
            return false;
        }
        fitToScreen(w, screen);
        windows << w;
    }
    static const auto focusWatch =
        QObject::connect(qApp, &QGuiApplication::focusWindowChanged, &holdKeysWhileFocused);
    static const auto frameKick =
        QObject::connect(qApp, &QGuiApplication::focusWindowChanged, &drawAfterFocusChange);
    breakShown = true;
    ++breaksShown;
    guard().breakStarts();
    bool still = entrance == Entrance::AtOnce;
    if (!still && ReducedMotion::requested()) {
        logger().info(
            QStringLiteral("the break appears without its fade: the desktop asks for less animation"));
        still = true;
    }
    const auto open = [still](QQuickWindow* w) {
        guard().watch(w);
        stopFade(w);
        fadeTarget(w)->setProperty("opacity", still ? 1.0 : 0.0);
        present(w);
        if (!still)
            fade(w, 1.0);
    };
    QQuickWindow* primary = findWindow(screenKey(QGuiApplication::primaryScreen()));
    // A compositor that lets no program take the keyboard (a Wayland window without an
    // activation token) gives it to the window it maps last: there the primary screen's window
    // opens once the others have handed over their first frame. Not on the overlay layer, where
    // the primary's window alone asks for the keyboard.
    const bool primaryLast = primary && windows.size() > 1 &&
                             QGuiApplication::platformName().startsWith(QLatin1String("wayland")) &&
                             !WaylandOverlayLayer::holds(primary);
    for (QQuickWindow* w : windows) {
        if (!(primaryLast && w == primary))
            open(w);
    }
    if (primaryLast) {
        openAfterTheOthersFirstFrame(primary, windows, open);
    } else if (primary) {
        // The primary screen's break window takes the keyboard focus.
        primary->raise();
        primary->requestActivate();
    }
    return true;
}

void closeBreak()
{
    breakShown = false;
    WaylandShortcutsInhibitor::releaseAll();
    // Every screen has its break window from here on, shown or not (no view is made for
    // it: that waits for a break to show).
    for (QScreen* screen : QGuiApplication::screens()) {
        const QString key = screenKey(screen);
        if (!findWindow(key))
            newBreakWindow(frameFor(screen), key, screen)->create();
    }
    // Every break window goes, the one of a screen unplugged during the break too (Qt moved it
    // to another screen, where it must not outlast the break). Closed at once: the break is
    // over now.
    for (QWindow* window : QGuiApplication::allWindows()) {
        if (window->objectName() != QLatin1String(breakWindowName))
            continue;
        auto* quickWindow = static_cast<QQuickWindow*>(window);
        // A fade-in still running would go on drawing a window nobody sees.
        stopFade(quickWindow);
        window->hide();
        release(quickWindow);
    }
    // The script heap's garbage of the break goes too, once the views have seen the end.
    QTimer::singleShot(0, [] { QmlEngine::releaseMemory(); });
}

namespace {

class BreakWindows final : public BreakScreen {
public:
    bool isShown() const override { return isBreakShown(); }

protected:
    bool showWindows() override { return showBreak(); }
    void closeWindows() override { closeBreak(); }
};

} // namespace

void install()
{
    static BreakWindows windows;
    AppState::setBreakScreen(&windows);
}

} // namespace WindowController
