// SPDX-License-Identifier: GPL-3.0-or-later
#include "CoveredOutputs.h"

#include <QElapsedTimer>
#include <QTest>

namespace CoveredOutputs {

QList<QPoint> edges()
{
    QList<QPoint> points;
    for (int left : {0, 1280})
        for (QPoint point :
             {QPoint(2, 2), QPoint(1277, 2), QPoint(2, 797), QPoint(1277, 797), QPoint(2, 400)})
            points << point + QPoint(left, 0);
    return points;
}

int whitePoints(const QImage& image)
{
    if (image.isNull())
        return -1; // no look at all: neither covered nor bare
    int white = 0;
    for (QPoint point : edges())
        white += image.pixel(point) == qRgb(255, 255, 255) ? 1 : 0;
    return white;
}

bool covered(const QImage& image)
{
    return whitePoints(image) == int(edges().size());
}

void within2s(const TestSupport::ProgramRun& instance, const QString& what,
              const std::function<QImage()>& screen)
{
    QElapsedTimer since;
    since.start();
    qint64 asked = 0;
    bool isCovered = false;
    while (!isCovered && asked <= 2000) {
        asked = since.elapsed();
        isCovered = covered(screen());
        if (!isCovered)
            QTest::qWait(50);
    }
    QVERIFY2(isCovered && asked <= 2000,
             qPrintable(QStringLiteral("%1: an output still uncovered after %2 ms\n%3")
                            .arg(what)
                            .arg(asked)
                            .arg(instance.log().right(900))));
}

} // namespace CoveredOutputs
