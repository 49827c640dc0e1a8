#include "QmlEngine.h"

#include <QQmlEngine>

namespace QmlEngine {

QQmlEngine& engine()
{
    static QQmlEngine* qmlEngine = [] {
        auto* created = new QQmlEngine;
        created->addImportPath(QStringLiteral("qrc:/"));
        return created;
    }();
    return *qmlEngine;
}

QUrl viewUrl(const QString& viewName)
{
    return QUrl(QStringLiteral("qrc:/Lulltide/%1.qml").arg(viewName));
}

} // namespace QmlEngine
