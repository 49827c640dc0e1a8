// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelHost.h"

#include <QFile>

#include <QSize>

#include <algorithm>
#include <cstdlib>

namespace PanelHost {

bool drawsLabel(const QString& processName)
{
    // Watchers of panels known to draw the label. Every other panel (KDE Plasma, XFCE's status
    // tray, waybar, …) shows the icon only and gets the minutes as a badge.
    static const char* const labelHosts[] = {
        "gnome-shell",                           // GNOME's AppIndicator extension
        "mate-panel",                            // MATE's panel
        "notification-area-applet",              // MATE's notification area, an applet of its own
        "indicator-application-service",         // Ubuntu/Unity, MATE and XFCE indicator applets
        "ayatana-indicator-application-service", // the Ayatana applets
    };
    if (processName.isEmpty())
        return false;
    for (const char* host : labelHosts) {
        const QString name = QString::fromLatin1(host);
        // The kernel's own name of a process is cut to 15 bytes.
        if (name == processName || (processName.size() == 15 && name.left(15) == processName))
            return true;
    }
    return false;
}

QString processName(quint32 pid)
{
    // The program's name as it was started, whole: the kernel's short name ("notification-ar")
    // would tell two panels apart by their first 15 bytes only.
    QFile cmdline(QStringLiteral("/proc/%1/cmdline").arg(pid));
    if (cmdline.open(QIODevice::ReadOnly)) {
        const QByteArray first = cmdline.read(4096).split('\0').value(0);
        QString name = QString::fromLocal8Bit(first.mid(first.lastIndexOf('/') + 1)).trimmed();
        if (!name.isEmpty())
            return name;
    }
    QFile comm(QStringLiteral("/proc/%1/comm").arg(pid));
    if (!comm.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(comm.readAll()).trimmed();
}

QPoint menuPosition(const QPoint& given, const QPoint& pointer, const QList<QRect>& screens)
{
    // A click on a panel item happens on a screen edge, under the pointer. Most panels give
    // that point; MATE's notification area gives it inside its own applet, near (0, 0) wherever
    // the panel is. A point off every screen edge, or away from the pointer, is not believed.
    constexpr int reach = 64; // a tall panel, and a wide item
    const bool nearPointer =
        std::abs(given.x() - pointer.x()) <= reach && std::abs(given.y() - pointer.y()) <= reach;
    bool onEdge = false;
    for (const QRect& screen : screens) {
        if (screen.contains(given) &&
            (given.x() - screen.left() < reach || screen.right() - given.x() < reach ||
             given.y() - screen.top() < reach || screen.bottom() - given.y() < reach))
            onEdge = true;
    }
    return onEdge && nearPointer ? given : pointer;
}

QPoint menuTopLeft(const QPoint& point, const QSize& size, const QRect& geometry, const QRect& given)
{
    const QRect available = given.intersected(geometry).isEmpty() ? geometry : given.intersected(geometry);
    constexpr int reach = 64; // a tall panel
    const auto along = [](int start, int length, int low, int high) {
        return std::max(low, std::min(start, high - length + 1));
    };
    const int x = along(point.x(), size.width(), geometry.left(), geometry.right());
    const int y = along(point.y(), size.height(), geometry.top(), geometry.bottom());
    const int toTop = point.y() - geometry.top();
    const int toBottom = geometry.bottom() - point.y();
    const int toLeft = point.x() - geometry.left();
    const int toRight = geometry.right() - point.x();

    // Which edge the panel is on: the strip the desktop keeps free of windows for it, where it
    // says so; else the nearest edge, a horizontal panel in a corner, as most are.
    enum class Edge { None, Top, Bottom, Left, Right } edge = Edge::None;
    if (point.y() > available.bottom())
        edge = Edge::Bottom;
    else if (point.y() < available.top())
        edge = Edge::Top;
    else if (point.x() < available.left())
        edge = Edge::Left;
    else if (point.x() > available.right())
        edge = Edge::Right;
    else if (std::min(toTop, toBottom) < reach)
        edge = toBottom <= toTop ? Edge::Bottom : Edge::Top;
    else if (std::min(toLeft, toRight) < reach)
        edge = toRight <= toLeft ? Edge::Right : Edge::Left;

    // How far the panel reaches into the screen: to the free area where the desktop keeps one,
    // and at least as far again as the point lies from the edge, and a row more: panels give
    // the item's middle, which in a panel of an even height lies a row nearer the edge.
    const auto thickness = [](int reserved, int distance) { return std::max(reserved, 2 * distance + 2); };
    switch (edge) {
    case Edge::Bottom:
        return {x, geometry.bottom() + 1 - thickness(geometry.bottom() - available.bottom(), toBottom) -
                       size.height()};
    case Edge::Top:
        return {x, geometry.top() + thickness(available.top() - geometry.top(), toTop)};
    case Edge::Left:
        return {geometry.left() + thickness(available.left() - geometry.left(), toLeft), y};
    case Edge::Right:
        return {geometry.right() + 1 - thickness(geometry.right() - available.right(), toRight) - size.width(),
                y};
    case Edge::None:
        break;
    }
    return {x, y};
}

} // namespace PanelHost
