#pragma once

#include <QString>

// What we know of the panel that shows our item, told apart by the process that owns the
// StatusNotifierWatcher name.
namespace PanelHost {

// Whether the panel of this watcher process draws an item's XAyatanaLabel beside its icon.
// `processName` is the name the kernel gives (/proc/PID/comm, at most 15 bytes).
bool drawsLabel(const QString& processName);

// The kernel's name of a process; empty when it is gone or unreadable.
QString processName(quint32 pid);

} // namespace PanelHost
