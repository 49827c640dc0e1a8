// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelHost.h"

#include <QFile>

#include <cstdlib>

namespace PanelHost {

bool drawsLabel(const QString& processName)
{
    // Watchers of panels known to draw the label. Every other panel (KDE Plasma, XFCE's status
    // tray, waybar, …) shows the icon only and gets the minutes as a badge.
    static const char* const labelHosts[] = {
        "gnome-shell",                           // GNOME's AppIndicator extension
        "mate-panel",                            // MATE's own notification area
        "indicator-application-service",         // Ubuntu/Unity, MATE and XFCE indicator applets
        "ayatana-indicator-application-service", // the Ayatana applets
    };
    if (processName.isEmpty())
        return false;
    for (const char* host : labelHosts) {
        // The kernel cuts process names to 15 bytes.
        if (QString::fromLatin1(host).left(15) == processName)
            return true;
    }
    return false;
}

QString processName(quint32 pid)
{
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

} // namespace PanelHost
