#pragma once

#include <QUrl>

class QQmlEngine;

// The one QML engine of the process, made on first need (the first break or settings
// window), not at start, so a Lulltide that only counts down stays light.
namespace QmlEngine {

QQmlEngine& engine();

// The address of one of the application's QML views, e.g. "BreakView".
QUrl viewUrl(const QString& viewName);

} // namespace QmlEngine
