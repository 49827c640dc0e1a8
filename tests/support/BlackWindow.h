// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRasterWindow>

// Another program's window: black all over, so that any part of it above a break shows. Says
// "shown WxH" on standard output once the compositor has shown a frame of a new size: Qt draws
// the frame asked for next only after the compositor's frame callback for the last.
class BlackWindow : public QRasterWindow {
public:
    // Shows one, full screen and titled "another program", until the process is ended: the
    // main of a test's child playing another program.
    static int runFullScreen();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QSize m_drawn;
    QSize m_said;
};
