// SPDX-License-Identifier: GPL-3.0-or-later
#include "Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace Translations {

void install()
{
    const QLocale locale;
    auto* own = new QTranslator(qApp);
    if (own->load(locale, QStringLiteral("lulltide"), QStringLiteral("_"), QStringLiteral(":/i18n")))
        QCoreApplication::installTranslator(own);
    auto* qt = new QTranslator(qApp);
    if (qt->load(locale, QStringLiteral("qt"), QStringLiteral("_"),
                 QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(qt);
}

} // namespace Translations
