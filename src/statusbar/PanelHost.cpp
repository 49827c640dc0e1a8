#include "PanelHost.h"

#include <QFile>

namespace PanelHost {

bool drawsLabel(const QString& processName)
{
    // Watchers of panels known to draw the label. Every other panel (KDE Plasma, XFCE's status
    // tray, waybar, …) shows the icon only and gets the minutes as a badge.
    static const char* const labelHosts[] = {
        "gnome-shell",                           // GNOME's AppIndicator extension
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

} // namespace PanelHost
