// SPDX-License-Identifier: GPL-3.0-or-later
#include "X11WindowHints.h"

#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QWindow>
#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace X11WindowHints {
namespace {

Display* x11Display()
{
    auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->display() : nullptr;
}

void setRole(QWindow* window, const QByteArray& role)
{
    Display* display = x11Display();
    if (!display)
        return;
    XChangeProperty(display, static_cast<::Window>(window->winId()),
                    XInternAtom(display, "WM_WINDOW_ROLE", False), XA_STRING, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(role.constData()), int(role.size()));
    XFlush(display);
}

// Sets the role again whenever Qt makes the window's native window anew.
class RoleKeeper final : public QObject {
public:
    RoleKeeper(QWindow* window, QByteArray role) : QObject(window), m_role(std::move(role))
    {
        window->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::PlatformSurface &&
            static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() ==
                QPlatformSurfaceEvent::SurfaceCreated)
            setRole(static_cast<QWindow*>(watched), m_role);
        return false;
    }

private:
    QByteArray m_role;
};

} // namespace

void keepRole(QWindow* window, const QString& role)
{
    if (!x11Display())
        return;
    // Latin-1, as the property's type says.
    new RoleKeeper(window, role.toLatin1()); // owned by the window
    if (window->handle())
        setRole(window, role.toLatin1());
}

void showOnAllDesktops(QWindow* window)
{
    Display* display = x11Display();
    if (!display)
        return;
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

void returnToAllDesktops(QWindow* window)
{
    Display* display = x11Display();
    if (!display)
        return;
    XEvent message{};
    message.xclient.type = ClientMessage;
    message.xclient.window = static_cast<::Window>(window->winId());
    message.xclient.message_type = XInternAtom(display, "_NET_WM_DESKTOP", False);
    message.xclient.format = 32;
    message.xclient.data.l[0] = long(0xFFFFFFFFul); // every desktop
    message.xclient.data.l[1] = 2;                  // as a pager would ask: managers comply
    XSendEvent(display, DefaultRootWindow(display), False, SubstructureRedirectMask | SubstructureNotifyMask,
               &message);
    XFlush(display);
}

bool isWithdrawn(QWindow* window)
{
    Display* display = x11Display();
    if (!display)
        return false;
    // Managers set WM_STATE on the windows they manage and remove it when they let one go.
    const Atom wmState = XInternAtom(display, "WM_STATE", False);
    Atom type = None;
    int format = 0;
    unsigned long items = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    const int status = XGetWindowProperty(display, static_cast<::Window>(window->winId()), wmState, 0, 2,
                                          False, wmState, &type, &format, &items, &after, &data);
    if (data)
        XFree(data);
    return status == Success && type == None;
}

} // namespace X11WindowHints
