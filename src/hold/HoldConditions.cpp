// SPDX-License-Identifier: GPL-3.0-or-later
#include "HoldConditions.h"

#include "DBusPropertyHoldSource.h"
#include "FullScreenHoldSource.h"
#include "GSettingsHoldSource.h"
#include "PlasmaWindowListHoldSource.h"
#include "PowerInhibitHoldSource.h"
#include "ToplevelListHoldSource.h"
#include "XfconfHoldSource.h"
#include "logging/Logger.h"

#include <QCoreApplication>
#include <QGuiApplication>

namespace {

// GNOME's session manager: bit 8 of InhibitedActions is "idle".
constexpr uint inhibitIdle = 8;

QString reasonText(const char* text)
{
    return QCoreApplication::translate("HoldSource", text);
}

} // namespace

std::unique_ptr<HoldSource> HoldConditions::make()
{
    QList<HoldSource*> conditions;
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
        auto* fullScreen = new FullScreenHoldSource;
        if (fullScreen->start())
            conditions << fullScreen;
        else
            delete fullScreen;
    } else {
        // The first window list the compositor offers: wlroots', then KWin's.
        WindowListHoldSource* windowList = nullptr;
        for (WindowListHoldSource* candidate : std::initializer_list<WindowListHoldSource*>{
                 new ToplevelListHoldSource(QGuiApplication::desktopFileName()),
                 new PlasmaWindowListHoldSource(QGuiApplication::desktopFileName())}) {
            if (!windowList && candidate->start())
                windowList = candidate;
            else
                delete candidate;
        }
        if (windowList) {
            logger().info(QStringLiteral("breaks are held for full-screen windows through the compositor's "
                                         "window list (%1)")
                              .arg(QLatin1String(windowList->protocol())));
            conditions << windowList;
        } else {
            logger().info(QStringLiteral("breaks are not held for full-screen windows here: the compositor "
                                         "shows no program another's windows"));
        }
    }

    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        auto* sessionManager = new DBusPropertyHoldSource(
            bus,
            {QStringLiteral("org.gnome.SessionManager"), QStringLiteral("/org/gnome/SessionManager"),
             QStringLiteral("org.gnome.SessionManager"), QStringLiteral("InhibitedActions"),
             [](const QVariant& value) {
                 return value.typeId() == QMetaType::UInt && (value.toUInt() & inhibitIdle) != 0;
             }},
            reasonText(QT_TRANSLATE_NOOP("HoldSource", "an application keeps the session awake")));
        auto* plasmaDoNotDisturb = new DBusPropertyHoldSource(
            bus,
            {QStringLiteral("org.freedesktop.Notifications"),
             QStringLiteral("/org/freedesktop/Notifications"),
             QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Inhibited"),
             [](const QVariant& value) { return value.typeId() == QMetaType::Bool && value.toBool(); }},
            reasonText(QT_TRANSLATE_NOOP("HoldSource", "Do Not Disturb is on")));
        auto* powerManagement = new PowerInhibitHoldSource(bus);
        auto* xfconf = new XfconfHoldSource(bus);
        for (DBusHoldSource* source : std::initializer_list<DBusHoldSource*>{sessionManager, powerManagement,
                                                                             plasmaDoNotDisturb, xfconf}) {
            source->start();
            conditions << source;
        }
    }

    auto* gnomeDoNotDisturb =
        new GSettingsHoldSource("org.gnome.desktop.notifications", "show-banners", false,
                                reasonText(QT_TRANSLATE_NOOP("HoldSource", "Do Not Disturb is on")));
    if (gnomeDoNotDisturb->start()) {
        conditions << gnomeDoNotDisturb;
    } else {
        delete gnomeDoNotDisturb;
        logger().info(QStringLiteral("GNOME's Do Not Disturb cannot be read: the schema "
                                     "org.gnome.desktop.notifications is not installed"));
    }
    return std::make_unique<HoldConditions>(conditions);
}

HoldConditions::HoldConditions(QList<HoldSource*> conditions, QObject* parent)
    : HoldSource(parent), m_conditions(std::move(conditions))
{
    for (HoldSource* condition : std::as_const(m_conditions)) {
        condition->setParent(this);
        connect(condition, &HoldSource::holdingChanged, this, [this] {
            const bool now = anyHolds();
            if (now != holding())
                setHolding(now);
            else if (now)
                emit holdingChanged(); // the reason alone changed: the tooltip says it
        });
    }
    setHolding(anyHolds());
}

bool HoldConditions::anyHolds() const
{
    for (const HoldSource* condition : m_conditions) {
        if (condition->holding())
            return true;
    }
    return false;
}

QString HoldConditions::reason() const
{
    for (const HoldSource* condition : m_conditions) {
        if (condition->holding())
            return condition->reason();
    }
    return {};
}
