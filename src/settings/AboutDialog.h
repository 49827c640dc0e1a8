// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

// The About dialog: the application's icon, name and version, a link to the release notes and
// the copyright line. One dialog for the process, brought to the front each time it is asked for.
class AboutDialog : public QDialog {
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent = nullptr);

    // Shows the one dialog (making it on first use), raised and active.
    static AboutDialog* showShared();
};
