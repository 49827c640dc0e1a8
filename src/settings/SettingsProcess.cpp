// SPDX-License-Identifier: GPL-3.0-or-later
#include "SettingsProcess.h"

#include "break/ViewProcess.h"
#include "cycle/AppState.h"
#include "logging/Logger.h"
#include "preferences/PrefState.h"
#include "preferences/PrefStyleState.h"

#include <QMetaProperty>
#include <utility>

SettingsProcess::SettingsProcess(QString program, QObject* parent) : QObject(parent), m_program(std::move(program)) {}

void SettingsProcess::show()
{
    if (m_process) {
        m_process->send({{QStringLiteral("raise"), true}});
        return;
    }
    m_process = new ViewProcess(m_program, QStringLiteral("--settings-window"), this);
    connect(m_process, &ViewProcess::received, this, &SettingsProcess::received);
    connect(m_process, &ViewProcess::ended, this, [this](int exitCode, QProcess::ExitStatus status) {
        const QString startError = m_process->startError();
        m_process = nullptr; // it deletes itself
        if (!startError.isEmpty())
            logger().error(QStringLiteral("the settings window cannot start: ") + startError);
        else if (status != QProcess::NormalExit || exitCode != 0)
            logger().error(QStringLiteral("the settings window ended unexpectedly"));
    });
    m_process->start();
}

void SettingsProcess::close()
{
    if (m_process)
        std::exchange(m_process, nullptr)->retire();
}

void SettingsProcess::received(const QJsonObject& message)
{
    if (message.value(QStringLiteral("drawn")).toBool()) {
        emit drawn();
        return;
    }
    const QByteArray name = message.value(QStringLiteral("setting")).toString().toLatin1();
    if (name.isEmpty())
        return;
    PrefState& prefs = AppState::prefState();
    for (QObject* target : {static_cast<QObject*>(&prefs), static_cast<QObject*>(prefs.styleState())}) {
        const QMetaObject* meta = target->metaObject();
        const int index = meta->indexOfProperty(name.constData());
        // The class's own settings only (not objectName), and no object-valued ones.
        if (index < meta->propertyOffset())
            continue;
        const QMetaProperty property = meta->property(index);
        if (!property.isWritable() || (property.metaType().flags() & QMetaType::PointerToQObject))
            return;
        QVariant value = message.value(QStringLiteral("value")).toVariant();
        if (!value.convert(property.metaType()))
            return;
        // The window also sets values as it shows them: only a change is carried out.
        if (property.read(target) != value)
            property.write(target, value);
        return;
    }
}
