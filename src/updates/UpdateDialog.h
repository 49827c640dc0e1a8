// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Appcast.h"

#include <QDialog>
#include <QUrl>

class QLabel;
class QProgressBar;
class QPushButton;

// The update check's one small window: progress while checking, then the result — up to date,
// a newer version with its release notes and a Download button, or what went wrong.
class UpdateDialog : public QDialog {
    Q_OBJECT

public:
    explicit UpdateDialog(QWidget* parent = nullptr);

    void showChecking();
    void showUpToDate();
    void showUpdate(const AppcastItem& update);
    void showError(const QString& why);

    // Where Download leads: the package itself, or the release notes when the feed names none.
    QUrl downloadUrl() const { return m_downloadTarget; }

    // Esc and the window's close button come here: while checking, the check is cancelled too.
    void reject() override;

signals:
    // The check it shows was given up by the user.
    void cancelled();

private:
    void showParts(bool checking, bool notes, bool download, const QString& closeText);
    void present(const QString& headline, const QString& message);

    QLabel* m_icon = nullptr;
    QLabel* m_headline = nullptr;
    QLabel* m_message = nullptr;
    QLabel* m_notes = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_cancel = nullptr;
    QPushButton* m_download = nullptr;
    QPushButton* m_close = nullptr;
    QUrl m_downloadTarget;
    bool m_checking = false;
};
