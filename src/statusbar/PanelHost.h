// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>

// What we know of the panel that shows our item, told apart by the process that owns the
// StatusNotifierWatcher name.
namespace PanelHost {

// Whether the panel of this watcher process draws an item's XAyatanaLabel beside its icon.
// `processName` is the program's name, or the kernel's name of it (cut to 15 bytes).
bool drawsLabel(const QString& processName);

// The name of a process's program as it was started (its first argument, without the folder),
// else the kernel's short name; empty when it is gone or unreadable.
QString processName(quint32 pid);

// Where the menu opens when the panel asks for it at `given`, with the pointer at `pointer` and
// the screens at `screens`: `given` when it is believable, else the pointer.
QPoint menuPosition(const QPoint& given, const QPoint& pointer, const QList<QRect>& screens);

// The top left corner of a menu of `size` opened at `point` on a screen of `geometry` whose
// panels leave `available` free. Near an edge, the panel's there: the menu opens beside it,
// away from the edge, and covers none of it. Elsewhere it opens at the point.
QPoint menuTopLeft(const QPoint& point, const QSize& size, const QRect& geometry, const QRect& available);

} // namespace PanelHost
