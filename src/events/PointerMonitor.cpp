#include "PointerMonitor.h"

#include "X11PointerMonitor.h"
#include "logging/Logger.h"

#include <QGuiApplication>

PointerMonitor* PointerMonitor::create(QObject* parent)
{
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
        auto* monitor = new X11PointerMonitor(parent);
        if (monitor->start())
            return monitor;
        delete monitor;
    }
    logger().info(QStringLiteral("no pointer monitor on the ") + QGuiApplication::platformName() +
                  QStringLiteral(" platform: pointer idleness does not stop the cycle"));
    return nullptr;
}
