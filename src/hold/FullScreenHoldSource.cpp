// SPDX-License-Identifier: GPL-3.0-or-later
#include "FullScreenHoldSource.h"

#include "logging/Logger.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <unistd.h>

namespace {

Display* ownDisplay = nullptr;
XErrorHandler previousHandler = nullptr;

// A window can go between the event that names it and our question about it: such errors on our
// own connection are expected and ignored. Xlib's handler is process-wide, so anything else goes
// on to the handler that was there before.
int ignoreVanishedWindows(Display* display, XErrorEvent* error)
{
    if (display == ownDisplay)
        return 0;
    return previousHandler ? previousHandler(display, error) : 0;
}

// One property of a window as a list of 32-bit items (atoms, windows, cardinals).
QList<unsigned long> windowProperty(Display* display, Window window, Atom name, Atom type)
{
    Atom actualType = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    QList<unsigned long> values;
    if (XGetWindowProperty(display, window, name, 0, 64, False, type, &actualType, &format, &count, &after,
                           &data) == Success &&
        data && format == 32) {
        const auto* items = reinterpret_cast<const unsigned long*>(data);
        for (unsigned long i = 0; i < count; ++i)
            values << items[i];
    }
    if (data)
        XFree(data);
    return values;
}

} // namespace

FullScreenHoldSource::FullScreenHoldSource(QObject* parent) : HoldSource(parent) {}

FullScreenHoldSource::~FullScreenHoldSource()
{
    delete m_notifier;
    if (m_display) {
        XCloseDisplay(m_display);
        if (ownDisplay == m_display) {
            ownDisplay = nullptr;
            // The handler is the whole process's: the one that was there before comes back,
            // unless someone put their own over ours meanwhile.
            const XErrorHandler current = XSetErrorHandler(previousHandler);
            if (current != ignoreVanishedWindows)
                XSetErrorHandler(current);
            previousHandler = nullptr;
        }
    }
}

bool FullScreenHoldSource::start()
{
    m_display = XOpenDisplay(nullptr);
    if (!m_display)
        return false;
    ownDisplay = m_display;
    XErrorHandler installed = XSetErrorHandler(ignoreVanishedWindows);
    if (installed != ignoreVanishedWindows)
        previousHandler = installed;
    m_activeAtom = XInternAtom(m_display, "_NET_ACTIVE_WINDOW", False);
    m_stateAtom = XInternAtom(m_display, "_NET_WM_STATE", False);
    m_fullScreenAtom = XInternAtom(m_display, "_NET_WM_STATE_FULLSCREEN", False);
    m_pidAtom = XInternAtom(m_display, "_NET_WM_PID", False);
    XSelectInput(m_display, DefaultRootWindow(m_display), PropertyChangeMask);
    m_notifier = new QSocketNotifier(ConnectionNumber(m_display), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &FullScreenHoldSource::readEvents);
    update();
    readEvents();
    return true;
}

QString FullScreenHoldSource::reason() const
{
    return holding() ? QCoreApplication::translate("HoldSource", "another program is full screen")
                     : QString();
}

void FullScreenHoldSource::readEvents()
{
    // The questions update() asks read the socket too, and Xlib keeps any event that arrives
    // with an answer in its queue, where the socket notifier never sees it: read until the queue
    // stays empty.
    for (;;) {
        bool changed = false;
        while (XPending(m_display)) {
            XEvent event;
            XNextEvent(m_display, &event);
            if (event.type != PropertyNotify)
                continue;
            const Atom atom = event.xproperty.atom;
            if (atom == m_activeAtom || atom == m_stateAtom)
                changed = true;
        }
        if (!changed)
            return;
        update();
    }
}

void FullScreenHoldSource::update()
{
    const unsigned long active = activeWindow();
    // Only the active window's state is of interest: the last one's events are no longer asked.
    if (m_watched && active != m_watched)
        XSelectInput(m_display, m_watched, NoEventMask);
    m_watched = active;
    // Asked again even for the same id: a window that closed can hand its id to the next one
    // of another program, and the selection went with the old window.
    if (m_watched)
        XSelectInput(m_display, m_watched, PropertyChangeMask);
    const bool holding = m_watched && isFullScreen(m_watched) && !isOurs(m_watched);
    XFlush(m_display);
    setHolding(holding);
}

unsigned long FullScreenHoldSource::activeWindow() const
{
    const QList<unsigned long> values =
        windowProperty(m_display, DefaultRootWindow(m_display), m_activeAtom, XA_WINDOW);
    return values.isEmpty() ? 0 : values.constFirst();
}

bool FullScreenHoldSource::isFullScreen(unsigned long window) const
{
    return windowProperty(m_display, window, m_stateAtom, XA_ATOM).contains(m_fullScreenAtom);
}

bool FullScreenHoldSource::isOurs(unsigned long window) const
{
    const QList<unsigned long> pid = windowProperty(m_display, window, m_pidAtom, XA_CARDINAL);
    return !pid.isEmpty() && pid.constFirst() == static_cast<unsigned long>(::getpid());
}
