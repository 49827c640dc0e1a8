// SPDX-License-Identifier: GPL-3.0-or-later
#include "SymbolIcon.h"

#include <QHash>

namespace SymbolIcon {

QString freedesktopName(const QString& symbolName)
{
    static const QHash<QString, QString> names{
        {QStringLiteral("stop.circle"), QStringLiteral("media-playback-stop")},
        {QStringLiteral("play.circle"), QStringLiteral("media-playback-start")},
        {QStringLiteral("gearshape.circle"), QStringLiteral("preferences-system")},
        {QStringLiteral("arrow.counterclockwise.icloud"), QStringLiteral("system-software-update")},
        {QStringLiteral("mail.stack"), QStringLiteral("mail-send")},
        {QStringLiteral("info.circle"), QStringLiteral("help-about")},
        {QStringLiteral("clock.arrow.circlepath"), QStringLiteral("appointment-soon")},
        {QStringLiteral("escape"), QStringLiteral("application-exit")},
        {QStringLiteral("tray.circle"), QStringLiteral("preferences-desktop")},
        {QStringLiteral("books.vertical.circle"), QStringLiteral("accessories-dictionary")},
    };
    return names.value(symbolName);
}

} // namespace SymbolIcon
