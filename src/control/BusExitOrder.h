// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace BusExitOrder {

// Qt's D-Bus library reads messages on a thread of its own until the process ends, and a message
// read late may carry a type registered at run time. Qt's table of such types is destroyed at
// exit in the reverse order of its making: made before any bus connection, it outlives that
// thread. Otherwise a program ending just after a call (a command-line request on a loaded
// machine) prints "Trying to construct an instance of an invalid type". Call first in main().
void keepTypesPastTheBusThread();

} // namespace BusExitOrder
