// SPDX-License-Identifier: GPL-3.0-or-later
#include "X11WindowHints.h"

#include <QGuiApplication>
#include <QWindow>
#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace X11WindowHints {

void showOnAllDesktops(QWindow* window)
{
    auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->display())
        return;
    Display* display = x11->display();
    const auto id = static_cast<::Window>(window->winId());

    const unsigned long allDesktops = 0xFFFFFFFFul;
    XChangeProperty(display, id, XInternAtom(display, "_NET_WM_DESKTOP", False), XA_CARDINAL, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(&allDesktops), 1);

    // Qt merges these with its own states (stay on top) when it maps the window.
    const Atom states[] = {
        XInternAtom(display, "_NET_WM_STATE_STICKY", False),
        XInternAtom(display, "_NET_WM_STATE_SKIP_TASKBAR", False),
        XInternAtom(display, "_NET_WM_STATE_SKIP_PAGER", False),
    };
    XChangeProperty(display, id, XInternAtom(display, "_NET_WM_STATE", False), XA_ATOM, 32, PropModeAppend,
                    reinterpret_cast<const unsigned char*>(states), 3);
    XFlush(display);
}

} // namespace X11WindowHints
