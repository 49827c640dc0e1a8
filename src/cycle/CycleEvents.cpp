// SPDX-License-Identifier: GPL-3.0-or-later
#include "CycleEvents.h"

QString CycleEvents::originName(Origin origin)
{
    switch (origin) {
    case Origin::Menu:
        return QStringLiteral("menu");
    case Origin::MiddleClick:
        return QStringLiteral("middle_click");
    case Origin::Bus:
        return QStringLiteral("bus");
    case Origin::Other:
        break;
    }
    return QStringLiteral("other");
}
