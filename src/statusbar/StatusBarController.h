// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVariantMap>

class StatusItem;
class StatusMenu;

// The status item, its menu and the subscription that keeps the item's title equal to the
// work countdown, which is also what opens the break screen when the countdown ends.
namespace StatusBarController {

// The item, built on first use together with its menu and the countdown subscription.
StatusItem& item();

// The menu, built on first use; the pause entry (tag 9001) gets its title from AppState.
StatusMenu& menu();

// The menu's header: "<name> - v<version>(<build>)".
QString headerTitle(const QVariantMap& infos);

// Shows or hides the countdown beside the icon.
void showTime(bool show);

} // namespace StatusBarController
