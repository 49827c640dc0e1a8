// SPDX-License-Identifier: GPL-3.0-or-later
#include "PointerMonitor.h"

#include "MutterIdleMonitor.h"
#include "WaylandIdleMonitor.h"
#include "X11PointerMonitor.h"
#include "logging/Logger.h"

#include <QGuiApplication>

PointerMonitor* PointerMonitor::create(std::chrono::milliseconds idleTimeout, QObject* parent)
{
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
        auto* monitor = new X11PointerMonitor(parent);
        if (monitor->start()) {
            logger().info(QStringLiteral("pointer idleness from the X server's input events"));
            return monitor;
        }
        delete monitor;
    } else {
        // Without X11 nobody sees the pointer outside their own windows: the compositor tells
        // of idleness instead, through the Wayland protocol or, on GNOME, over D-Bus.
        auto* wayland = new WaylandIdleMonitor(parent);
        if (wayland->start(idleTimeout)) {
            logger().info(QStringLiteral("pointer idleness from the compositor's idle notifications (") +
                          wayland->protocol() + QLatin1Char(')'));
            return wayland;
        }
        delete wayland;
        auto* monitor = new MutterIdleMonitor(parent);
        if (monitor->start(idleTimeout)) {
            logger().info(QStringLiteral("pointer idleness from GNOME's idle monitor"));
            return monitor;
        }
        delete monitor;
    }
    logger().info(QStringLiteral("no pointer monitor on the ") + QGuiApplication::platformName() +
                  QStringLiteral(" platform: pointer idleness does not stop the cycle"));
    return nullptr;
}
