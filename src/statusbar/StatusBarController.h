// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVariantMap>

class StatusItem;
class StatusMenu;

// The status item, its menu and the subscription that keeps the item's title equal to the
// work countdown. It observes the cycle and asks it; it decides nothing of its own.
namespace StatusBarController {

// The item, built on first use together with its menu and the countdown subscription.
StatusItem& item();

// The menu, built on first use; the pause entry (tag 9001) follows AppState::working().
StatusMenu& menu();

// The menu's header: "<name> - v<version>(<build>)".
QString headerTitle(const QVariantMap& infos);

// Shows or hides the countdown beside the icon.
void showTime(bool show);

} // namespace StatusBarController
