// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUrl>
#include <QVariantMap>

class QQmlEngine;

// The one QML engine of the process, made on first need (the first break or settings
// window), not at start, so a Lulltide that only counts down stays light.
namespace QmlEngine {

// Chooses the renderer of the Qt Quick windows; done before the first one is made.
void chooseRenderer();

// Made before the first Qt Quick window, whose renderer it chooses.
QQmlEngine& engine();

// The address of one of the application's QML views, e.g. "BreakView".
QUrl viewUrl(const QString& viewName);

// Makes one of the views with its required properties. A view that cannot be made (a broken
// installation: a QML module missing) is logged with Qt's reasons, and the result is null.
QObject* create(const QString& viewName, const QVariantMap& properties);

// Deletes every Qt Quick window with its view: before what the views show goes, and at the end.
void deleteWindows();

// Collects the script heap's garbage and gives freed heap pages back to the system; does
// nothing before the engine is made.
void releaseMemory();

} // namespace QmlEngine
