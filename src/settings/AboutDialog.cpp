// SPDX-License-Identifier: GPL-3.0-or-later
#include "AboutDialog.h"

#include "appinfo/AppInfo.h"

#include <QFont>
#include <QIcon>
#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("aboutDialog"));
    setWindowTitle(tr("About %1").arg(AppInfo::name()));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(36, 24, 36, 24);
    layout->setSpacing(8);

    auto* icon = new QLabel;
    icon->setObjectName(QStringLiteral("aboutIcon"));
    icon->setPixmap(AppInfo::icon().pixmap(64, 64));
    icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(icon);

    auto* name = new QLabel(AppInfo::name());
    name->setObjectName(QStringLiteral("aboutName"));
    QFont nameFont = name->font();
    nameFont.setBold(true);
    nameFont.setPointSizeF(nameFont.pointSizeF() * 1.3);
    name->setFont(nameFont);
    name->setAlignment(Qt::AlignCenter);
    layout->addWidget(name);

    auto* version = new QLabel(tr("Version %1 (%2)").arg(AppInfo::version(), AppInfo::build()));
    version->setObjectName(QStringLiteral("aboutVersion"));
    version->setAlignment(Qt::AlignCenter);
    layout->addWidget(version);

    layout->addSpacing(6);
    // The credits: one small bold link.
    auto* notes = new QLabel(QStringLiteral("<a href=\"%1\">%2</a>")
                                 .arg(AppInfo::releaseNotesLink().toHtmlEscaped(), tr("Release Notes")));
    notes->setObjectName(QStringLiteral("aboutReleaseNotes"));
    QFont small = notes->font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    QFont smallBold = small;
    smallBold.setBold(true);
    notes->setFont(smallBold);
    notes->setTextFormat(Qt::RichText);
    notes->setOpenExternalLinks(true);
    notes->setTextInteractionFlags(Qt::TextBrowserInteraction);
    notes->setAlignment(Qt::AlignCenter);
    layout->addWidget(notes);

    layout->addSpacing(6);
    auto* copyright = new QLabel(AppInfo::copyright());
    copyright->setObjectName(QStringLiteral("aboutCopyright"));
    copyright->setFont(small);
    copyright->setAlignment(Qt::AlignCenter);
    layout->addWidget(copyright);

    layout->setSizeConstraint(QLayout::SetFixedSize);
}

AboutDialog* AboutDialog::showShared()
{
    static QPointer<AboutDialog> dialog;
    if (!dialog)
        dialog = new AboutDialog;
    // The year may have turned since the dialog was made.
    if (auto* copyright = dialog->findChild<QLabel*>(QStringLiteral("aboutCopyright")))
        copyright->setText(AppInfo::copyright());
    dialog->setWindowState(dialog->windowState() & ~Qt::WindowMinimized);
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    return dialog;
}
