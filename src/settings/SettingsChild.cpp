// SPDX-License-Identifier: GPL-3.0-or-later
#include "SettingsChild.h"

#include "SettingsView.h"
#include "cycle/AppState.h"
#include "preferences/PrefState.h"
#include "preferences/PrefStyleState.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QJsonValue>
#include <QMetaProperty>
#include <QQuickWindow>
#include <QWindow>
#include <cstdio>

namespace {

bool isSetting(const QMetaProperty& property)
{
    return property.isWritable() && property.hasNotifySignal() &&
           !(property.metaType().flags() & QMetaType::PointerToQObject);
}

} // namespace

std::optional<int> SettingsChild::start()
{
    if (!m_channel.openToParent()) {
        std::fputs("--settings-window is for Lulltide's own use\n", stderr);
        return NotStartedByLulltide;
    }
    // Lulltide ended.
    connect(&m_channel, &ViewChannel::closed, qApp, &QCoreApplication::quit);
    connect(&m_channel, &ViewChannel::received, this, [](const QJsonObject& message) {
        if (message.value(QStringLiteral("raise")).toBool())
            SettingsView::show();
    });
    PrefState& prefs = AppState::prefState();
    forwardChanges(&prefs);
    forwardChanges(prefs.styleState());

    SettingsView::show();
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        auto* quickWindow = qobject_cast<QQuickWindow*>(window);
        if (!quickWindow || !window->isVisible())
            continue;
        // Lulltide hears when the first frame is on the screen (its benchmark does).
        connect(
            quickWindow, &QQuickWindow::frameSwapped, this,
            [this] { m_channel.send({{QStringLiteral("drawn"), true}}); }, Qt::SingleShotConnection);
        return std::nullopt; // it ends with the last window closed
    }
    return ViewCannotBeMade;
}

void SettingsChild::forwardChanges(QObject* settings)
{
    const QMetaObject* meta = settings->metaObject();
    const QMetaMethod changed = metaObject()->method(metaObject()->indexOfSlot("preferenceChanged()"));
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (isSetting(property))
            connect(settings, property.notifySignal(), this, changed, Qt::UniqueConnection);
    }
}

void SettingsChild::preferenceChanged()
{
    QObject* settings = sender();
    const int signal = senderSignalIndex();
    const QMetaObject* meta = settings->metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (isSetting(property) && property.notifySignalIndex() == signal) {
            m_channel.send({{QStringLiteral("setting"), QString::fromLatin1(property.name())},
                            {QStringLiteral("value"), QJsonValue::fromVariant(property.read(settings))}});
        }
    }
}
