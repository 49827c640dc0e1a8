// SPDX-License-Identifier: GPL-3.0-or-later
#include "BreakWindowGuard.h"

#include "WaylandOverlayLayer.h"
#include "WaylandShortcutsInhibitor.h"
#include "logging/Logger.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QQuickWindow>

namespace {

// Long enough for a window manager's burst of events for one change to end (a minimise is an
// unmap, a state change and an expose), short enough to be back well within a second.
constexpr int settleMs = 150;

} // namespace

BreakWindowGuard::BreakWindowGuard(Host host, QObject* parent) : QObject(parent), m_host(std::move(host))
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleMs);
    connect(&m_settle, &QTimer::timeout, this, &BreakWindowGuard::putBackPending);
    m_focusSettle.setSingleShot(true);
    connect(&m_focusSettle, &QTimer::timeout, this, [this] {
        // Only a focus the break had and lost is taken back: where the desktop never gave it
        // (focus-stealing prevention), asking again and again would only make the break flicker.
        if (!m_host.breakShown() || !m_hadFocus || isBreakWindow(QGuiApplication::focusWindow()))
            return;
        // While the compositor asks the person whether the break may hold its key bindings
        // (GNOME), its question has the keyboard: taking it back would close the question with
        // the window it is about. Looked at again once it is answered (checkFocus).
        if (WaylandShortcutsInhibitor::awaitingAnswer())
            return;
        m_hadFocus = false;
        m_quietUntil.setRemainingTime(1000);
        logger().info(QStringLiteral("the break took the focus back from another window"));
        m_host.takeFocusBack();
    });
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &BreakWindowGuard::focusChanged);
}

void BreakWindowGuard::breakStarts()
{
    m_pending.clear();
    m_returning.clear();
    m_hadFocus = false;
    m_settle.stop();
    m_focusSettle.stop();
}

void BreakWindowGuard::watch(QQuickWindow* window)
{
    if (window->property("guarded").toBool())
        return;
    window->setProperty("guarded", true);
    window->installEventFilter(this);
}

bool BreakWindowGuard::eventFilter(QObject* watched, QEvent* event)
{
    // (A window being destroyed is no longer a QQuickWindow by the time its last events come.)
    auto* window = qobject_cast<QQuickWindow*>(watched);
    if (!window || !m_host.breakShown())
        return false;
    if (const auto returning = m_returning.constFind(window); returning != m_returning.cend()) {
        if (event->type() == QEvent::Close) {
            event->ignore();
            return true;
        }
        if (inPlace(window) || returning->hasExpired())
            m_returning.remove(window);
        else
            return false;
    }
    switch (event->type()) {
    case QEvent::Close:
        // Alt+F4, a window manager's close button, a compositor's kill binding: the break ends
        // by Skip, by its countdown or by the program, not by its window going.
        event->ignore();
        logger().info(QStringLiteral("the break window ") + m_host.nameOf(window) +
                      QStringLiteral(" stays: closing it does not end the break"));
        return true;
    case QEvent::WindowStateChange:
        if (window->windowStates() & Qt::WindowMinimized)
            schedule(window, QStringLiteral("minimised"));
        else if (!(window->windowStates() & Qt::WindowFullScreen))
            schedule(window, QStringLiteral("out of full screen"));
        break;
    case QEvent::Expose:
        // Shown but not exposed: unmapped behind the program's back (another desktop or
        // workspace, a minimise that came as an unmap). Not a window of the compositor's
        // overlay layer: it stays mapped until the compositor closes it, which the layer tells,
        // and reads as unexposed only when the compositor's frame callbacks are late (KWin's
        // desktop switch, a loaded machine); opening it anew would only let the keys through
        // while it is gone.
        if (window->isVisible() && !window->isExposed() && !WaylandOverlayLayer::holds(window))
            schedule(window, QStringLiteral("unmapped"));
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (window->isVisible() && !window->geometry().contains(m_host.frameOf(window)))
            schedule(window, QStringLiteral("moved off its screen"));
        break;
    default:
        break;
    }
    return false;
}

void BreakWindowGuard::checkFocus()
{
    focusChanged(QGuiApplication::focusWindow());
}

void BreakWindowGuard::schedule(QQuickWindow* window, const QString& why)
{
    QString& reasons = m_pending[window];
    if (!reasons.contains(why))
        reasons += (reasons.isEmpty() ? QString() : QStringLiteral(", ")) + why;
    if (!m_settle.isActive())
        m_settle.start();
}

bool BreakWindowGuard::inPlace(const QQuickWindow* window) const
{
    const Qt::WindowStates states = window->windowStates();
    // (A surface of the overlay layer is on screen while it is shown, exposed or not: see the
    // Expose case above.)
    const bool onScreen = window->isExposed() || WaylandOverlayLayer::holds(window);
    return window->isVisible() && onScreen && (states & Qt::WindowFullScreen) &&
           !(states & Qt::WindowMinimized) && window->geometry().contains(m_host.frameOf(window));
}

bool BreakWindowGuard::isBreakWindow(const QWindow* window)
{
    return window && qobject_cast<const QQuickWindow*>(window) &&
           window->objectName() == QLatin1String("breakWindow");
}

void BreakWindowGuard::focusChanged(QWindow* focus)
{
    if (!m_host.breakShown())
        return;
    if (isBreakWindow(focus)) {
        m_hadFocus = true;
        return;
    }
    // Checked once things settle (between two break windows the focus passes through none),
    // and not while a window of the break is on its way back.
    m_focusSettle.start(std::max<qint64>(settleMs, m_quietUntil.remainingTime()));
}

void BreakWindowGuard::putBackPending()
{
    const auto pending = std::exchange(m_pending, {});
    if (!m_host.breakShown())
        return;
    for (auto entry = pending.begin(); entry != pending.end(); ++entry) {
        QQuickWindow* window = entry.key();
        if (inPlace(window))
            continue; // back already: the manager undid what it did
        m_returning.insert(window, QDeadlineTimer(1000));
        m_quietUntil.setRemainingTime(1000);
        logger().info(QStringLiteral("the break window ") + m_host.nameOf(window) +
                      QStringLiteral(" put back: ") + entry.value());
        m_host.putBack(window);
    }
}
