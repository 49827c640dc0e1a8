// SPDX-License-Identifier: GPL-3.0-or-later
#include "Feedback.h"

#include "appinfo/AppInfo.h"
#include "logging/Logger.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>

namespace Feedback {

QString body()
{
    return QCoreApplication::translate("Feedback", "Please use Chinese or English in your mail, if you can.",
                                       "mail body") +
           QStringLiteral("\n\n\n\n\n\n\n\nApp version: v") + AppInfo::version() + u'(' + AppInfo::build() +
           QStringLiteral(")\ndevice model: ") + AppInfo::model() + QStringLiteral("\nsystem version: ") +
           AppInfo::osVersion() + u'\n';
}

QString subject()
{
    return AppInfo::name() + QStringLiteral(" Feedback");
}

QStringList xdgEmailArguments(const QString& logFile)
{
    QStringList arguments{QStringLiteral("--subject"), subject(), QStringLiteral("--body"), body()};
    if (!logFile.isEmpty())
        arguments << QStringLiteral("--attach") << logFile;
    arguments << AppInfo::feedbackAddress();
    return arguments;
}

void compose()
{
    // Without xdg-email there is no way to a mail program: the entry does nothing.
    const QString xdgEmail = QStandardPaths::findExecutable(QStringLiteral("xdg-email"));
    if (xdgEmail.isEmpty())
        return;
    QProcess::startDetached(xdgEmail, xdgEmailArguments(Logger::logfilePath().value_or(QString())));
}

} // namespace Feedback
