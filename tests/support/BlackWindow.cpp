// SPDX-License-Identifier: GPL-3.0-or-later
#include "BlackWindow.h"

#include <QGuiApplication>
#include <QPainter>

#include <cstdio>

int BlackWindow::runFullScreen()
{
    BlackWindow window;
    window.setTitle("another program");
    window.showFullScreen();
    return QGuiApplication::exec();
}

void BlackWindow::paintEvent(QPaintEvent* /*event*/)
{
    QPainter(this).fillRect(QRect(QPoint(), size()), Qt::black);
    if (m_drawn != size()) {
        m_drawn = size();
        requestUpdate();
    } else if (m_said != size()) {
        m_said = size();
        std::printf("shown %dx%d\n", m_said.width(), m_said.height());
        std::fflush(stdout);
    }
}
