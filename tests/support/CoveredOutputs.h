// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TestSupport.h"

#include <QImage>
#include <QList>
#include <QPoint>
#include <functional>

// What a compositor with two outputs of 1280×800 side by side shows of a break (white all over),
// read from a picture of both.
namespace CoveredOutputs {

// The corners and the middle of the left edge of each output: a break covers an output only
// when all of them show it.
QList<QPoint> edges();

// How many of the edges show the break's white; -1 for no picture (the compositor gave none).
int whitePoints(const QImage& image);

// Whether every edge of both outputs shows the break.
bool covered(const QImage& image);

// Every output of `screen` shows the break within 2 s from now, or the test fails naming `what`
// with the end of the program's log. Timed by when each look was asked for, not when its pixels
// arrived: reading both outputs back takes a while of its own on a loaded machine.
void within2s(const TestSupport::ProgramRun& instance, const QString& what,
              const std::function<QImage()>& screen);

} // namespace CoveredOutputs
