// SPDX-License-Identifier: GPL-3.0-or-later
#include "BusExitOrder.h"

#include <QDBusVariant>
#include <QMetaType>

namespace BusExitOrder {

void keepTypesPastTheBusThread()
{
    // Registering any type of the D-Bus library makes the table.
    QMetaType::fromType<QDBusVariant>().id();
}

} // namespace BusExitOrder
