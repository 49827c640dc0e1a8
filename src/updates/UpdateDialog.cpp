// SPDX-License-Identifier: GPL-3.0-or-later
#include "UpdateDialog.h"

#include "appinfo/AppInfo.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

UpdateDialog::UpdateDialog(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("updateDialog"));
    setWindowTitle(tr("Software Update"));
    setMinimumWidth(420);

    m_icon = new QLabel;
    m_icon->setPixmap(AppInfo::icon().pixmap(64, 64));
    m_icon->setAlignment(Qt::AlignTop);

    m_headline = new QLabel;
    m_headline->setObjectName(QStringLiteral("updateHeadline"));
    QFont bold = m_headline->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.15);
    m_headline->setFont(bold);
    // Both may quote the feed or the server: shown as the text it is, never as markup.
    m_headline->setTextFormat(Qt::PlainText);

    m_message = new QLabel;
    m_message->setObjectName(QStringLiteral("updateMessage"));
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::PlainText);

    m_notes = new QLabel;
    m_notes->setObjectName(QStringLiteral("updateNotesLink"));
    m_notes->setTextFormat(Qt::RichText);
    m_notes->setOpenExternalLinks(true);
    m_notes->setTextInteractionFlags(Qt::TextBrowserInteraction);

    m_progress = new QProgressBar;
    m_progress->setObjectName(QStringLiteral("updateProgress"));
    m_progress->setRange(0, 0); // busy: how long a check takes is unknown

    m_cancel = new QPushButton(tr("Cancel"));
    m_cancel->setObjectName(QStringLiteral("cancelButton"));
    m_download = new QPushButton(tr("Download"));
    m_download->setObjectName(QStringLiteral("downloadButton"));
    m_download->setDefault(true);
    m_close = new QPushButton(tr("OK"));
    m_close->setObjectName(QStringLiteral("closeButton"));

    connect(m_cancel, &QPushButton::clicked, this, &UpdateDialog::reject);
    connect(m_download, &QPushButton::clicked, this, [this] {
        if (Appcast::isHttpsLink(m_downloadTarget))
            QDesktopServices::openUrl(m_downloadTarget);
        hide();
    });
    connect(m_close, &QPushButton::clicked, this, &QDialog::hide);

    auto* text = new QVBoxLayout;
    text->addWidget(m_headline);
    text->addWidget(m_message);
    text->addWidget(m_notes);
    text->addWidget(m_progress);
    text->addStretch();
    auto* top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(m_icon);
    top->addLayout(text, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_close);
    buttons->addWidget(m_download);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->addLayout(top);
    layout->addSpacing(8);
    layout->addLayout(buttons);
}

// Closing the window while it checks cancels the check, so its result cannot bring it back.
void UpdateDialog::reject()
{
    if (m_checking)
        emit cancelled();
    QDialog::reject();
}

void UpdateDialog::present(const QString& headline, const QString& message)
{
    m_headline->setText(headline);
    m_message->setText(message);
    m_message->setVisible(!message.isEmpty());
    adjustSize();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void UpdateDialog::showParts(bool checking, bool notes, bool download, const QString& closeText)
{
    m_checking = checking;
    m_progress->setVisible(checking);
    m_cancel->setVisible(checking);
    m_notes->setVisible(notes);
    m_download->setVisible(download);
    m_close->setVisible(!checking);
    m_close->setText(closeText);
}

void UpdateDialog::showChecking()
{
    showParts(true, false, false, {});
    present(tr("Checking for updates…"), {});
}

void UpdateDialog::showUpToDate()
{
    showParts(false, false, false, tr("OK"));
    present(tr("You're up to date!"),
            tr("%1 %2 is currently the newest version available.").arg(AppInfo::name(), AppInfo::version()));
}

void UpdateDialog::showUpdate(const AppcastItem& update)
{
    m_downloadTarget = QUrl(update.downloadUrl.isEmpty() ? update.releaseNotesLink : update.downloadUrl);
    const QUrl notes(update.releaseNotesLink);
    m_notes->setText(
        QStringLiteral("<a href=\"%1\">%2</a>").arg(notes.toString().toHtmlEscaped(), tr("Release Notes")));
    showParts(false, Appcast::isHttpsLink(notes), Appcast::isHttpsLink(m_downloadTarget), tr("Later"));
    present(tr("A new version of %1 is available!").arg(AppInfo::name()),
            tr("%1 %2 is now available — you have %3. Your package manager installs it.")
                .arg(AppInfo::name(), update.shortVersion, AppInfo::version()));
}

void UpdateDialog::showError(const QString& why)
{
    showParts(false, false, false, tr("OK"));
    QString reason = why;
    if (!reason.isEmpty())
        reason[0] = reason[0].toUpper();
    present(tr("%1 could not check for updates.").arg(AppInfo::name()), reason + u'.');
}
