// SPDX-License-Identifier: GPL-3.0-or-later
#include "X11PointerMonitor.h"

#include "logging/Logger.h"

#include <QSocketNotifier>
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

X11PointerMonitor::X11PointerMonitor(QObject* parent) : PointerMonitor(parent) {}

X11PointerMonitor::~X11PointerMonitor()
{
    delete m_notifier;
    if (m_display)
        XCloseDisplay(m_display);
}

bool X11PointerMonitor::start()
{
    // A connection of our own: the events asked for here must not reach Qt's.
    m_display = XOpenDisplay(nullptr);
    if (!m_display)
        return false;

    int event = 0;
    int error = 0;
    int major = 2;
    int minor = 0;
    if (!XQueryExtension(m_display, "XInputExtension", &m_xinputOpcode, &event, &error) ||
        XIQueryVersion(m_display, &major, &minor) != Success) {
        logger().info(QStringLiteral("the X server has no XInput 2"));
        return false;
    }
    int xkbOpcode = 0;
    int xkbMajor = XkbMajorVersion;
    int xkbMinor = XkbMinorVersion;
    if (!XkbQueryExtension(m_display, &xkbOpcode, &m_xkbEventBase, &error, &xkbMajor, &xkbMinor)) {
        logger().info(QStringLiteral("the X server has no XKB"));
        return false;
    }

    unsigned char bits[XIMaskLen(XI_LASTEVENT)] = {};
    XISetMask(bits, XI_RawMotion);
    XISetMask(bits, XI_RawButtonPress);
    XISetMask(bits, XI_RawButtonRelease);
    // A pointer moved by a program (a warp) makes no raw event; over the desktop's background the
    // root window's own motion events tell of it.
    XISetMask(bits, XI_Motion);
    XIEventMask mask{XIAllMasterDevices, int(sizeof bits), bits};
    XISelectEvents(m_display, DefaultRootWindow(m_display), &mask, 1);
    // Modifier keys count, other keys do not: only changes of the modifier state are asked for.
    XkbSelectEventDetails(m_display, XkbUseCoreKbd, XkbStateNotify, XkbModifierStateMask,
                          XkbModifierStateMask);
    XFlush(m_display);

    m_notifier = new QSocketNotifier(ConnectionNumber(m_display), QSocketNotifier::Read);
    connect(m_notifier, &QSocketNotifier::activated, this, &X11PointerMonitor::readEvents);
    return true;
}

void X11PointerMonitor::readEvents()
{
    bool active = false;
    while (XPending(m_display)) {
        XEvent event;
        XNextEvent(m_display, &event);
        // Raw events need no data: that something happened is enough.
        if ((event.xcookie.type == GenericEvent && event.xcookie.extension == m_xinputOpcode) ||
            event.type == m_xkbEventBase)
            active = true;
    }
    // One report for everything read at once: motion comes in bursts.
    if (active)
        emit activity();
}
